enable_testing()

set(ZELT_SYSTEM posix)
set(ZELT_OTHER_SYSTEM windows)
if(WIN32)
    set(ZELT_SYSTEM windows)
    set(ZELT_OTHER_SYSTEM posix)
endif()

# Takes the files for the other system, *_posix.cpp and *_posix_test.cpp or *_windows*, out of a list.
macro(zelt_drop_other_systems list)
    list(FILTER ${list} EXCLUDE REGEX "_${ZELT_OTHER_SYSTEM}(_test)?\\.c(pp)?$")
endmacro()

# zelt_add_test(NAME unit_diagnostics DIRECTORY unit/diagnostics LIBRARIES zelt_base)
# One program per folder, its sources found by glob, of those that begin with PREFIX where a folder has several
# programs; a test that skips itself fails. They take both
# processors, since some measure time, but not where sanitizers spoil it; those that need virtual time alone
# set PROCESSORS to 1.
function(zelt_add_test)
    cmake_parse_arguments(ARG "" "NAME;DIRECTORY;PREFIX;MAIN" "LIBRARIES" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS "${ARG_DIRECTORY}/${ARG_PREFIX}*_test.cpp")
    zelt_drop_other_systems(sources)
    add_executable(${ARG_NAME} ${sources})
    target_link_libraries(${ARG_NAME} PRIVATE ${ARG_LIBRARIES} zelt_test_support GTest::gmock GTest::gtest
        zelt_warnings)
    # What is tested is optimised as the preset says; the tests themselves only have to compile quickly.
    if(MINGW)
        # Nothing shows their lines there, and the linker would need minutes for them.
        target_compile_options(${ARG_NAME} PRIVATE -O0 -g0)
    elseif(NOT MSVC)
        target_compile_options(${ARG_NAME} PRIVATE -O0 -g1)
    endif()
    add_test(NAME ${ARG_NAME} COMMAND ${ARG_NAME})
    set(processors 2)
    if(ZELT_SANITIZE)
        set(processors 1)
    endif()
    set_tests_properties(${ARG_NAME} PROPERTIES
        FAIL_REGULAR_EXPRESSION "SKIPPED;DISABLED" TIMEOUT 600 PROCESSORS ${processors})
endfunction()
