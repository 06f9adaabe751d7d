# All binaries of a build lie in one folder and find each other there, as in an installation.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN")
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
if(NOT MSVC)
    # Texts that name a source do so from the project's root, on whatever machine it was built.
    add_compile_options("-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=")
endif()
# A package needs the product, not the tests.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
option(ZELT_TESTS "build the tests" ON)

# A second build of the same sources costs little where the compiler cache is installed.
find_program(ZELT_CCACHE ccache)
if(ZELT_CCACHE)
    set(CMAKE_C_COMPILER_LAUNCHER "${ZELT_CCACHE}")
    set(CMAKE_CXX_COMPILER_LAUNCHER "${ZELT_CCACHE}")
endif()
