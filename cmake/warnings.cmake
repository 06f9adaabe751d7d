add_library(zelt_warnings INTERFACE)
if(MSVC)
    target_compile_options(zelt_warnings INTERFACE /W4 /WX)
else()
    target_compile_options(zelt_warnings INTERFACE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
        $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Wsuggest-override>
        $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:Clang>>:-Wthread-safety>)
    # g++ takes sources that are compiled as one for headers, whose classes must not have what is file-local.
    target_compile_options(zelt_warnings INTERFACE
        $<$<AND:$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>,$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:GNU>>:-Wno-subobject-linkage>)
endif()

# clang-tidy runs in one preset only and over the product, not the tests.
option(ZELT_TIDY "run clang-tidy on every source of the product" OFF)
if(ZELT_TIDY)
    find_program(ZELT_CLANG_TIDY NAMES clang-tidy-14 clang-tidy REQUIRED)
    set(CMAKE_CXX_CLANG_TIDY "${ZELT_CLANG_TIDY};--quiet;--warnings-as-errors=*")
endif()
