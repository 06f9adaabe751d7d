#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "child_process.h"
#include "test_system.h"

namespace test_support {

const char* const kFullOutput = "No space left on device";
const bool kShowsUtf8 = true;

/// One stream of the program: the end it writes to and the end that is read here.
struct Channel {
    Channel() {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
        here = ends[0];
        there = ends[1];
    }
    explicit Channel(const winsize& size) {
        if (openpty(&here, &there, nullptr, nullptr, &size) != 0) throw std::runtime_error("no terminal");
    }
    ~Channel() { close(here); }
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    void take(std::string& text) {
        std::array<char, 4096> buffer{};
        const ssize_t count = read(here, buffer.data(), buffer.size());
        if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
        open = count > 0 || (count < 0 && errno == EINTR);
    }

    int here = -1;
    int there = -1;
    bool open = true;
};

struct ChildProcess::Native {
    explicit Native(bool terminal) {
        winsize size{};
        size.ws_col = 120;
        size.ws_row = 24;
        out = terminal ? std::make_unique<Channel>(size) : std::make_unique<Channel>();
    }

    [[noreturn]] void become(const std::filesystem::path& program, std::vector<std::string> arguments,
                             const ChildOptions& options) {
        dup2(options.fullOutput ? ::open("/dev/full", O_WRONLY) : out->there, STDOUT_FILENO);
        dup2(error.there, STDERR_FILENO);
        for (const int descriptor : {out->here, error.here, out->there, error.there}) close(descriptor);
        if (options.fileSizeLimit != 0) {
            const rlimit limit{options.fileSizeLimit, options.fileSizeLimit};
            setrlimit(RLIMIT_FSIZE, &limit);
        }
        for (const auto& [name, value] : options.environment) {
            value.has_value() ? setEnvironment(name, *value) : clearEnvironment(name);
        }
        std::string file = program.string();
        std::vector<char*> pointers{file.data()};
        for (std::string& text : arguments) pointers.push_back(text.data());
        pointers.push_back(nullptr);
        execv(file.c_str(), pointers.data());
        _exit(127);
    }

    pid_t pid = -1;
    std::unique_ptr<Channel> out;
    Channel error;
};

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                           const ChildOptions& options)
    : m_native(std::make_unique<Native>(options.terminal)) {
    m_native->pid = fork();
    if (m_native->pid == 0) m_native->become(program, arguments, options);
    close(m_native->out->there);
    close(m_native->error.there);
}

ChildProcess::~ChildProcess() {
    if (m_native->pid <= 0) return;
    kill(m_native->pid, SIGKILL);
    waitpid(m_native->pid, nullptr, 0);
}

bool ChildProcess::readSome(std::chrono::milliseconds patience) {
    Channel& out = *m_native->out;
    Channel& error = m_native->error;
    if (!out.open && !error.open) return false;
    std::array<pollfd, 2> streams{
        {{out.open ? out.here : -1, POLLIN, 0}, {error.open ? error.here : -1, POLLIN, 0}}};
    if (poll(streams.data(), streams.size(), static_cast<int>(patience.count())) < 0) return errno == EINTR;
    if (streams[0].revents != 0) out.take(m_out);
    if (streams[1].revents != 0) error.take(m_error);
    return true;
}

void ChildProcess::interrupt() {
    kill(m_native->pid, SIGINT);
}

int ChildProcess::wait() {
    while (readSome(std::chrono::hours(1))) {
    }
    int status = 0;
    waitpid(m_native->pid, &status, 0);
    m_native->pid = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace test_support
