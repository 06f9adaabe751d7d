#include "log_console.h"

#include <algorithm>
#include <array>
#include <iterator>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/expressions.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/make_shared.hpp>

namespace host {
namespace {

namespace logging = boost::log;

std::string line(const logging::record_view& record, std::string text) {
    const auto severity = logging::extract<UniLogSeverityLevel::T>("Severity", record);
    const auto channel = logging::extract<std::string>("Channel", record);
    std::replace(text.begin(), text.end(), '\n', ' ');
    std::string name = severity && severity.get() < 7 ? kLogLevelNames[severity.get()] : "?";
    name.resize(std::max<std::size_t>(name.size(), 7), ' ');
    return name + "  " + (channel ? channel.get() : "?") + "  " + text;
}

struct Backend : logging::sinks::basic_formatted_sink_backend<char> {
    explicit Backend(Console& console) : m_console(console) {}
    void consume(const logging::record_view& record, const std::string& text) {
        // The template of a message that is told as a whole sentence anyway.
        if (text.find("%1") != std::string::npos) return;
        m_console.tell(line(record, text));
    }

    Console& m_console;
};

using Frontend = logging::sinks::synchronous_sink<Backend>;

}  // namespace

std::optional<LogLevel> parseLogLevel(const std::string& name) {
    const auto* found = std::find(std::begin(kLogLevelNames), std::end(kLogLevelNames), name);
    if (found == std::end(kLogLevelNames)) return std::nullopt;
    const auto index = static_cast<unsigned>(found - std::begin(kLogLevelNames));
    LogLevel level;
    if (index <= UniLogSeverityLevel::Error) level.least = static_cast<UniLogSeverityLevel::T>(index);
    return level;
}

struct LogConsole::Sink {
    boost::shared_ptr<Frontend> frontend;
};

LogConsole::LogConsole(Console& console, LogLevel level) : m_sink(std::make_unique<Sink>()) {
    const auto core = logging::core::get();
    diagnostics::unilogger_zelt_plugin_gige_camera();
    diagnostics::unilogger_CONFIG_ITEMS();
    core->set_logging_enabled(level.least.has_value());
    if (!level.least) return;
    m_sink->frontend = boost::make_shared<Frontend>(boost::make_shared<Backend>(console));
    core->set_filter(logging::expressions::attr<UniLogSeverityLevel::T>("Severity") >= *level.least);
    core->add_sink(m_sink->frontend);
}

LogConsole::~LogConsole() {
    const auto core = logging::core::get();
    core->set_logging_enabled(false);
    if (!m_sink->frontend) return;
    core->reset_filter();
    core->remove_sink(m_sink->frontend);
}

}  // namespace host
