# The libraries that hosts load or link. Both kinds, unless the usual switch chooses one.
set(build_shared ON)
if(DEFINED BUILD_SHARED_LIBS AND NOT BUILD_SHARED_LIBS)
  set(build_shared OFF)
endif()
set(build_static ON)
if(BUILD_SHARED_LIBS)
  set(build_static OFF)
endif()

# Adds the target NAME, a shared library, and NAME_static. As part of another project and when
# installed they are lanvoss::EXPORT_NAME and lanvoss::EXPORT_NAME_static. The file FACTORY defines
# getLanvossPtr over the platform that it chooses, of the parts that follow.
function(add_host_library name export_name output_name factory)
  set(parts lanvoss_core lanvoss_system ${ARGN})
  if(build_shared)
    add_shared_host_library(${name} ${output_name} ${factory} ${parts})
    finish_host_library(${name} ${export_name} ${output_name})
  endif()
  if(build_static)
    add_static_host_library(${name}_static ${factory} ${parts})
    if(MSVC) # whose import library has the plain name
      string(APPEND output_name _static)
    endif()
    finish_host_library(${name}_static ${export_name}_static ${output_name})
  endif()
  if(NOT build_shared)
    add_library(lanvoss::${export_name} ALIAS ${name}_static)
  endif()
endfunction()

# It exports the factory alone.
function(add_shared_host_library name output_name factory)
  add_library(${name} SHARED ${factory})
  target_compile_definitions(${name} PRIVATE LANVOSS_BUILD)
  target_link_libraries(${name} PRIVATE ${ARGN})
  if(WIN32)
    # The name under which hosts load it, with any compiler.
    set_target_properties(${name} PROPERTIES PREFIX "")
    add_version_resource(${name} VFT_DLL ${output_name}.dll "Reaches a device over Wi-Fi Direct")
  else()
    # The version script also hides what the standard library's templates would otherwise export.
    set(exports ${PROJECT_SOURCE_DIR}/src/exports.map)
    target_link_options(${name} PRIVATE -Wl,--version-script=${exports})
    set_target_properties(
      ${name} PROPERTIES VERSION ${PROJECT_VERSION}
                         SOVERSION ${PROJECT_VERSION_MAJOR}
                         LINK_DEPENDS ${exports})
  endif()
endfunction()

# It holds its parts' objects, so that a host links one file and what the platform has.
function(add_static_host_library name factory)
  list(TRANSFORM ARGN REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)
  add_library(${name} STATIC ${factory} ${objects})
  target_compile_definitions(${name} PUBLIC LANVOSS_STATIC)
  target_link_libraries(${name} INTERFACE ${system_libraries})
endfunction()

function(finish_host_library name export_name output_name)
  add_library(lanvoss::${export_name} ALIAS ${name})
  set_target_properties(${name} PROPERTIES EXPORT_NAME ${export_name} OUTPUT_NAME ${output_name})
  target_compile_features(${name} INTERFACE cxx_std_11)
  target_include_directories(
    ${name}
    PRIVATE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src
    INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
              $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:lanvoss_warnings>)
endfunction()
