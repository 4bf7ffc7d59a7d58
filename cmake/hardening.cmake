# What the distribution's packages are built with, so that a fault in this library is harder to use
# against its host. A part of another project has that project's options instead.
option(LANVOSS_HARDEN "Build with the usual protections against attacks" ${PROJECT_IS_TOP_LEVEL})
if(NOT LANVOSS_HARDEN OR WIN32)
  return()
endif()

include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
check_cxx_compiler_flag(-fcf-protection LANVOSS_HAS_CF_PROTECTION) # not on every processor
add_compile_options(
  -fstack-protector-strong -fstack-clash-protection
  $<$<BOOL:${LANVOSS_HAS_CF_PROTECTION}>:-fcf-protection>
  # It needs optimisation. Some compilers define it themselves.
  $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE$<SEMICOLON>-D_FORTIFY_SOURCE=2>)
add_link_options(-Wl,-z,relro,-z,now)
