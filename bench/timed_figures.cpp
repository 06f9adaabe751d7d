#include "timed_figures.h"

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include <benchmark/benchmark.h>
#include <boost/log/core.hpp>

#include "plugin_on_stand_in.h"
#include "zelt_gige_log.h"

namespace bench {
namespace {

constexpr unsigned kManyCameras = 16;

void bareCallback(benchmark::State& state) {
    BareCamera camera(0);
    for (auto _ : state) camera.frames().deliver();
}

void framePath(benchmark::State& state, Mode mode) {
    PluginOnStandIn on({.mode = mode});
    for (auto _ : state) on.frames(0).deliver();
    if (on.sink(0).count != static_cast<std::uint64_t>(state.iterations()))
        state.SkipWithError("frames got lost");
}

void secondEnumeration(benchmark::State& state, unsigned cameras) {
    PluginOnStandIn on({.cameras = cameras, .acquiring = false});
    for (auto _ : state) on.plugin().enumerateDevices();
}

void mutexPair(benchmark::State& state) {
    std::mutex mutex;
    for (auto _ : state) {
        mutex.lock();
        benchmark::ClobberMemory();
        mutex.unlock();
    }
}

void logSwitchedOff(benchmark::State& state) {
    std::uint64_t frame = 0;
    for (auto _ : state) GIGE_LOG(Detail) << "Frame " << ++frame << " was dropped";
}

/// All that a statement has to ask, as only the library knows it.
void logCall(benchmark::State& state) {
    const boost::log::core* const core = boost::log::core::get().get();
    for (auto _ : state) benchmark::DoNotOptimize(core->get_logging_enabled());
}

/// Keeps the processor time of an iteration in every repetition, by the benchmark's name.
class Collector final : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.error_occurred) m_failed = true;
            if (run.run_type != Run::RT_Iteration) continue;
            m_times[run.run_name.function_name].push_back(run.cpu_accumulated_time /
                                                          static_cast<double>(run.iterations) * 1e9);
        }
    }
    double ns(const char* name) const { return m_failed ? 0.0 : medianOf(m_times.at(name)); }

  private:
    std::map<std::string, std::vector<double>> m_times;
    bool m_failed = false;
};

void registerAll() {
    benchmark::RegisterBenchmark("bare", &bareCallback);
    benchmark::RegisterBenchmark("fixed_rate", [](auto& state) { framePath(state, Mode::FixedRate); });
    benchmark::RegisterBenchmark("aux", [](auto& state) { framePath(state, Mode::Aux); });
    benchmark::RegisterBenchmark("enumerate_1", [](auto& state) { secondEnumeration(state, 1); });
    benchmark::RegisterBenchmark("enumerate_16", [](auto& state) { secondEnumeration(state, kManyCameras); });
    benchmark::RegisterBenchmark("mutex", &mutexPair);
    benchmark::RegisterBenchmark("log", &logSwitchedOff);
    benchmark::RegisterBenchmark("log_call", &logCall);
}

/// Sleeps until this object goes. Libraries do without the processor's locks in a program with one thread,
/// and no host is one.
class SecondThread {
  public:
    SecondThread()
        : m_thread([this](const std::stop_token& end) {
              std::unique_lock lock(m_mutex);
              m_never.wait(lock, end, [] { return false; });
          }) {}

  private:
    std::mutex m_mutex;
    std::condition_variable_any m_never;
    std::jthread m_thread;
};

void runInterleaved(Collector& collector) {
    const SecondThread second;
    std::string program = "bench";
    std::string interleaved = "--benchmark_enable_random_interleaving=true";
    std::string repetitions = "--benchmark_repetitions=25";
    std::string time = "--benchmark_min_time=0.1";
    char* arguments[] = {program.data(), interleaved.data(), repetitions.data(), time.data(), nullptr};
    int count = 4;
    benchmark::Initialize(&count, arguments);
    registerAll();
    benchmark::RunSpecifiedBenchmarks(&collector);
}

std::string nanoseconds(double of, double over) {
    char text[64];
    std::snprintf(text, sizeof text, "%.1f ns / %.1f ns", of, over);
    return text;
}

}  // namespace

Figures timedFigures() {
    Collector collector;
    runInterleaved(collector);
    const auto ratio = [&](const char* name, const char* of, const char* over, double limit) {
        return Figure{name,
                      collector.ns(of) / collector.ns(over),
                      limit,
                      false,
                      nanoseconds(collector.ns(of), collector.ns(over)),
                      false};
    };
    Figure log = ratio("log statement switched off / uncontended mutex pair", "log", "mutex", 0.3);
    char call[60];
    std::snprintf(call, sizeof call, "; the call of the log library alone %.2f",
                  collector.ns("log_call") / collector.ns("mutex"));
    log.explanation += call;
    return {ratio("frame path at a fixed rate / bare callback", "fixed_rate", "bare", 3.0),
            ratio("frame path in AUX mode / bare callback", "aux", "bare", 5.0), log,
            ratio("second enumeration of 16 cameras / of 1", "enumerate_16", "enumerate_1", 1.25)};
}

}  // namespace bench
