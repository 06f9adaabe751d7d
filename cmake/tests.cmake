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

# ctest hands out six parts of the machine (CMakePresets.json). Tests that compute take a half of them, those that
# mostly wait one or two.
set(ZELT_WHOLE 6)
set(ZELT_HALF 3)

# zelt_add_test(NAME unit_diagnostics DIRECTORY unit/diagnostics LIBRARIES zelt_base)
# zelt_add_test(NAME fault_tests DIRECTORY trust PREFIX fault_ LIBRARIES zelt_base)
# One program per folder, or per beginning of names in it, its sources found by glob; a test that skips itself
# fails. SHARDS: it is run so many times, with a part of its tests each. ALONE: the suite of that name is run by
# itself, with nothing beside it.
function(zelt_add_test)
    cmake_parse_arguments(ARG "" "NAME;DIRECTORY;PREFIX;SHARDS;ALONE;MAIN" "LIBRARIES" ${ARGN})
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
    set(tests ${ARG_NAME})
    if(ARG_SHARDS)
        set(tests)
        foreach(shard RANGE 1 ${ARG_SHARDS})
            list(APPEND tests ${ARG_NAME}_${shard})
        endforeach()
    endif()
    set(filter)
    if(ARG_ALONE)
        set(filter --gtest_filter=-${ARG_ALONE}.*)
        add_test(NAME ${ARG_NAME}_alone COMMAND ${ARG_NAME} --gtest_filter=${ARG_ALONE}.*)
        set_tests_properties(${ARG_NAME}_alone PROPERTIES
            FAIL_REGULAR_EXPRESSION "SKIPPED;DISABLED" TIMEOUT 600 PROCESSORS ${ZELT_WHOLE})
    endif()
    set(index 0)
    foreach(test IN LISTS tests)
        add_test(NAME ${test} COMMAND ${ARG_NAME} ${filter})
        set_tests_properties(${test} PROPERTIES
            FAIL_REGULAR_EXPRESSION "SKIPPED;DISABLED" TIMEOUT 600 PROCESSORS ${ZELT_HALF})
        if(ARG_SHARDS)
            set_tests_properties(${test} PROPERTIES
                ENVIRONMENT "GTEST_TOTAL_SHARDS=${ARG_SHARDS};GTEST_SHARD_INDEX=${index}")
        endif()
        math(EXPR index "${index} + 1")
    endforeach()
endfunction()
