#include "console.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "host_failure.h"

namespace host {
namespace {

constexpr std::array<std::pair<const char*, char>, 5> kPlain{{
    {"\u00b7", '-'},
    {"\u00d7", 'x'},
    {"\u00b5", 'u'},
    {"\u2501", '#'},
    {"\u2500", '-'},
}};

bool startsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0u) != 0x80u;
}

std::string encoded(const std::string& text, bool utf8) {
    return utf8 ? text : toAscii(text);
}

}  // namespace

std::string toAscii(const std::string& utf8) {
    std::string plain;
    for (std::size_t i = 0; i < utf8.size();) {
        std::size_t next = i + 1;
        while (next < utf8.size() && !startsCharacter(utf8[next])) ++next;
        const std::string character = utf8.substr(i, next - i);
        const auto* row = std::find_if(kPlain.begin(), kPlain.end(),
                                       [&](const auto& candidate) { return character == candidate.first; });
        if (character.size() == 1) {
            plain += character;
        } else {
            plain += row != kPlain.end() ? row->second : '?';
        }
        i = next;
    }
    return plain;
}

std::size_t displayWidth(const std::string& utf8) {
    return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), startsCharacter));
}

Console::Console(std::FILE* out, std::FILE* error, bool utf8, std::FILE* progress)
    : m_out(out), m_error(error), m_utf8(utf8), m_out_utf8(utf8), m_progress(progress) {}

void Console::print(const std::string& text) {
    const std::lock_guard lock(m_mutex);
    wipe();
    if (std::fputs(encoded(text, m_out_utf8).c_str(), m_out) < 0 || std::fflush(m_out) != 0) {
        throw HostFailure(ExitCode::WriteFailed, "The result cannot be written to the standard output (" +
                                                     std::generic_category().message(errno) +
                                                     "); make room there or send it elsewhere.");
    }
}

void Console::tell(const std::string& line) {
    const std::lock_guard lock(m_mutex);
    wipe();
    std::fputs((encoded(line, m_utf8) + '\n').c_str(), m_error);
    std::fflush(m_error);
}

void Console::drawProgress(const std::string& line) {
    if (m_progress == nullptr) return;
    const std::lock_guard lock(m_mutex);
    wipe();
    std::fputs(encoded(line, m_utf8).c_str(), m_progress);
    std::fflush(m_progress);
    m_drawn = true;
}

void Console::clearProgress() {
    const std::lock_guard lock(m_mutex);
    wipe();
}

void Console::wipe() {
    if (!m_drawn) return;
    std::fputs("\r\x1b[K", m_progress);
    std::fflush(m_progress);
    m_drawn = false;
}

}  // namespace host
