#include "settings_file.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

#include "host_failure.h"

namespace host {
namespace {

constexpr const char* kHeader = "[channel";

std::string trimmed(const std::string& text) {
    constexpr const char* kBlanks = " \t\r";
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string::npos) return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

class Parser {
  public:
    explicit Parser(std::string name) : m_name(std::move(name)) {}

    void take(const std::string& raw) {
        ++m_line;
        const std::string line = trimmed(raw);
        if (line.empty() || line.front() == '#') return;
        if (line.front() == '[') {
            takeHeader(line);
        } else {
            takeSetting(line);
        }
    }
    std::vector<SettingOrder> orders() { return std::move(m_orders); }

  private:
    std::string origin() const { return m_name + ':' + std::to_string(m_line); }
    HostFailure bad(const std::string& what) const {
        return {ExitCode::SettingsFile, origin() + ": " + what};
    }

    void takeHeader(const std::string& line) {
        const std::size_t length = std::strlen(kHeader);
        const bool isHeader = line.starts_with(kHeader) && line.back() == ']' &&
                              (line[length] == ' ' || line[length] == '\t' || line[length] == ']');
        if (!isHeader) {
            throw bad('"' + line + "\" is no beginning of a channel's settings; write [channel 0].");
        }
        m_channel = trimmed(line.substr(length, line.size() - length - 1));
        if (m_channel.empty()) throw bad("the channel has no id; write [channel 0].");
    }

    void takeSetting(const std::string& line) {
        const std::size_t sign = line.find('=');
        if (sign == std::string::npos) {
            throw bad('"' + line + "\" is no setting; write KEY = VALUE.");
        }
        SettingOrder order;
        order.origin = origin();
        order.ofFile = true;
        order.channel = m_channel;
        order.key = trimmed(line.substr(0, sign));
        order.value = trimmed(line.substr(sign + 1));
        if (order.key.empty()) throw bad("the key before \"=\" is missing; write KEY = VALUE.");
        if (m_channel.empty()) {
            throw bad(order.key + " stands before the first channel; write [channel 0] above it.");
        }
        if (!m_seen.insert({m_channel, order.key}).second) {
            throw bad(order.key + " of channel " + m_channel + " stands here a second time; take one out.");
        }
        m_orders.push_back(std::move(order));
    }

    std::string m_name;
    int m_line = 0;
    std::string m_channel;
    std::set<std::pair<std::string, std::string>> m_seen;
    std::vector<SettingOrder> m_orders;
};

}  // namespace

std::vector<SettingOrder> parseSettingsFile(const std::string& text, const std::string& name) {
    Parser parser(name);
    // Some editors begin a file with it.
    const std::string mark = "\xef\xbb\xbf";
    std::istringstream stream(text.starts_with(mark) ? text.substr(mark.size()) : text);
    for (std::string line; std::getline(stream, line);) parser.take(line);
    return parser.orders();
}

std::vector<SettingOrder> readSettingsFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string text;
    std::array<char, 4096> buffer{};
    while (stream.read(buffer.data(), buffer.size()) || stream.gcount() > 0) {
        text.append(buffer.data(), static_cast<std::size_t>(stream.gcount()));
    }
    // Not open, or a directory, which opens but does not read.
    if (!stream.eof()) {
        throw HostFailure(ExitCode::SettingsFile, "The settings file " + file.string() + " cannot be read (" +
                                                      std::strerror(errno) +
                                                      "); name the right file with --from.");
    }
    return parseSettingsFile(text, file.string());
}

std::string settingsFilePart(const ChannelInfo& channel, const std::vector<SettingInfo>& settings) {
    const std::string id = channel.shortId.empty() ? std::to_string(channel.id) : channel.shortId;
    std::string text = "# " + channel.name + '\n' + kHeader + ' ' + id + "]\n";
    for (const SettingInfo& setting : settings) {
        if (isStored(setting)) text += setting.key + " = " + setting.valueWithUnit() + '\n';
    }
    return text;
}

}  // namespace host
