# 32-bit Linux programs on a 64-bit one, with Debian's g++-multilib. Libraries come from `script/target-libs linux32`.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
# SSE2 arithmetic in GoogleTest and the other libraries, too: their results are compared with ours.
set(CMAKE_C_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")
set(CMAKE_CXX_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)

set(K7_TARGET_LIBS ${CMAKE_CURRENT_LIST_DIR}/../../build/libs/linux32)
set(CMAKE_PREFIX_PATH ${K7_TARGET_LIBS})
set(CMAKE_LIBRARY_PATH /usr/lib32)
# The 64-bit libraries of the system would be found first, and not fit.
set(CMAKE_IGNORE_PATH /usr/lib/x86_64-linux-gnu /usr/lib/x86_64-linux-gnu/cmake /usr/lib/x86_64-linux-gnu/pkgconfig)
set(CMAKE_DISABLE_FIND_PACKAGE_GDAL ON)
set(ENV{PKG_CONFIG_LIBDIR} ${K7_TARGET_LIBS}/lib/pkgconfig)
