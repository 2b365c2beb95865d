# What targets need beside the library: the importers of the example hosts' store, without its database, and the formats of
# elevation grids.
file(GLOB importers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/examples/store/import_*.cpp
  ${PROJECT_SOURCE_DIR}/examples/store/text_1252.cpp)
file(GLOB grids CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/examples/terrain/grid/*.cpp
  ${PROJECT_SOURCE_DIR}/examples/app_common/option_table.cpp)
function(k7_fuzz_needs target)
  if(target MATCHES "^nav_import_fuzz")
    target_sources(${target} PRIVATE ${importers})
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/examples)
    target_link_libraries(${target} PRIVATE ZLIB::ZLIB)
  endif()
  if(target MATCHES "^elev_grid_fuzz")
    target_sources(${target} PRIVATE ${grids})
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/examples
      ${PROJECT_SOURCE_DIR}/examples/terrain)
  endif()
endfunction()
