# Builds for 64-bit Windows as Visual C++ does, on other systems: with clang-cl, lld-link, and the
# headers and libraries of Visual C++ and the Windows SDK. The environment says where these are, in
# the variables that a command prompt of Visual Studio has:
#
#   VCToolsInstallDir   with include and lib/x64, usually .../VC/Tools/MSVC/VERSION
#   WindowsSdkDir       with Include/VERSION and Lib/VERSION, usually .../Windows Kits/10
#
# Tools that fetch these folders change some names: include and lib for Include and Lib, x86_64 for
# x64, no VERSION. They also give every header and library a name in small letters, which is the
# one that is looked for here.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

find_program(CLANG_CL NAMES clang-cl-19 clang-cl REQUIRED)
find_program(CMAKE_LINKER NAMES lld-link-19 lld-link REQUIRED)
find_program(CMAKE_AR NAMES llvm-lib-19 llvm-lib REQUIRED)
find_program(CMAKE_RC_COMPILER NAMES llvm-rc-19 llvm-rc REQUIRED)
foreach(language C CXX)
  set(CMAKE_${language}_COMPILER ${CLANG_CL})
  set(CMAKE_${language}_COMPILER_TARGET x86_64-pc-windows-msvc)
endforeach()

# The newest folder that one of the patterns finds.
function(find_folder variable)
  foreach(pattern ${ARGN})
    file(GLOB folders LIST_DIRECTORIES true ${pattern})
    if(folders)
      list(SORT folders COMPARE NATURAL ORDER DESCENDING)
      list(GET folders 0 folder)
      set(${variable} ${folder} PARENT_SCOPE)
      return()
    endif()
  endforeach()
  message(FATAL_ERROR "There is no ${ARGN}: are VCToolsInstallDir and WindowsSdkDir set?")
endfunction()

set(vc $ENV{VCToolsInstallDir})
set(sdk $ENV{WindowsSdkDir})
find_folder(vc_headers ${vc}/[Ii]nclude)
find_folder(vc_libraries ${vc}/[Ll]ib/x64 ${vc}/[Ll]ib/x86_64)
foreach(part ucrt um shared winrt)
  find_folder(${part}_headers ${sdk}/[Ii]nclude/*/${part} ${sdk}/[Ii]nclude/${part})
endforeach()
foreach(part ucrt um)
  find_folder(${part}_libraries ${sdk}/[Ll]ib/*/${part}/x64 ${sdk}/[Ll]ib/*/${part}/x86_64
              ${sdk}/[Ll]ib/${part}/x64 ${sdk}/[Ll]ib/${part}/x86_64)
endforeach()

# This file is read several times.
set(headers)
set(resource_headers)
set(libraries)
foreach(folder ${vc_headers} ${ucrt_headers} ${um_headers} ${shared_headers} ${winrt_headers})
  string(APPEND headers " -imsvc \"${folder}\"")
  string(APPEND resource_headers " -I \"${folder}\"")
endforeach()
foreach(folder ${vc_libraries} ${ucrt_libraries} ${um_libraries})
  string(APPEND libraries " \"/libpath:${folder}\"")
endforeach()
set(CMAKE_C_FLAGS_INIT ${headers})
set(CMAKE_CXX_FLAGS_INIT ${headers})
set(CMAKE_RC_FLAGS_INIT ${resource_headers})
# The linker can add a manifest only with a tool of the SDK, and nothing here needs one.
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "/manifest:no${libraries}")
endforeach()
# Some of those tools leave out the debug runtime.
set(CMAKE_TRY_COMPILE_CONFIGURATION Release)
