#include "exception_manager.h"

#include <utility>

namespace exception_manager {

Exception::Exception(std::uint32_t code, std::string message, std::string source)
    : m_code(code), m_message(std::move(message)), m_source(std::move(source)) {}

Exception::~Exception() = default;

void Exception::addArgument(std::string name, std::string value) {
    m_arguments.push_back({std::move(name), 0, std::move(value)});
}

std::string fillPlaceholders(const Exception& exception) {
    const std::string& message = exception.getMessage();
    const auto& arguments = exception.getArguments();
    std::string filled;
    for (std::size_t at = 0; at < message.size(); ++at) {
        const char digit = message[at] == '%' && at + 1 < message.size() ? message[at + 1] : '\0';
        const std::size_t number = digit >= '1' && digit <= '9' ? static_cast<std::size_t>(digit - '0') : 0;
        if (number == 0 || number > arguments.size()) {
            filled += message[at];
            continue;
        }
        filled += arguments[number - 1].value;
        ++at;
    }
    return filled;
}

}  // namespace exception_manager
