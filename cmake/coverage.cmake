# Everything is counted, not lib alone: the linker takes one copy of what headers define, and that may be a test's.
option(ZELT_COVERAGE "count which lines and branches the tests run" OFF)
if(ZELT_COVERAGE)
    add_compile_options(--coverage -fprofile-update=atomic)
    add_link_options(--coverage)
endif()
