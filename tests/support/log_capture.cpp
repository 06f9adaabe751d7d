#include "log_capture.h"

#include <mutex>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/expressions.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/make_shared.hpp>

namespace test_support {
namespace {

namespace logging = boost::log;

struct Backend : logging::sinks::basic_formatted_sink_backend<char> {
    void consume(const logging::record_view& record, const std::string& text) {
        const auto severity = logging::extract<UniLogSeverityLevel::T>("Severity", record);
        const auto channel = logging::extract<std::string>("Channel", record);
        const std::lock_guard lock(m_mutex);
        m_lines.push_back({severity ? severity.get() : 99u, channel ? channel.get() : "?", text});
    }

    std::mutex m_mutex;
    std::vector<LogLine> m_lines;
};

}  // namespace

struct LogCapture::Sink {
    boost::shared_ptr<Backend> backend = boost::make_shared<Backend>();
    boost::shared_ptr<logging::sinks::synchronous_sink<Backend>> frontend =
        boost::make_shared<logging::sinks::synchronous_sink<Backend>>(backend);
};

std::ostream& operator<<(std::ostream& stream, const LogLine& line) {
    return stream << line.severity << " [" << line.channel << "] " << line.text;
}

LogCapture::LogCapture(UniLogSeverityLevel::T least) : m_sink(std::make_unique<Sink>()) {
    const auto core = logging::core::get();
    core->add_sink(m_sink->frontend);
    core->set_filter(logging::expressions::attr<UniLogSeverityLevel::T>("Severity") >= least);
    core->set_logging_enabled(true);
}

LogCapture::~LogCapture() {
    const auto core = logging::core::get();
    core->set_logging_enabled(false);
    core->reset_filter();
    core->remove_sink(m_sink->frontend);
    // Behind the last record, which the core may have been in the middle of: it holds this lock to the end.
    m_sink->frontend->locked_backend();
}

std::vector<LogLine> LogCapture::lines() const {
    const std::lock_guard lock(m_sink->backend->m_mutex);
    return m_sink->backend->m_lines;
}

std::vector<std::string> LogCapture::texts(UniLogSeverityLevel::T severity) const {
    std::vector<std::string> texts;
    for (const LogLine& line : lines()) {
        if (line.severity == severity) texts.push_back(line.text);
    }
    return texts;
}

void LogCapture::clear() {
    const std::lock_guard lock(m_sink->backend->m_mutex);
    m_sink->backend->m_lines.clear();
}

}  // namespace test_support
