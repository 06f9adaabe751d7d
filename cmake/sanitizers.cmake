set(ZELT_SANITIZE "" CACHE STRING "sanitizers, comma separated: address,undefined or thread")
if(ZELT_SANITIZE)
    add_compile_options(-fsanitize=${ZELT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${ZELT_SANITIZE})
endif()

# zelt_bring_sanitizers(a_program_in_c): it holds what libraries in C++ need of the sanitizers, too.
function(zelt_bring_sanitizers target)
    if(ZELT_SANITIZE)
        set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
    endif()
endfunction()

option(ZELT_FUZZ "let fuzz programs see which ways product and simulator go (clang)" OFF)
# zelt_open_eyes(): in the sources of this folder and those below; costs them a counter for each branch.
macro(zelt_open_eyes)
    if(ZELT_FUZZ)
        add_compile_options(-fsanitize-coverage=inline-8bit-counters,pc-table)
    endif()
endmacro()
