# What both Windows targets have in common; K7_MACHINE says which it is. Threads are those of the posix flavour, and the
# compiler's run-time library is linked in, so that k7core.dll needs nothing beside it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${K7_MACHINE})
set(CMAKE_C_COMPILER ${K7_MACHINE}-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER ${K7_MACHINE}-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER ${K7_MACHINE}-w64-mingw32-windres)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
set(ZLIB_USE_STATIC_LIBS ON)

set(CMAKE_FIND_ROOT_PATH /usr/${K7_MACHINE}-w64-mingw32 ${K7_TARGET_LIBS})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${K7_TARGET_LIBS}/lib/pkgconfig)

# Programs run in a Wine of the build folder, which the first of them sets up.
set(CMAKE_CROSSCOMPILING_EMULATOR env WINEPREFIX=${CMAKE_BINARY_DIR}/wine WINEARCH=${K7_WINE_ARCH} WINEDEBUG=-all
  WINEDLLOVERRIDES=mscoree,mshtml= wine)
