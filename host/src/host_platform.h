/// Everything that differs between operating systems. One source per system.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace host::platform {

/// File names of this system's libraries.
extern const char* const kPluginFileName;
extern const char* const kVendorFileName;

/// Why the loader refused a library, told from its message.
enum class LoadProblem { Missing, VendorMissing, VendorWrong, Other };

struct LoadError {
    LoadProblem problem = LoadProblem::Other;
    std::string text;  ///< the loader's own words
};

/// A loaded library; unloaded by the destructor.
class Library {
  public:
    virtual ~Library() = default;
    /// Address of an exported function; null when there is none.
    virtual void* symbol(const char* name) const = 0;
    /// Keeps the library in memory until the program ends.
    virtual void keepLoaded() = 0;
};

/// Loads a library with everything it needs, all functions resolved at once. Empty on failure.
std::unique_ptr<Library> loadLibrary(const std::filesystem::path& file, LoadError& error);

/// The library of that name if the process has loaded it already, else empty.
std::unique_ptr<Library> findLoadedLibrary(const char* name);

/// Tells the kinds of loader messages apart. `fileExists` speaks of the library that was asked for.
LoadProblem classifyLoadError(const std::string& text, bool fileExists);

/// Folder of the running program.
std::filesystem::path executableDirectory();

enum class Stream { Out, Error };
bool isTerminal(Stream stream);
/// Columns of the terminal, 80 where that is not known.
int terminalWidth(Stream stream);
/// True when the user's locale shows UTF-8.
bool showsUtf8();

/// From now on the first Ctrl-C (or request to terminate) only raises the flag; the second one kills.
void catchInterrupts();
bool interruptRequested();

/// A file-size limit or a closed pipe shall be a failed write, not the end of the program.
void makeWriteErrorsReturn();

}  // namespace host::platform
