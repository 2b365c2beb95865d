# Installation: the library, its headers, find_package(k7core CONFIG) and pkg-config.
include(CMakePackageConfigHelpers)

install(TARGETS k7core EXPORT k7core-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

if(NOT BUILD_SHARED_LIBS)
  # A static library is linked together with its warning and sanitizer options.
  install(TARGETS k7_options EXPORT k7core-targets)
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/k7core)
install(EXPORT k7core-targets NAMESPACE k7:: DESTINATION ${package_dir})
configure_package_config_file(cmake/k7core-config.cmake.in k7core-config.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(k7core-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/k7core-config.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/k7core-config-version.cmake
  DESTINATION ${package_dir})

# Who links a static library links what it needs too.
if(BUILD_SHARED_LIBS)
  set(K7_PC_LIBS "")
  set(K7_PC_CFLAGS "")
else()
  set(K7_PC_SYSTEM_LIBS " -pthread -ldl")
  if(WIN32)
    set(K7_PC_SYSTEM_LIBS " -lwininet")
  endif()
  set(K7_PC_LIBS "${K7_PC_SYSTEM_LIBS}\nRequires: zlib libpng")
  set(K7_PC_CFLAGS " -DK7_STATIC")
endif()
# The .pc file finds its prefix from where it lies, so that an installation can be moved: not one whose folders are
# fixed.
set(K7_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
set(K7_PC_LIBDIR ${CMAKE_INSTALL_FULL_LIBDIR})
set(K7_PC_INCLUDEDIR ${CMAKE_INSTALL_FULL_INCLUDEDIR})
if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" AND NOT IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  file(RELATIVE_PATH K7_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(PREPEND K7_PC_PREFIX "\${pcfiledir}/")
  set(K7_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
  set(K7_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(cmake/k7core.pc.in k7core.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/k7core.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
