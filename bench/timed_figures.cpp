#include "timed_figures.h"

#include <array>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include <benchmark/benchmark.h>

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

/// Each thread delivers the frames of its own cameras in turn.
template <class FramesOf>
void deliverInTurn(benchmark::State& state, FramesOf framesOf) {
    std::vector<FrameSource*> own;
    for (auto camera = static_cast<unsigned>(state.thread_index()); camera < kManyCameras;
         camera += static_cast<unsigned>(state.threads())) {
        own.push_back(&framesOf(camera));
    }
    std::size_t next = 0;
    for (auto _ : state) {
        own[next]->deliver();
        if (++next == own.size()) next = 0;
    }
}

std::vector<std::unique_ptr<BareCamera>> s_manyBare;

void startManyBare(const benchmark::State&) {
    for (unsigned camera = 0; camera < kManyCameras; ++camera) {
        s_manyBare.push_back(std::make_unique<BareCamera>(kManyCameras + camera));
    }
}

void stopManyBare(const benchmark::State&) {
    s_manyBare.clear();
}

void manyBareCallbacks(benchmark::State& state) {
    deliverInTurn(state, [](unsigned camera) -> FrameSource& { return s_manyBare[camera]->frames(); });
}

std::unique_ptr<PluginOnStandIn> s_many;

void startMany(const benchmark::State&) {
    s_many = std::make_unique<PluginOnStandIn>(PluginOnStandIn::Options{.cameras = kManyCameras});
}

void stopMany(const benchmark::State&) {
    s_many.reset();
}

void manyCameras(benchmark::State& state) {
    deliverInTurn(state, [](unsigned camera) -> FrameSource& { return s_many->frames(camera); });
}

/// The compiler takes what it counts for needed and cannot add up ahead.
void keep(std::uint64_t& sum) {
    __asm__ volatile("" : "+r"(sum));
}

/// Additions that wait for nothing: as many at a time as a core can take.
void additions(benchmark::State& state) {
    std::array<std::uint64_t, 8> sums{};
    for (auto _ : state) {
        for (int i = 0; i < 32; ++i) {
            for (std::uint64_t& sum : sums) keep(++sum);
        }
    }
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
    const int cores = static_cast<int>(std::thread::hardware_concurrency());
    benchmark::RegisterBenchmark("additions", &additions);
    benchmark::RegisterBenchmark("many_additions", &additions)->Threads(cores);
    benchmark::RegisterBenchmark("many_bare", &manyBareCallbacks)
        ->Threads(cores)
        ->Setup(&startManyBare)
        ->Teardown(&stopManyBare);
    benchmark::RegisterBenchmark("many", &manyCameras)
        ->Threads(cores)
        ->Setup(&startMany)
        ->Teardown(&stopMany);
    benchmark::RegisterBenchmark("enumerate_1", [](auto& state) { secondEnumeration(state, 1); });
    benchmark::RegisterBenchmark("enumerate_16", [](auto& state) { secondEnumeration(state, kManyCameras); });
    benchmark::RegisterBenchmark("mutex", &mutexPair);
    benchmark::RegisterBenchmark("log", &logSwitchedOff);
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
    Figure throughput =
        ratio("throughput of 16 cameras on all cores / 1 camera x cores", "fixed_rate", "many", 0.9);
    throughput.atLeast = true;
    char machine[80];
    std::snprintf(machine, sizeof machine, "; the machine: additions %.2f, bare callbacks %.2f",
                  collector.ns("additions") / collector.ns("many_additions"),
                  collector.ns("bare") / collector.ns("many_bare"));
    throughput.explanation += machine;
    return {ratio("frame path at a fixed rate / bare callback", "fixed_rate", "bare", 3.0),
            ratio("frame path in AUX mode / bare callback", "aux", "bare", 5.0), throughput,
            ratio("log statement switched off / uncontended mutex pair", "log", "mutex", 0.3),
            ratio("second enumeration of 16 cameras / of 1", "enumerate_16", "enumerate_1", 1.25)};
}

}  // namespace bench
