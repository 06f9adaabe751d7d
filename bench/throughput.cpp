// Each core works alone, then all of them at once, and so on, each time for a few milliseconds: what other
// programs take of the machine changes within a second, and meets both alike.
#include "throughput.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <barrier>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>
#include <thread>

#include <sched.h>

#include "plugin_on_stand_in.h"

namespace bench {
namespace {

constexpr unsigned kCameras = 16;
constexpr int kRounds = 51;
constexpr std::chrono::milliseconds kSpan{10};
constexpr int kTurns = 16;

/// Work of a few microseconds, the same each time.
using Batch = std::function<void()>;

std::vector<int> coresOfProgram() {
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) throw std::runtime_error("No core is known");
    std::vector<int> cores;
    // More cores than cameras would have nothing to do.
    for (int core = 0; core < CPU_SETSIZE && cores.size() < kCameras; ++core) {
        if (CPU_ISSET(core, &allowed)) cores.push_back(core);
    }
    return cores;
}

void stayOn(int core) {
    cpu_set_t only;
    CPU_ZERO(&only);
    CPU_SET(core, &only);
    sched_setaffinity(0, sizeof only, &only);
}

double processorSeconds() {
    std::timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// Batches per second of processor time, summed over the cores, while they work at the same time.
double rateOf(const std::vector<int>& cores, const std::vector<Batch>& batches) {
    std::atomic<bool> isOver{false};
    std::barrier start(static_cast<std::ptrdiff_t>(cores.size()) + 1);
    std::vector<double> rates(cores.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < cores.size(); ++i) {
        threads.emplace_back([&, i] {
            stayOn(cores[i]);
            start.arrive_and_wait();
            const double begin = processorSeconds();
            double done = 0;
            for (; !isOver.load(std::memory_order_relaxed); ++done) batches[i]();
            rates[i] = done / (processorSeconds() - begin);
        });
    }
    start.arrive_and_wait();
    std::this_thread::sleep_for(kSpan);
    isOver = true;
    for (std::thread& thread : threads) thread.join();
    return std::accumulate(rates.begin(), rates.end(), 0.0);
}

/// Rates of all cores at once, by their rates one after the other.
class Scaling {
  public:
    Scaling(std::vector<int> cores, std::vector<Batch> alone, std::vector<Batch> together)
        : m_cores(std::move(cores)), m_alone(std::move(alone)), m_together(std::move(together)) {}

    void round() {
        double alone = 0;
        for (std::size_t i = 0; i < m_cores.size(); ++i) alone += rateOf({m_cores[i]}, {m_alone[i]});
        m_ratios.push_back(rateOf(m_cores, m_together) / alone);
    }
    double ratio() const { return medianOf(m_ratios); }

  private:
    const std::vector<int> m_cores;
    const std::vector<Batch> m_alone;
    const std::vector<Batch> m_together;
    std::vector<double> m_ratios;
};

/// A batch for every core: frames of one camera, or of the core's share of all cameras. These come without a
/// pattern: were they as regular as the addresses of the cameras, the processor would fetch the next camera's
/// memory ahead, the one after a core's last camera from another core.
template <class FramesOf>
std::vector<Batch> frames(std::size_t cores, bool ofAll, FramesOf framesOf) {
    std::mt19937 random;
    std::vector<Batch> batches;
    for (std::size_t core = 0; core < cores; ++core) {
        std::vector<FrameSource*> order;
        for (int turn = 0; turn < kTurns; ++turn) {
            for (std::size_t camera = core; camera < kCameras; camera += cores) {
                order.push_back(&framesOf(static_cast<unsigned>(ofAll ? camera : core)));
            }
        }
        std::shuffle(order.begin(), order.end(), random);
        batches.emplace_back([order] {
            for (FrameSource* source : order) source->deliver();
        });
    }
    return batches;
}

/// The compiler takes what it counts for needed and cannot add up ahead.
void keep(std::uint64_t& sum) {
    __asm__ volatile("" : "+r"(sum));
}

/// Additions that wait for nothing: as many at a time as a core can take.
void add() {
    std::array<std::uint64_t, 8> sums{};
    for (int i = 0; i < 1000; ++i) {
        for (std::uint64_t& sum : sums) keep(++sum);
    }
}

}  // namespace

Figure throughputOfAllCores() {
    const std::vector<int> cores = coresOfProgram();
    PluginOnStandIn on({.cameras = kCameras});
    std::vector<std::unique_ptr<BareCamera>> bare;
    for (unsigned camera = 0; camera < kCameras; ++camera) {
        bare.push_back(std::make_unique<BareCamera>(kCameras + camera));
    }
    const auto framesOf = [&](unsigned camera) -> FrameSource& { return on.frames(camera); };
    const auto bareOf = [&](unsigned camera) -> FrameSource& { return bare[camera]->frames(); };
    const std::size_t count = cores.size();
    Scaling plugin(cores, frames(count, false, framesOf), frames(count, true, framesOf));
    Scaling callbacks(cores, frames(count, false, bareOf), frames(count, true, bareOf));
    Scaling additions(cores, std::vector<Batch>(count, &add), std::vector<Batch>(count, &add));
    for (int round = 0; round < kRounds; ++round) {
        for (Scaling* scaling : {&plugin, &callbacks, &additions}) scaling->round();
    }
    char machine[80];
    std::snprintf(machine, sizeof machine, "of the machine: bare callbacks %.2f, additions %.2f",
                  callbacks.ratio(), additions.ratio());
    return {"throughput of 16 cameras on all cores / 1 camera x cores",
            plugin.ratio(),
            0.9,
            true,
            machine,
            false};
}

}  // namespace bench
