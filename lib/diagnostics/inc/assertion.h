/// Assertions: checks that report to a process-wide hook and let the program go on.
///
/// A failed assertion never throws. With the default hook it has no effect at all, so every caller must
/// survive the condition it asserted.
#pragma once

#include <cstddef>

#include "zelt_base_export.h"

namespace diagnostics {

/// Told of a failed assertion: the expression's text, a formatted message or null, the source's path inside
/// the repository without extension, and the line. [any thread] Called on the thread that failed, possibly
/// with locks held: it must not call back into the plug-in and must not throw. A result of 0 stops the
/// program at a breakpoint, any other lets it go on.
using AssertionHook = int (*)(const char* expression, const char* message, const char* file, int line);

/// Replaces the process-wide hook and returns the previous one. The initial hook ignores its arguments and
/// returns 1; null behaves alike. [any thread]
ZELT_BASE_API AssertionHook setAssertionHook(AssertionHook hook) noexcept;

/// Reports a failed assertion to the hook and returns the hook's result, 1 without a hook. The message is
/// formatted as by printf, cut after 255 characters. [any thread]
#if defined(__GNUC__)
__attribute__((format(printf, 4, 5)))
#endif
ZELT_BASE_API int
assertFailed(const char* expression, const char* file, int line, const char* format = nullptr, ...) noexcept;

/// Executes a breakpoint instruction.
ZELT_BASE_API void breakIntoDebugger() noexcept;

/// A source's path inside the repository without extension, worked out by the compiler: no folder of the
/// building machine gets into the library.
template <std::size_t Size>
struct SourcePath {
    /// `file`: the compiler's `__FILE__`, from the repository's root, from that of the file system or from
    /// the folder that is built in.
    consteval SourcePath(const char (&file)[Size]) {
        std::size_t begin = 0;
        std::size_t end = Size - 1;
        for (std::size_t i = 0; i < Size; ++i) {
            text[i] = file[i] == '\\' ? '/' : file[i];
            if (text[i] == '.') end = i;
            if (endsIn("../", i)) begin = i + 1;
            if (endsIn("/lib/", i)) begin = i - 3;
        }
        for (std::size_t i = 0; i < Size; ++i) text[i] = begin + i < end ? text[begin + i] : '\0';
    }

    char text[Size] = {};

  private:
    template <std::size_t Length>
    consteval bool endsIn(const char (&part)[Length], std::size_t last) const {
        bool found = last + 2 >= Length;
        for (std::size_t i = 0; found && i + 1 < Length; ++i) found = text[last + 2 - Length + i] == part[i];
        return found;
    }
};

/// Its text, as long as the library is loaded.
template <SourcePath path>
inline constexpr const char* sourcePathText = path.text;

}  // namespace diagnostics

/// This source, as failed assertions name it.
#define ZELT_SOURCE_PATH ::diagnostics::sourcePathText<__FILE__>

/// Asserts `condition`, reported under the text `expression`; a printf-style message may follow.
#define ZELT_ASSERT_AS(condition, expression, ...)                                                   \
    do {                                                                                             \
        if (!(condition) && ::diagnostics::assertFailed((expression), ZELT_SOURCE_PATH,              \
                                                        __LINE__ __VA_OPT__(, ) __VA_ARGS__) == 0) { \
            ::diagnostics::breakIntoDebugger();                                                      \
        }                                                                                            \
    } while (false)

/// Asserts an expression.
#define ZELT_ASSERT(expression) ZELT_ASSERT_AS(expression, #expression)
