# Builds the checkout that this port stands in.
vcpkg_cmake_configure(
  SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../../../.."
  OPTIONS -DBUILD_TESTING=OFF -DLANVOSS_BUILD_PROGRAM=OFF -DLANVOSS_BUILD_EXAMPLES=OFF)
vcpkg_cmake_install()
vcpkg_copy_pdbs()
vcpkg_cmake_config_fixup(CONFIG_PATH lib/cmake/lanvoss)
vcpkg_fixup_pkgconfig()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
set(VCPKG_POLICY_SKIP_COPYRIGHT_CHECK enabled)
