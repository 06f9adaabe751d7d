/// What tests want of the operating system. One source per system.
#pragma once

#include <cstddef>
#include <filesystem>
#include <set>
#include <string>

namespace test_support {

/// For this process and those it starts from now on.
void setEnvironment(const std::string& name, const std::string& value);
void clearEnvironment(const std::string& name);

/// A new folder among the system's temporary files; throws std::runtime_error when there is none.
std::filesystem::path makeTemporaryDirectory();

/// Folder of the running program, and so of all binaries of the build.
std::filesystem::path programDirectory();

/// The file names of a program and a library of that name: X or X.exe, libX.so or X.dll.
std::string programFileName(const std::string& name);
std::string libraryFileName(const std::string& name);

/// The file from which the function or object at `address` was loaded.
std::filesystem::path libraryHolding(const void* address);

/// The address of a name in a library that the process has loaded already; null without either.
void* loadedSymbol(const std::string& libraryFile, const std::string& name);

/// Names of everything that a library exports.
std::set<std::string> exportedNames(const std::filesystem::path& library);

/// Does a thread of this process have that name?
bool hasThreadNamed(const std::string& name);

/// Memory so far from all other that nothing else takes its place once it is given back.
void* reserveFarPages(std::size_t size);
void releaseFarPages(void* pages, std::size_t size);

}  // namespace test_support
