# Host and plug-in both link this library, so that hooks, loggers and counters exist once per process.
file(GLOB zelt_base_sources CONFIGURE_DEPENDS diagnostics/src/*.cpp config_items/src/*.cpp)
add_library(zelt_base SHARED ${zelt_base_sources})
zelt_describe(zelt_base "Settings, logging and assertions that host and plug-in share")
target_include_directories(zelt_base PUBLIC diagnostics/inc config_items/inc)
target_compile_definitions(zelt_base PRIVATE ZELT_BASE_EXPORTS)
target_link_libraries(zelt_base PUBLIC Boost::headers Boost::log PRIVATE zelt_warnings)
