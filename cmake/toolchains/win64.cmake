# 64-bit Windows with Debian's MinGW-w64. Libraries come from `script/target-libs win64`.
set(K7_MACHINE x86_64)
set(K7_WINE_ARCH win64)
set(K7_TARGET_LIBS ${CMAKE_CURRENT_LIST_DIR}/../../build/libs/win64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
