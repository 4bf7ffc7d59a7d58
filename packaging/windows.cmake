# The zip for Windows. The C++ runtime is shared by host and library, since texts and the shared
# pointer cross between them; so its DLLs come along, without their debug information.
set(runtime_folder ${CMAKE_CURRENT_BINARY_DIR}/runtime)
file(MAKE_DIRECTORY ${runtime_folder})
set(runtime_files)
foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(
    COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
    OUTPUT_VARIABLE original
    OUTPUT_STRIP_TRAILING_WHITESPACE)
  add_custom_command(
    OUTPUT ${runtime_folder}/${name}
    COMMAND ${CMAKE_STRIP} -o ${runtime_folder}/${name} ${original}
    VERBATIM)
  list(APPEND runtime_files ${runtime_folder}/${name})
endforeach()
add_custom_target(lanvoss_runtime ALL DEPENDS ${runtime_files})
list(APPEND packaged lanvoss_runtime)

install(PROGRAMS ${runtime_files} DESTINATION ${CMAKE_INSTALL_BINDIR})
# The terms of the runtime's own DLLs.
install(
  FILES /usr/share/doc/gcc-mingw-w64-x86-64-posix-runtime/copyright
  DESTINATION licenses
  RENAME gcc-runtime.txt)
install(
  FILES /usr/share/doc/mingw-w64-x86-64-dev/copyright
  DESTINATION licenses
  RENAME mingw-w64.txt)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME lanvoss-${PROJECT_VERSION}-windows-x64)
