// What a normal frame touches, allocates, asks of the system and waits for; what reading a setting asks of
// the vendor's library; what a sink that stalls costs.
#include <stdexcept>
#include <thread>

#include "counted_figures.h"
#include "plugin_on_stand_in.h"
#include "probes.h"

namespace bench {
namespace {

constexpr std::uint64_t kFrames = 10'000;
constexpr unsigned kBuffersBehindTheFirst = 4;

void require(bool condition, const char* what) {
    if (!condition) throw std::runtime_error(what);
}

void deliverAll(PluginOnStandIn& on) {
    require(on.deliver(0, kFrames), "A normal frame did not reach its sink");
}

struct Counts {
    std::uint64_t touched = 0;
    std::uint64_t allocations = 0;
    std::uint64_t systemCalls = 0;
    std::uint64_t switches = 0;
};

void count(Mode mode, Counts& counts) {
    ForbiddenPages pages;
    PluginOnStandIn on({.mode = mode, .pages = &pages});
    const auto work = [&] { deliverAll(on); };
    work();  // what is done once per acquisition is no part of a normal frame
    counts.allocations += allocationsOf(work);
    counts.systemCalls += systemCallsOf(work);
    counts.switches += threadSwitchesOf(work);
    counts.touched += ForbiddenPages::touched();
}

/// What happens while a sink stalls: as many frames arrive as there are buffers, and those of another camera
/// are delivered by another thread.
class StallingSink final : public zelt::IfChannelSink {
  public:
    StallingSink(PluginOnStandIn& on, unsigned other) : m_on(on), m_other(other) {}

    void addSample(std::int64_t, const void*, std::uint64_t) override {
        ++delivered;
        if (delivered != kStallsAt) return;
        for (unsigned period = 0; period < kBuffersBehindTheFirst; ++period) {
            const vendor::Buffer buffer = vendor::fill(0, m_on.frames(0).next());
            if (buffer.frame != nullptr) waiting.push_back(buffer);
            ++sent;
        }
        std::thread([this] { m_on.deliver(m_other, kBuffersBehindTheFirst); }).join();
    }
    /// Delivers frames, and after the one that stalls those that arrived meanwhile.
    void run() {
        for (std::uint64_t frame = 0; frame < kStallsAt + 10; ++frame) {
            ++sent;
            m_on.frames(0).deliver();
            for (const vendor::Buffer& buffer : std::exchange(waiting, {})) vendor::complete(0, buffer);
        }
    }

    std::uint64_t sent = 0;
    std::uint64_t delivered = 0;
    std::vector<vendor::Buffer> waiting;

  private:
    static constexpr std::uint64_t kStallsAt = 50;

    PluginOnStandIn& m_on;
    unsigned m_other;
};

}  // namespace

Figures figuresOfNormalFrames() {
    const FilteredLog log;
    Counts counts;
    count(Mode::FixedRate, counts);
    count(Mode::Aux, counts);
    const auto figure = [](const char* name, std::uint64_t value) {
        return Figure{name, static_cast<double>(value), 0.0, false, "of 10000 frames in either mode", false};
    };
    return {figure("pages of images touched by the plug-in", counts.touched),
            figure("allocations of normal frames", counts.allocations),
            figure("system calls of normal frames", counts.systemCalls),
            figure("thread switches of normal frames", counts.switches)};
}

Figure vendorCallsOfReadSettings() {
    PluginOnStandIn on({.acquiring = false});
    const auto channel = on.plugin().getChannelConfig(0);
    const std::vector<std::string> keys = channel->getKeys();
    require(keys.size() > 20, "The camera lacks settings");
    const std::uint64_t before = vendor::calls();
    for (const std::string& key : keys) {
        channel->getItem(key);
        channel->getConstraints(key);
    }
    return {"vendor calls while the host reads its settings",
            static_cast<double>(vendor::calls() - before),
            0.0,
            false,
            std::to_string(keys.size()) + " settings with their constraints",
            false};
}

Figure framesLostByAStall() {
    PluginOnStandIn on({.cameras = 2});
    StallingSink sink(on, 1);
    on.plugin().setChannelSink(0, &sink);
    sink.run();
    on.plugin().setChannelSink(0, nullptr);
    const std::uint64_t lost = sink.sent - sink.delivered;
    const std::uint64_t missing = kBuffersBehindTheFirst - on.sink(1).count;
    return {"frames lost while a sink stalls for 4 periods",
            static_cast<double>(lost + missing),
            0.0,
            false,
            std::to_string(sink.sent) + " frames, 4 of another camera meanwhile",
            false};
}

Figures countedFigures() {
    Figures figures = figuresOfNormalFrames();
    figures.push_back(vendorCallsOfReadSettings());
    figures.push_back(framesLostByAStall());
    figures.push_back(timeTranslation());
    figures.push_back(auxIndices());
    return figures;
}

}  // namespace bench
