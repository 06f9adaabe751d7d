#[[
The camera vendor's installed SDK, to link its own import library instead of the one made from VimbaC.def:

    cmake -DZELT_VIMBAC_SDK=ON ...

Looked for in the variable VIMBAC_ROOT, in the environment variable VIMBA_HOME, which the vendor's installer sets, and
in the folders into which it installs. Gives the target VimbaC::VimbaC and

    VimbaC_INCLUDE_DIR   folder of the vendor's VimbaC.h; for the record, since lib/vimba_c/inc declares the same
    VimbaC_LIBRARY       VimbaC.lib, elsewhere libVimbaC.so
    VimbaC_RUNTIME       VimbaC.dll, when it was found

Never tried with a real SDK: the folders are those that the vendor documents, the tests use made-up ones.
]]
set(roots "${VIMBAC_ROOT}" "$ENV{VIMBA_HOME}")
if(WIN32)
    file(GLOB installed "$ENV{ProgramFiles}/Allied Vision/Vimba_*")
    list(SORT installed COMPARE NATURAL ORDER DESCENDING)
    list(APPEND roots ${installed})
else()
    file(GLOB installed /opt/Vimba_*)
    list(SORT installed COMPARE NATURAL ORDER DESCENDING)
    list(APPEND roots ${installed})
endif()
list(REMOVE_ITEM roots "")

# The SDK lies where it was installed, also when another system is built for.
set(here NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
find_path(VimbaC_INCLUDE_DIR VimbaC.h PATHS ${roots} PATH_SUFFIXES VimbaC/Include VimbaC/Include/VimbaC ${here})
find_library(VimbaC_LIBRARY VimbaC PATHS ${roots} PATH_SUFFIXES VimbaC/Lib/Win64 VimbaC/DynamicLib/x86_64bit ${here})
find_file(VimbaC_RUNTIME VimbaC.dll PATHS ${roots} PATH_SUFFIXES VimbaC/Bin/Win64 ${here})

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(VimbaC REQUIRED_VARS VimbaC_LIBRARY VimbaC_INCLUDE_DIR
    REASON_FAILURE_MESSAGE "set VIMBAC_ROOT to the folder of the vendor's SDK that holds VimbaC/, or leave \
ZELT_VIMBAC_SDK off: nothing of the SDK is needed")
mark_as_advanced(VimbaC_INCLUDE_DIR VimbaC_LIBRARY VimbaC_RUNTIME)

if(VimbaC_FOUND AND NOT TARGET VimbaC::VimbaC)
    add_library(VimbaC::VimbaC UNKNOWN IMPORTED)
    set_target_properties(VimbaC::VimbaC PROPERTIES
        IMPORTED_LOCATION "${VimbaC_LIBRARY}" INTERFACE_INCLUDE_DIRECTORIES "${VimbaC_INCLUDE_DIR}")
endif()
