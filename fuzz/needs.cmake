# What targets need beside the library: the importers of the example hosts' store, without its
# database.
file(GLOB importers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/examples/store/import_*.cpp
  ${PROJECT_SOURCE_DIR}/examples/store/text_1252.cpp)
function(k7_fuzz_needs target)
  if(target MATCHES "^nav_import_fuzz")
    target_sources(${target} PRIVATE ${importers})
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/examples)
    target_link_libraries(${target} PRIVATE ZLIB::ZLIB)
  endif()
endfunction()
