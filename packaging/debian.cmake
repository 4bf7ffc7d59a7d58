# The package for Debian and its relatives, put together without Debian's own tools: the libraries
# that it depends on are found, the programs of the radio are named.
set(CPACK_GENERATOR DEB)
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
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "reach a named device over Wi-Fi Direct")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "Lanvoss watches for Wi-Fi Direct devices, pairs and connects one without
user interaction, and hands over the local and remote IP addresses of the link.
.
The host program lanvoss and two C++ libraries of one interface: liblanvoss
has a simulated radio, for trials without hardware; liblanvoss-wpa has the
real one, through wpa_supplicant.")
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "wpasupplicant, iw, rfkill, dnsmasq-base, udhcpc")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "g++, cmake, pkgconf")
# Others' packages may depend on the shared libraries.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
