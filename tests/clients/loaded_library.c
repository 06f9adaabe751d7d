#include "loaded_library.h"

#include <stdio.h>
#include <string.h>

#if defined(_WIN32)
#include <windows.h>

const char* const kLibraryName = "VimbaC.dll";
typedef HMODULE Module;
typedef FARPROC Symbol;

static Module openModule(const char* path) {
    return LoadLibraryA(path);
}

static Symbol findSymbol(Module module, const char* name) {
    return GetProcAddress(module, name);
}
#else
#include <dlfcn.h>

const char* const kLibraryName = "libVimbaC.so";
typedef void* Module;
typedef void* Symbol;

static Module openModule(const char* path) {
    return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

static Symbol findSymbol(Module module, const char* name) {
    return dlsym(module, name);
}
#endif

LoadedLibrary api;

static bool look(Module module, const char* name, void* place) {
    const Symbol symbol = findSymbol(module, name);
    // C converts no pointer to data into one to a function, but both systems give them the same form.
    memcpy(place, &symbol, sizeof symbol);
    if (!symbol) printf("The library has no function %s.\n", name);
    return symbol;
}

bool loadLibrary(const char* path) {
    const Module module = openModule(path);
    bool complete = module;
    if (!module) printf("The library %s cannot be loaded.\n", path);
#define LOADED_LOOK(name) complete = complete && look(module, #name, &api.name);
    LOADED_FUNCTIONS(LOADED_LOOK)
#undef LOADED_LOOK
    return complete;
}
