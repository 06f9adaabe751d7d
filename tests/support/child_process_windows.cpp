#include <array>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

#include <windows.h>

#include "child_process.h"

namespace test_support {

// The runtime does not know the number of a pipe that nobody reads.
const char* const kFullOutput = "Invalid argument";
const bool kShowsUtf8 = false;

namespace {

// A path knows how to convert, and made of these characters it takes them for UTF-8.
std::filesystem::path path(const std::string& text) {
    return std::u8string(text.begin(), text.end());
}

/// Closes the handle it holds.
struct Handle {
    Handle() = default;
    ~Handle() { close(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    void close() {
        if (value != nullptr) ::CloseHandle(value);
        value = nullptr;
    }
    HANDLE value = nullptr;
};

/// One stream of the program: the end it writes to and the end that is read here.
struct Channel {
    Channel() {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        if (::CreatePipe(&here.value, &there.value, &inherited, 0) == FALSE)
            throw std::runtime_error("no pipe");
        ::SetHandleInformation(here.value, HANDLE_FLAG_INHERIT, 0);
    }

    Handle here;
    Handle there;
    std::string arrived;  ///< guarded by the mutex of the process
    bool open = true;
    std::thread reader;
};

// As the runtime of the program takes its command line apart again.
std::wstring quoted(const std::wstring& argument) {
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t letter : argument) {
        if (letter == L'"') text.append(backslashes + 1, L'\\');
        backslashes = letter == L'\\' ? backslashes + 1 : 0;
        text += letter;
    }
    return text.append(backslashes, L'\\') + L'"';
}

std::wstring commandLine(const std::filesystem::path& program, const std::vector<std::string>& arguments) {
    std::wstring line = quoted(program.wstring());
    for (const std::string& argument : arguments) line += L' ' + quoted(path(argument).wstring());
    return line;
}

/// The variables of this process but those that differ, each with its end, and one more end.
std::wstring environmentBlock(const ChildOptions& options) {
    std::wstring block;
    wchar_t* const all = ::GetEnvironmentStringsW();
    for (const wchar_t* one = all; *one != 0; one += std::char_traits<wchar_t>::length(one) + 1) {
        const std::wstring row = one;
        const std::string name = std::filesystem::path(row.substr(0, row.find(L'=', 1))).string();
        if (!options.environment.contains(name)) block += row + L'\0';
    }
    ::FreeEnvironmentStringsW(all);
    for (const auto& [name, value] : options.environment) {
        if (value.has_value()) block += path(name + '=' + *value).wstring() + L'\0';
    }
    return block + L'\0';
}

BOOL WINAPI ignoreKey(DWORD) {
    return TRUE;
}

void appendText(std::string& text, const std::string& arrived) {
    for (const char letter : arrived) {
        if (letter == '\n' && text.ends_with('\r')) text.pop_back();
        text += letter;
    }
}

}  // namespace

struct ChildProcess::Native {
    void start(Channel& channel) {
        channel.there.close();
        channel.reader = std::thread([this, &channel] {
            std::array<char, 4096> buffer{};
            DWORD count = 0;
            while (::ReadFile(channel.here.value, buffer.data(), DWORD{buffer.size()}, &count, nullptr) !=
                   FALSE) {
                const std::lock_guard lock(mutex);
                channel.arrived.append(buffer.data(), count);
                changed.notify_all();
            }
            const std::lock_guard lock(mutex);
            channel.open = false;
            changed.notify_all();
        });
    }
    bool hasNews() const { return !out.arrived.empty() || !error.arrived.empty(); }
    bool isOver() const { return !out.open && !error.open; }

    Handle process;
    DWORD id = 0;
    std::mutex mutex;
    std::condition_variable changed;
    Channel out;
    Channel error;
};

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                           const ChildOptions& options)
    : m_native(std::make_unique<Native>()) {
    if (options.terminal || options.fileSizeLimit != 0) throw std::runtime_error("not on this system");
    // A pipe that nobody reads any more has no room.
    if (options.fullOutput) m_native->out.here.close();
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = m_native->out.there.value;
    startup.hStdError = m_native->error.there.value;
    std::wstring line = commandLine(program, arguments);
    std::wstring environment = environmentBlock(options);
    PROCESS_INFORMATION information{};
    const DWORD flags = CREATE_UNICODE_ENVIRONMENT | CREATE_NO_WINDOW;
    if (::CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, flags, environment.data(),
                         nullptr, &startup, &information) == FALSE) {
        throw std::runtime_error("cannot start " + program.string());
    }
    ::CloseHandle(information.hThread);
    m_native->process.value = information.hProcess;
    m_native->id = information.dwProcessId;
    m_native->start(m_native->out);
    m_native->start(m_native->error);
}

ChildProcess::~ChildProcess() {
    ::TerminateProcess(m_native->process.value, 1);
    m_native->out.reader.join();
    m_native->error.reader.join();
    ::WaitForSingleObject(m_native->process.value, INFINITE);
}

bool ChildProcess::readSome(std::chrono::milliseconds patience) {
    Native& native = *m_native;
    std::unique_lock lock(native.mutex);
    native.changed.wait_for(lock, patience, [&] { return native.hasNews() || native.isOver(); });
    if (!native.hasNews()) return !native.isOver();
    appendText(m_out, std::exchange(native.out.arrived, {}));
    appendText(m_error, std::exchange(native.error.arrived, {}));
    return true;
}

// The program has a console of its own, which no user sees and this process joins only to press the key. A
// process group would spare this process the event, but Wine sends none to a group.
void ChildProcess::interrupt() {
    [[maybe_unused]] static const BOOL s_deaf = ::SetConsoleCtrlHandler(&ignoreKey, TRUE);
    ::FreeConsole();
    const bool sent =
        ::AttachConsole(m_native->id) != FALSE && ::GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0) != FALSE;
    ::FreeConsole();
    if (!sent) throw std::runtime_error("the program cannot be interrupted");
}

int ChildProcess::wait() {
    while (readSome(std::chrono::hours(1))) {
    }
    ::WaitForSingleObject(m_native->process.value, INFINITE);
    DWORD code = 0;
    ::GetExitCodeProcess(m_native->process.value, &code);
    return static_cast<int>(code);
}

}  // namespace test_support
