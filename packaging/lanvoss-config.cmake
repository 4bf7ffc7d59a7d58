include(CMakeFindDependencyMacro)
find_dependency(Threads)
include(${CMAKE_CURRENT_LIST_DIR}/lanvoss-targets.cmake)

# Where there are only static libraries, they have the plain names too.
foreach(library lanvoss wpa)
  if(TARGET lanvoss::${library}_static AND NOT TARGET lanvoss::${library})
    add_library(lanvoss::${library} ALIAS lanvoss::${library}_static)
  endif()
endforeach()
