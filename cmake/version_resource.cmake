# Gives a Windows file a version resource. TYPE: VFT_DLL or VFT_APP. Nothing elsewhere.
if(WIN32)
  enable_language(RC)
endif()

function(add_version_resource target TYPE FILE_NAME DESCRIPTION)
  if(WIN32)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in
                   ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc @ONLY)
    target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  endif()
endfunction()
