/// Runs clang for the Windows C++ ABI over a source, with the stub headers of windows_stubs in place of those
/// of a Windows machine.
#pragma once

#include <string>
#include <vector>

namespace slot_check {

/// What clang prints about `source`, line by line. Folders are searched for headers; `flags` say what is to
/// be printed. Throws std::runtime_error with clang's words when the source does not compile.
///
/// Access control is off and no class is final: both say nothing about a layout, and every class can be
/// derived from.
std::vector<std::string> runClang(const std::string& source, const std::vector<std::string>& folders,
                                  const std::string& flags);

}  // namespace slot_check
