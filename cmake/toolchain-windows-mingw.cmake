# g++ 12 of mingw-w64 with posix threads, for 64-bit Windows. What does not come with the compiler comes from
# the cross prefix that tools/windows-dependencies.sh makes and names in build/windows-prefix.txt.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(triple x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)

set(prefix_file "${CMAKE_CURRENT_LIST_DIR}/../build/windows-prefix.txt")
if(NOT ZELT_WINDOWS_PREFIX AND EXISTS "${prefix_file}")
    file(STRINGS "${prefix_file}" ZELT_WINDOWS_PREFIX LIMIT_COUNT 1)
endif()
if(NOT IS_DIRECTORY "${ZELT_WINDOWS_PREFIX}")
    message(FATAL_ERROR "The libraries for Windows are missing; run tools/windows-dependencies.sh first.")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZELT_WINDOWS_PREFIX)

# Never the building machine's own headers and libraries.
set(CMAKE_FIND_ROOT_PATH "${ZELT_WINDOWS_PREFIX}" /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Boost's socket code names these libraries to Microsoft's linker only.
set(CMAKE_CXX_STANDARD_LIBRARIES_INIT "-lws2_32 -lmswsock")
