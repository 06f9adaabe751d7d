/// Conversions between values and their texts, independent of the locale that the host has set.
#pragma once

#include <cstdint>
#include <string>

#include "config_items.h"

namespace config_items {

std::string toText(bool value);
std::string toText(int value);
std::string toText(unsigned int value);
std::string toText(std::int64_t value);
/// 17 digits; "nan" and "inf", with "-" when the sign bit is set.
std::string toText(double value);
std::string toText(const std::string& value);
std::string toText(const channel_config::ChannelID& value);
std::string toText(const TupleValue<double, double>& value);

/// As boost::lexical_cast in the classic locale, whose error they throw.
void fromText(const std::string& text, bool& value);
void fromText(const std::string& text, int& value);
void fromText(const std::string& text, unsigned int& value);
void fromText(const std::string& text, double& value);
void fromText(const std::string& text, std::string& value);
void fromText(const std::string& text, channel_config::ChannelID& value);

/// Six digits, as a text stream writes by default.
std::string toStreamText(double value);

/// Equal, both NaN, or both infinite.
bool equalValues(double a, double b);

}  // namespace config_items
