#pragma once

#include <stdexcept>
#include <string>

#include "exit_codes.h"

namespace host {

/// Ends a command: an exit code and one sentence for the user that names cause and way out.
class HostFailure : public std::runtime_error {
  public:
    HostFailure(ExitCode code, const std::string& sentence) : std::runtime_error(sentence), m_code(code) {}

    ExitCode code() const { return m_code; }

  private:
    ExitCode m_code;
};

}  // namespace host
