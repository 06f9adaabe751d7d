#include "option_values.h"

#include <charconv>
#include <cmath>
#include <utility>

#include "exit_codes.h"
#include "host_failure.h"

namespace host {
namespace {

constexpr double kShortestSeconds = 0.001;
constexpr double kLongestSeconds = 1e8;
constexpr std::int64_t kGreatestTerm = 1'000'000'000;

HostFailure bad(const std::string& sentence) {
    return {ExitCode::CommandLine, sentence};
}

template <class Number>
bool parseWhole(const std::string& text, Number& number) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end;
}

/// "0/FrameWidth" and "DEV_1/FrameWidth" name a channel; keys have slashes too.
std::pair<std::string, std::string> channelAndKey(const std::string& text) {
    const std::size_t slash = text.find('/');
    if (slash == std::string::npos || slash == 0) return {{}, text};
    const std::string first = text.substr(0, slash);
    const bool isId = first.find_first_not_of("0123456789") == std::string::npos;
    if (!isId && !first.starts_with("DEV_")) return {{}, text};
    return {first, text.substr(slash + 1)};
}

}  // namespace

double parseSeconds(const std::string& text) {
    double seconds = 0;
    if (!parseWhole(text, seconds) || !(seconds > 0)) {
        throw bad("--seconds takes a number greater than 0, such as 5 or 0.5, not \"" + text + "\".");
    }
    if (seconds < kShortestSeconds) {
        throw bad("--seconds takes 0.001 (a millisecond) at least, not \"" + text + "\".");
    }
    if (seconds > kLongestSeconds) {
        throw bad("--seconds takes 100000000 (three years) at most, not \"" + text + "\".");
    }
    return seconds;
}

std::int64_t parseMaxSpread(const std::string& text) {
    double microseconds = 0;
    if (!parseWhole(text, microseconds) || !(microseconds >= 0.001 && microseconds <= 1e6)) {
        throw bad("--max-spread takes a number of microseconds from 0.001 to 1000000, such as 1000, not \"" +
                  text + "\".");
    }
    return std::llround(microseconds * 1000);
}

std::set<std::uint32_t> parseChannels(const std::vector<std::string>& texts) {
    std::set<std::uint32_t> channels;
    for (const std::string& text : texts) {
        std::uint32_t id = 0;
        if (!parseWhole(text, id)) {
            throw bad("--channel takes the id of a channel, such as 0, not \"" + text +
                      "\"; zelt_host devices lists them.");
        }
        channels.insert(id);
    }
    return channels;
}

LogLevel parseLevel(const std::string& text) {
    if (const auto level = parseLogLevel(text)) return *level;
    std::string names;
    for (const char* name : kLogLevelNames) names += (names.empty() ? "" : ", ") + std::string(name);
    throw bad("--log-level takes one of " + names + ", not \"" + text + "\".");
}

std::vector<SettingOrder> parseSets(const std::vector<std::string>& texts) {
    std::vector<SettingOrder> orders;
    for (const std::string& text : texts) {
        const std::size_t sign = text.find('=');
        if (sign == std::string::npos || sign == 0) {
            throw bad("--set takes KEY=VALUE, such as CAMERA/Gain=3, not \"" + text +
                      "\"; zelt_host settings lists the keys.");
        }
        auto [channel, key] = channelAndKey(text.substr(0, sign));
        if (key.empty()) throw bad("--set takes [ID/]KEY=VALUE, and \"" + text + "\" has no key.");
        orders.push_back(
            {"--set", std::move(channel), std::move(key), text.substr(sign + 1), SettingOrder::Kind::Set});
    }
    return orders;
}

std::vector<SettingOrder> parseActions(const std::vector<std::string>& texts) {
    std::vector<SettingOrder> orders;
    orders.reserve(texts.size());
    for (const std::string& text : texts) {
        orders.push_back({"--action", {}, text, {}, SettingOrder::Kind::RunAction});
    }
    return orders;
}

Fraction parseFrequency(const std::string& text) {
    Fraction frequency;
    try {
        frequency = fractionFromText(text);
    } catch (const BadValue& wrong) {
        throw bad("--aux takes a frequency in Hz, such as 100 or 30000/1001: " + std::string(wrong.what()) +
                  '.');
    }
    const auto fits = [](std::int64_t term) { return term > 0 && term <= kGreatestTerm; };
    if (!fits(frequency.numerator) || !fits(frequency.denominator)) {
        throw bad(
            "--aux takes a frequency greater than 0 Hz whose numerator and denominator are at most "
            "1000000000, not \"" +
            text + "\".");
    }
    return frequency;
}

}  // namespace host
