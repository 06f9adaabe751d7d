#include <csignal>
#include <cstdlib>

#include <dlfcn.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "host_platform.h"

namespace host::platform {

const char* const kPluginFileName = "libzelt_plugin_gige_camera.so";
const char* const kVendorFileName = "libVimbaC.so";

namespace {

volatile std::sig_atomic_t s_interrupted = 0;

void onInterrupt(int) {
    s_interrupted = 1;
}

class PosixLibrary : public Library {
  public:
    explicit PosixLibrary(void* handle) : m_handle(handle) {}
    ~PosixLibrary() override {
        if (!m_keep) dlclose(m_handle);
    }
    PosixLibrary(const PosixLibrary&) = delete;
    PosixLibrary& operator=(const PosixLibrary&) = delete;

    void* symbol(const char* name) const override { return dlsym(m_handle, name); }
    void keepLoaded() override { m_keep = true; }

  private:
    void* m_handle;
    bool m_keep = false;
};

int descriptor(Stream stream) {
    return stream == Stream::Out ? STDOUT_FILENO : STDERR_FILENO;
}

const char* environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

}  // namespace

LoadProblem classifyLoadError(const std::string& text, bool fileExists) {
    if (!fileExists) return LoadProblem::Missing;
    const auto says = [&](const char* words) { return text.find(words) != std::string::npos; };
    if (says("undefined symbol: Vmb")) return LoadProblem::VendorWrong;
    if (!says(kVendorFileName)) return LoadProblem::Other;
    return says("cannot open shared object file: No such file") ? LoadProblem::VendorMissing
                                                                : LoadProblem::VendorWrong;
}

std::unique_ptr<Library> loadLibrary(const std::filesystem::path& file, LoadError& error) {
    // A bare name would be searched for in the system's folders.
    const std::filesystem::path absolute = std::filesystem::absolute(file);
    if (void* handle = dlopen(absolute.c_str(), RTLD_NOW | RTLD_LOCAL); handle != nullptr) {
        return std::make_unique<PosixLibrary>(handle);
    }
    const char* text = dlerror();
    error.text = text != nullptr ? text : "the loader gave no reason";
    std::error_code ignored;
    error.problem = classifyLoadError(error.text, std::filesystem::exists(absolute, ignored));
    return nullptr;
}

std::unique_ptr<Library> findLoadedLibrary(const char* name) {
    void* handle = dlopen(name, RTLD_NOLOAD | RTLD_NOW);
    return handle != nullptr ? std::make_unique<PosixLibrary>(handle) : nullptr;
}

std::filesystem::path executableDirectory() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

bool isTerminal(Stream stream) {
    return isatty(descriptor(stream)) == 1;
}

int terminalWidth(Stream stream) {
    winsize size{};
    if (ioctl(descriptor(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
    return size.ws_col;
}

bool showsUtf8() {
    // The first of these that is set decides, as in setlocale.
    const char* locale = environment("LC_ALL");
    if (locale == nullptr) locale = environment("LC_CTYPE");
    if (locale == nullptr) locale = environment("LANG");
    const std::string name = locale != nullptr ? locale : "";
    return name.find("UTF-8") != std::string::npos || name.find("utf8") != std::string::npos;
}

void catchInterrupts() {
    struct sigaction action {};
    action.sa_handler = &onInterrupt;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool interruptRequested() {
    return s_interrupted != 0;
}

void makeWriteErrorsReturn() {
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace host::platform
