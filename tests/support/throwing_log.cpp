#include "throwing_log.h"

#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <utility>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/expressions/message.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/unlocked_frontend.hpp>
#include <boost/make_shared.hpp>

namespace test_support {
namespace {

namespace logging = boost::log;

struct ThrowingBackend : logging::sinks::basic_sink_backend<logging::sinks::concurrent_feeding> {
    ThrowingBackend(std::string wanted, std::function<void()> toDo)
        : part(std::move(wanted)), action(std::move(toDo)) {}
    void consume(const logging::record_view& record) {
        const Running running(*this);
        const auto text = record[logging::expressions::smessage];
        if (text && text->find(part) != std::string::npos) action();
    }
    /// The core may be in the middle of a record when the sink is taken from it.
    void waitForTheLast() {
        std::unique_lock lock(m_mutex);
        m_ended.wait(lock, [this] { return m_running == 0; });
    }

  private:
    struct Running {
        explicit Running(ThrowingBackend& owner) : backend(owner) {
            const std::lock_guard lock(backend.m_mutex);
            ++backend.m_running;
        }
        ~Running() {
            const std::lock_guard lock(backend.m_mutex);
            --backend.m_running;
            backend.m_ended.notify_all();
        }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;
        ThrowingBackend& backend;
    };

    const std::string part;
    const std::function<void()> action;
    std::mutex m_mutex;
    std::condition_variable m_ended;
    int m_running = 0;
};

}  // namespace

struct LogAction::Sink {
    explicit Sink(const boost::shared_ptr<ThrowingBackend>& toFeed)
        : backend(toFeed),
          frontend(boost::make_shared<logging::sinks::unlocked_sink<ThrowingBackend>>(toFeed)) {}
    boost::shared_ptr<ThrowingBackend> backend;
    boost::shared_ptr<logging::sinks::unlocked_sink<ThrowingBackend>> frontend;
};

LogAction::LogAction(std::string part, std::function<void()> action)
    : m_sink(
          std::make_unique<Sink>(boost::make_shared<ThrowingBackend>(std::move(part), std::move(action)))) {
    logging::core::get()->add_sink(m_sink->frontend);
    logging::core::get()->set_logging_enabled(true);
}

LogAction::~LogAction() {
    logging::core::get()->set_logging_enabled(false);
    logging::core::get()->remove_sink(m_sink->frontend);
    m_sink->backend->waitForTheLast();
}

ThrowingLog::ThrowingLog(std::string part)
    : LogAction(std::move(part), [] { throw std::runtime_error("the log's disk is full"); }) {}

}  // namespace test_support
