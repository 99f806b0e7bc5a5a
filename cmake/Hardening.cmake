# Hardens what is built to be used, as far as the compiler and the linker know how on this processor. A distribution's
# own flags come with CMAKE_CXX_FLAGS and are kept. Debug builds are left alone: they go to sanitizers and debuggers.

if(CMAKE_BUILD_TYPE STREQUAL Debug)
  return()
endif()

include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
include(CheckPIESupported)

check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Warnings would be taken for a no.
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
# What distributions do by themselves, with another build type, and in their own way.
if(CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$")
  if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE") # some compilers set it by themselves, to another level
    add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
  endif()
  # Builds in two folders are the same to the byte.
  add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}=.)
endif()
