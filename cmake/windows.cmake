# What is the same for every binary for Windows: plain names, the shared runtime beside the programs, and what
# the properties of a file show.

# zelt_describe(zelt_base "what it is"): version information, where the system has it.
function(zelt_describe target description)
    if(NOT WIN32)
        return()
    endif()
    set(file $<TARGET_FILE_NAME:${target}>)
    set(type VFT_DLL)
    get_target_property(kind ${target} TYPE)
    if(kind STREQUAL EXECUTABLE)
        set(type VFT_APP)
    endif()
    set(resource "${CMAKE_CURRENT_BINARY_DIR}/${target}_version")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/version.rc.in" "${resource}.in" @ONLY)
    file(GENERATE OUTPUT "${resource}.rc" INPUT "${resource}.in" TARGET ${target})
    target_sources(${target} PRIVATE "${resource}.rc")
endfunction()

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
    # Two builds of the same sources give the same bytes.
    add_link_options(-Wl,--no-insert-timestamp)
    add_compile_options("-ffile-prefix-map=${ZELT_WINDOWS_PREFIX}/=" "-fdebug-prefix-map=${PROJECT_SOURCE_DIR}/=")
    # Sources full of templates have more sections than the old object format counts.
    add_compile_options(-Wa,-mbig-obj)
    # Exceptions and types cross the border between host and plug-in, so all share one runtime.
    file(GLOB runtime "${ZELT_WINDOWS_PREFIX}/runtime/*.dll")
    file(COPY ${runtime} DESTINATION "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
endif()
