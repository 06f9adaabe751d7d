/// Messages for the host's user: a template with numbered placeholders and the arguments that fill them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zelt_base_export.h"

namespace exception_manager {

/// One argument of a message. The first of a message fills "%1", the second "%2", and so on.
struct Argument {
    std::string name;
    std::int32_t kind = 0;
    std::string value;
};

/// A failure told to the host's user; thrown to the host or kept as a channel's last error. Deliberately not
/// derived from std::exception: a handler catches it by its own name.
class ZELT_BASE_API Exception {
  public:
    Exception() = default;
    /// `source` names the reporting component, `message` is the template.
    Exception(std::uint32_t code, std::string message, std::string source);
    Exception(const Exception&) = default;
    Exception(Exception&&) = default;
    Exception& operator=(const Exception&) = default;
    Exception& operator=(Exception&&) = default;
    virtual ~Exception();

    void addArgument(std::string name, std::string value);

    std::uint32_t getCode() const { return m_code; }
    const std::string& getMessage() const { return m_message; }
    const std::string& getSource() const { return m_source; }
    const std::vector<Argument>& getArguments() const { return m_arguments; }

  private:
    std::uint32_t m_code = 0;
    std::string m_message;
    std::string m_source;
    std::vector<Argument> m_arguments;
};

/// The message with its placeholders "%1" to "%9" filled. A placeholder without an argument stays as it is;
/// text that comes from an argument is not searched again.
ZELT_BASE_API std::string fillPlaceholders(const Exception& exception);

}  // namespace exception_manager
