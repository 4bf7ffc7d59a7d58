# What the program and the tests use of others. A cross-build takes Debian's packages too: the
# headers of what has nothing but headers, and GoogleTest's sources.
if(NOT CMAKE_CROSSCOMPILING)
  find_package(CLI11 REQUIRED)
  find_package(nlohmann_json REQUIRED)
  find_library(EDIT_LIBRARY edit REQUIRED)
  if(BUILD_TESTING)
    find_package(GTest REQUIRED)
    find_package(EXPAT REQUIRED)
  endif()
  return()
endif()

# The machine's whole include folder must not be searched: its C library is not the target's.
function(use_headers target folder)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/headers)
  file(CREATE_LINK /usr/include/${folder} ${CMAKE_BINARY_DIR}/headers/${folder} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED)
  target_include_directories(${target} INTERFACE ${CMAKE_BINARY_DIR}/headers)
endfunction()

use_headers(CLI11::CLI11 CLI)
use_headers(nlohmann_json::nlohmann_json nlohmann)
set(BUILD_GMOCK OFF)
set(INSTALL_GTEST OFF)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
