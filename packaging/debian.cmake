# The packages for Debian and its relatives, put together without Debian's own tools: the libraries
# that they depend on are found, the programs of the radio are named.
set(CPACK_GENERATOR DEB)
set(CPACK_OUTPUT_FILE_PREFIX packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ
    OWNER_WRITE
    OWNER_EXECUTE
    GROUP_READ
    GROUP_EXECUTE
    WORLD_READ
    WORLD_EXECUTE)
set(CPACK_PACKAGE_CONTACT "The Lanvoss maintainers <maintainers@lanvoss.invalid>")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Others' packages may depend on the shared libraries.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)

set(purpose "Lanvoss watches for Wi-Fi Direct devices, pairs and connects one without
user interaction, and hands over the local and remote IP addresses of the link.
.
")
set(radio_programs "wpasupplicant, iw, rfkill, dnsmasq-base, udhcpc")

# Each shared library is a package of its own, named after the name that programs ask for: what is
# linked to the real radio does not bring the simulated one.
set(soname_version ${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LANVOSS_PACKAGE_NAME liblanvoss${soname_version})
set(CPACK_DEBIAN_LANVOSS_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LANVOSS_DESCRIPTION
    "reach a named device over Wi-Fi Direct (SIMULATED radio)
${purpose}This is the shared library over simulated devices, for trials without hardware.")

set(CPACK_DEBIAN_LANVOSS_ON_WPA_PACKAGE_NAME liblanvoss-wpa${soname_version})
set(CPACK_DEBIAN_LANVOSS_ON_WPA_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LANVOSS_ON_WPA_PACKAGE_RECOMMENDS ${radio_programs})
set(CPACK_COMPONENT_LANVOSS_ON_WPA_DESCRIPTION
    "reach a named device over Wi-Fi Direct (real radio)
${purpose}This is the shared library over the real radio, through wpa_supplicant.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liblanvoss-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "lanvoss, g++, cmake, pkgconf")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS lanvoss lanvoss_on_wpa)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "reach a named device over Wi-Fi Direct (development files)
${purpose}These are the header, the static libraries, the files for CMake and pkg-config,
and the examples.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME lanvoss)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS ${radio_programs})
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION
    "reach a named device over Wi-Fi Direct (program)
${purpose}This is the host program, with its scenarios and all documents. It has a
simulated radio too.")
