include(CMakeFindDependencyMacro)
find_dependency(Threads)
include(${CMAKE_CURRENT_LIST_DIR}/lanvoss-targets.cmake)

# Gives a library another name, unless a library has it.
function(lanvoss_add_name name library)
  if(TARGET lanvoss::${library} AND NOT TARGET lanvoss::${name})
    add_library(lanvoss::${name} ALIAS lanvoss::${library})
  endif()
endfunction()

# The names that say which radio the plain library has here.
if(NOT WIN32)
  lanvoss_add_name(simulated lanvoss)
  lanvoss_add_name(simulated lanvoss_static)
  lanvoss_add_name(simulated_static lanvoss_static)
endif()
# Where there are only static libraries, they have the plain names too.
lanvoss_add_name(lanvoss lanvoss_static)
lanvoss_add_name(wpa wpa_static)
