# What is the same for every binary for Windows: plain names, and the shared runtime beside the programs.
if(NOT WIN32)
    return()
endif()
set(CMAKE_SHARED_LIBRARY_PREFIX "")
set(CMAKE_SHARED_MODULE_PREFIX "")
add_compile_definitions(WIN32_LEAN_AND_MEAN NOMINMAX)

if(CMAKE_CROSSCOMPILING)
    set(CMAKE_CROSSCOMPILING_EMULATOR "${PROJECT_SOURCE_DIR}/tools/wine.sh")
endif()

if(MSVC)
    add_compile_options(/utf-8 /permissive- /EHsc $<$<COMPILE_LANGUAGE:CXX>:/Zc:preprocessor>)
endif()
if(MINGW)
    # Sources full of templates have more sections than the old object format counts.
    add_compile_options(-Wa,-mbig-obj)
    # Exceptions and types cross the border between host and plug-in, so all share one runtime.
    file(GLOB runtime "${ZELT_WINDOWS_PREFIX}/runtime/*.dll")
    file(COPY ${runtime} DESTINATION "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
endif()
