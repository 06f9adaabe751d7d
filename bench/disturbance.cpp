// One camera's gain is written without a pause, each time 2 ms. One thread delivers the frames of all other
// cameras as fast as it can, another those of the written camera once in a millisecond. Spans with writing
// and without follow each other, so that whatever else the machine does meets both alike.
#include "disturbance.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

#include "config_item_variant.h"
#include "config_keys.h"
#include "plugin_on_stand_in.h"

namespace bench {
namespace {

using std::chrono::nanoseconds;
using std::chrono::steady_clock;

constexpr unsigned kCameras = 16;
constexpr int kPairsOfSpans = 15;
constexpr std::chrono::milliseconds kSpan{200};
constexpr std::chrono::milliseconds kRegister{2};
constexpr std::chrono::milliseconds kFramePeriod{1};
constexpr double kTail = 0.999;

/// Nanoseconds that the delivery of one frame takes.
double timed(FrameSource& frames) {
    const auto begin = steady_clock::now();
    frames.deliver();
    return static_cast<double>(nanoseconds(steady_clock::now() - begin).count());
}

class Disturbance {
  public:
    /// Delivers for a span, while the settings are written or not.
    void span(bool written) {
        m_ends = false;
        std::thread writer;
        if (written) writer = std::thread([this] { write(); });
        std::thread slow([&] { deliverWritten(m_own[written]); });
        m_others[written].push_back(quantileOf(deliverOthers(), kTail));
        m_ends = true;
        slow.join();
        if (writer.joinable()) writer.join();
    }
    /// Of the other cameras: 99.9 % of their frames take no longer than this, ns; median of the spans.
    double others(bool written) const { return medianOf(m_others[written]); }
    /// The same of the camera that is written, of all spans together.
    double own(bool written) const { return quantileOf(m_own[written], kTail); }

  private:
    std::vector<double> deliverOthers() {
        std::vector<double> times;
        times.reserve(4'000'000);
        for (const auto end = steady_clock::now() + kSpan; steady_clock::now() < end;) {
            for (unsigned camera = 1; camera < kCameras; ++camera)
                times.push_back(timed(m_on.frames(camera)));
        }
        return times;
    }
    void deliverWritten(std::vector<double>& times) {
        auto next = steady_clock::now();
        while (!m_ends) {
            times.push_back(timed(m_on.frames(0)));
            next += kFramePeriod;
            std::this_thread::sleep_until(next);
        }
    }
    void write() {
        const auto channel = m_on.plugin().getChannelConfig(0);
        vendor::setRegisterTime(0, kRegister);
        for (int i = 0; !m_ends; ++i) {
            channel->setItem(config_keys::kCameraGain, config_items::ScalarConfigItem(i % 2, ""));
        }
        vendor::setRegisterTime(0, nanoseconds(0));
    }

    PluginOnStandIn m_on{{.cameras = kCameras}};
    std::atomic<bool> m_ends{false};
    std::vector<double> m_others[2];
    std::vector<double> m_own[2];
};

std::string microseconds(double undisturbed, double disturbed) {
    char text[64];
    std::snprintf(text, sizeof text, "99.9 %% within %.2f us, without %.2f us", disturbed / 1e3,
                  undisturbed / 1e3);
    return text;
}

}  // namespace

Figures figuresOfDisturbance() {
    Disturbance disturbance;
    for (int i = 0; i < kPairsOfSpans; ++i) {
        disturbance.span(false);
        disturbance.span(true);
    }
    const double others = disturbance.others(true) / disturbance.others(false);
    // As long as a register really took: a thread that sleeps is late.
    const double reg = static_cast<double>(vendor::longestRegister(0).count());
    const double own = (disturbance.own(true) - disturbance.own(false)) / reg;
    return {{"frames of other cameras while one is written / undisturbed", others, 2.0, false,
             microseconds(disturbance.others(false), disturbance.others(true)), false},
            {"registers that frames of the written camera wait for", own, 1.0, false,
             microseconds(disturbance.own(false), disturbance.own(true)), false}};
}

}  // namespace bench
