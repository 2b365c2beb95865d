# What targets need beside the library: the importers of the example hosts' store, without its database, the formats of
# elevation grids, and how requests of HTTP are read.
file(GLOB importers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/examples/store/import_*.cpp
  ${PROJECT_SOURCE_DIR}/examples/store/text_1252.cpp)
file(GLOB grids CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/examples/terrain/grid/*.cpp
  ${PROJECT_SOURCE_DIR}/examples/app_common/option_table.cpp)
set(requests ${PROJECT_SOURCE_DIR}/examples/chart/web/http_request.cpp ${PROJECT_SOURCE_DIR}/examples/chart/web/http.cpp
  ${PROJECT_SOURCE_DIR}/examples/chart/web/tile_path.cpp ${PROJECT_SOURCE_DIR}/examples/chart/web/tile_grid.cpp)
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
  if(target MATCHES "^http_request_fuzz")
    target_sources(${target} PRIVATE ${requests})
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/examples/chart)
  endif()
endfunction()
