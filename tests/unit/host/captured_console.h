#pragma once

#include <cstdio>
#include <string>

#include "console.h"

namespace host_test {

/// A console whose two streams can be read.
class CapturedConsole {
  public:
    explicit CapturedConsole(bool utf8)
        : m_out(std::tmpfile()), m_error(std::tmpfile()), m_console(m_out, m_error, utf8) {}
    ~CapturedConsole() {
        std::fclose(m_out);
        std::fclose(m_error);
    }
    CapturedConsole(const CapturedConsole&) = delete;
    CapturedConsole& operator=(const CapturedConsole&) = delete;

    host::Console& console() { return m_console; }
    std::FILE* errorStream() { return m_error; }
    std::string out() { return content(m_out); }
    std::string error() { return content(m_error); }

  private:
    static std::string content(std::FILE* file) {
        std::string text(static_cast<std::size_t>(std::ftell(file)), '\0');
        std::rewind(file);
        if (std::fread(text.data(), 1, text.size(), file) != text.size()) text = "unreadable";
        std::fseek(file, 0, SEEK_END);
        return text;
    }

    std::FILE* m_out;
    std::FILE* m_error;
    host::Console m_console;
};

}  // namespace host_test
