/// Constraint lists in words, for comparing kind, contents and order at once.
#pragma once

#include <memory>
#include <sstream>
#include <string>
#include <typeinfo>
#include <vector>

#include "channel_config_constraints.h"

inline std::string inWords(const config_items::IfConfigItemConstraint& constraint) {
    using BoolChoice = config_items::OptionConstraint<config_items::SingleValueConfigItem<bool>>;
    using StringChoice = config_items::OptionConstraint<config_items::SingleValueConfigItem<std::string>>;
    using ScalarChoice = config_items::OptionConstraint<config_items::ScalarConfigItem>;
    const auto flag = [](bool value) { return value ? " true" : " false"; };
    if (const auto* readOnly = dynamic_cast<const channel_config::ReadOnlyConstraint*>(&constraint)) {
        return std::string("read-only") + flag(readOnly->getFlag());
    }
    using DuringAcquisition = channel_config::ConfigurableDuringAcquisitionConstraint;
    if (const auto* during = dynamic_cast<const DuringAcquisition*>(&constraint)) {
        return std::string("during acquisition") + flag(during->getFlag());
    }
    if (const auto* choice = dynamic_cast<const BoolChoice*>(&constraint)) {
        return std::string("choice") + flag(choice->getItem().m_value);
    }
    if (const auto* range = dynamic_cast<const config_items::ValueRangeConstraint<double>*>(&constraint)) {
        std::ostringstream words;
        words << "from " << range->getMin() << " to " << range->getMax();
        return words.str();
    }
    if (const auto* text = dynamic_cast<const StringChoice*>(&constraint)) {
        return "choice '" + text->getItem().m_value + "'";
    }
    if (const auto* scalar = dynamic_cast<const ScalarChoice*>(&constraint)) {
        return "choice " + scalar->getItem().toString();
    }
    using Independent = channel_config::FullyIndependentSampleRateConstraint;
    if (const auto* independent = dynamic_cast<const Independent*>(&constraint)) {
        return std::string("independent rate") + flag(independent->getFlag());
    }
    return typeid(constraint).name();
}

inline std::vector<std::string> inWords(
    const std::vector<std::shared_ptr<config_items::IfConfigItemConstraint>>& constraints) {
    std::vector<std::string> words;
    for (const auto& constraint : constraints) words.push_back(inWords(*constraint));
    return words;
}
