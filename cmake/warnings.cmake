# Targets take their warnings by linking lanvoss_warnings; the presets make every one an error. As a
# part of another project there are none, whatever that project asks of its own code.
add_library(lanvoss_warnings INTERFACE)
if(NOT PROJECT_IS_TOP_LEVEL)
  target_compile_options(lanvoss_warnings INTERFACE -w)
  return()
endif()
if(MSVC)
  target_compile_options(lanvoss_warnings INTERFACE /W4 /permissive- /utf-8)
  return()
endif()
target_compile_options(
  lanvoss_warnings
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Wcast-align
            -Wcast-qual
            -Wconversion
            -Wdouble-promotion
            -Wextra-semi
            -Wformat=2
            -Wmissing-declarations
            -Wnon-virtual-dtor
            -Wold-style-cast
            -Woverloaded-virtual
            -Wshadow
            -Wsign-conversion
            -Wswitch-enum
            -Wundef
            -Wunused
            $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-branches
            -Wduplicated-cond
            -Wlogical-op
            -Wuseless-cast
            # GCC 12 sees overlaps in std::string's operator+ that are not there.
            -Wno-restrict
            # Nor are the uninitialised members that it sees in std::regex under the sanitizers.
            -Wno-maybe-uninitialized
            # Where many sources are compiled as one, it warns of what is well in each of them.
            $<$<BOOL:${CMAKE_UNITY_BUILD}>:-Wno-subobject-linkage>
            # An interface of the platform's cannot have one: it would take a slot.
            $<$<PLATFORM_ID:Windows>:-Wno-non-virtual-dtor>>
            $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety
            -Wthread-safety-beta
            -Wcomma
            -Wunreachable-code>)
