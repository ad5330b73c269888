# Warnings, sanitizers and what else every target of the project shares.
add_library(kelm_options INTERFACE)
target_compile_options(kelm_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wunused
  $<$<BOOL:${KELM_WERROR}>:-Werror>
  # Lets ccache keep what is compiled with a precompiled header.
  $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>
  $<$<CXX_COMPILER_ID:Clang>:-Xclang;-fno-pch-timestamp>)
target_compile_definitions(kelm_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_KEYWORDS
  QT_DISABLE_DEPRECATED_BEFORE=0x060400)
# A faster linker, where there is one.
include(CheckLinkerFlag)
foreach(linker mold lld)
  check_linker_flag(CXX -fuse-ld=${linker} KELM_HAS_${linker})
  if(KELM_HAS_${linker})
    target_link_options(kelm_options INTERFACE -fuse-ld=${linker})
    break()
  endif()
endforeach()
# What a program that reads strangers' files is built with: checked copies, and tables that cannot be written over.
if(NOT KELM_SANITIZE)
  target_compile_options(kelm_options INTERFACE
    $<$<CONFIG:Release>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>)
endif()
if(CMAKE_SYSTEM_NAME STREQUAL Linux)
  target_link_options(kelm_options INTERFACE $<$<CONFIG:Release>:-Wl,-z,relro,-z,now>)
endif()
if(KELM_SANITIZE)
  target_compile_options(kelm_options INTERFACE
    -fsanitize=${KELM_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    # What the sanitizers put into the code looks to GCC 12 like reads of values that were never set.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(kelm_options INTERFACE -fsanitize=${KELM_SANITIZE})
endif()
if(KELM_FUZZ)
  # Lets a fuzz target see which branches its input takes.
  target_compile_options(kelm_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(BUILD_SHARED_LIBS)
  # A room that uses what it does not name is not linked.
  target_link_options(kelm_options INTERFACE -Wl,-z,defs)
endif()
