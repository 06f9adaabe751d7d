#include "choices.h"

namespace simulator {

Result Choices::choose(Choice choice, std::uint32_t option) {
    const auto index = static_cast<std::size_t>(choice);
    if (index >= kOptionCounts.size()) return Result::NotFound;
    if (option >= kOptionCounts[index]) return Result::InvalidValue;
    m_options[index] = option;
    return Result::Success;
}

void Choices::reset() {
    for (auto& option : m_options) option = 0;
}

}  // namespace simulator
