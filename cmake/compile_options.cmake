# One set of compiler options for the library and everything that is built beside it.
add_library(k7_options INTERFACE)
target_compile_features(k7_options INTERFACE cxx_std_20)

if(MSVC)
  target_compile_options(k7_options INTERFACE /W4 /permissive- /fp:precise
    $<$<BOOL:${K7_WARNINGS_AS_ERRORS}>:/WX>)
else()
  # Results are the same on every target: no fused multiply-add, and SSE2 arithmetic on 32-bit x86.
  target_compile_options(k7_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -ffp-contract=off
    $<$<BOOL:${K7_WARNINGS_AS_ERRORS}>:-Werror>)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i[3-6]86)$" AND CMAKE_SIZEOF_VOID_P EQUAL 4)
    target_compile_options(k7_options INTERFACE -msse2 -mfpmath=sse)
  endif()
  if(UNIX AND CMAKE_SIZEOF_VOID_P EQUAL 4)
    # The calendar before 1901 and after 2038, and files of more than two gigabytes.
    target_compile_definitions(k7_options INTERFACE _TIME_BITS=64 _FILE_OFFSET_BITS=64)
  endif()
endif()

if(K7_SANITIZE)
  target_compile_options(k7_options INTERFACE
    -fsanitize=${K7_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(k7_options INTERFACE -fsanitize=${K7_SANITIZE})
endif()
