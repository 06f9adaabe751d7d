/// Assertions: checks that report to a process-wide hook and let the program go on.
///
/// A failed assertion never throws. With the default hook it has no effect at all, so every caller must
/// survive the condition it asserted.
#pragma once

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

}  // namespace diagnostics

/// Asserts `condition`, reported under the text `expression` for the source `path`; a printf-style message
/// may follow.
#define ZELT_ASSERT_AS(condition, expression, path, ...)                                                   \
    do {                                                                                                   \
        if (!(condition) &&                                                                                \
            ::diagnostics::assertFailed((expression), (path), __LINE__ __VA_OPT__(, ) __VA_ARGS__) == 0) { \
            ::diagnostics::breakIntoDebugger();                                                            \
        }                                                                                                  \
    } while (false)

/// Asserts an expression. A source that uses it defines `kSourcePath`, its own path inside the repository
/// without extension, so that no path of the building machine gets into the library.
#define ZELT_ASSERT(expression) ZELT_ASSERT_AS(expression, #expression, kSourcePath)
