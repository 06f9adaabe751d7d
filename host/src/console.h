/// Output to the user. Lines and the progress line on one terminal never mix.
#pragma once

#include <cstdio>
#include <mutex>
#include <string>

namespace host {

/// Replaces what needs UTF-8 by plain characters of the same width.
std::string toAscii(const std::string& utf8);

/// Number of columns that a UTF-8 text takes.
std::size_t displayWidth(const std::string& utf8);

/// The program's two output streams. [any thread]
class Console {
  public:
    /// `utf8` false: everything is written in plain characters. `progress`: where the progress line goes,
    /// null for nowhere.
    Console(std::FILE* out, std::FILE* error, bool utf8, std::FILE* progress = nullptr);

    bool utf8() const { return m_utf8; }
    bool hasProgressLine() const { return m_progress != nullptr; }
    void setProgressStream(std::FILE* progress) { m_progress = progress; }
    /// What programs read, JSON or XML, is UTF-8 on the output stream whatever the user sees.
    void printForPrograms() { m_out_utf8 = true; }

    /// Writes text to the output stream as it is; lines end in '\n'.
    void print(const std::string& text);
    /// Writes one line to the error stream.
    void tell(const std::string& line);
    /// Draws the progress line anew, over the old one.
    void drawProgress(const std::string& line);
    /// Takes the progress line away.
    void clearProgress();

  private:
    void wipe();

    std::mutex m_mutex;
    std::FILE* m_out;
    std::FILE* m_error;
    const bool m_utf8;
    bool m_out_utf8;
    std::FILE* m_progress;
    bool m_drawn = false;
};

}  // namespace host
