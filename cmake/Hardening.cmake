# Hardens release builds with the options that compiler and linker support for this processor. A distribution's own
# flags in CMAKE_CXX_FLAGS are kept. Debug builds, for sanitizers and debuggers, get none.

if(CMAKE_BUILD_TYPE STREQUAL Debug)
  return()
endif()

include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
include(CheckPIESupported)

check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# An unknown option is only a warning otherwise.
set(CMAKE_REQUIRED_FLAGS -Werror)
foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection -mbranch-protection=standard)
  string(MAKE_C_IDENTIFIER "HAS${flag}" known)
  check_cxx_compiler_flag(${flag} ${known})
  if(${known})
    add_compile_options(${flag})
  endif()
endforeach()
unset(CMAKE_REQUIRED_FLAGS)

foreach(flag -Wl,-z,relro -Wl,-z,now -Wl,--as-needed)
  string(MAKE_C_IDENTIFIER "HAS${flag}" known)
  check_linker_flag(CXX ${flag} ${known})
  if(${known})
    add_link_options(${flag})
  endif()
endforeach()

add_compile_definitions(_GLIBCXX_ASSERTIONS)
# Distributions have flags of their own for this and use another build type.
if(CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$")
  if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE") # some compilers set another level by default
    add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
  endif()
  # Builds in two folders are the same to the byte.
  add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}=.)
endif()
