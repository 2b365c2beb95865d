# 32-bit Windows with Debian's MinGW-w64. Libraries come from `script/target-libs win32`.
set(K7_MACHINE i686)
set(K7_WINE_ARCH win32)
set(K7_TARGET_LIBS ${CMAKE_CURRENT_LIST_DIR}/../../build/libs/win32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
