#include "auto_functions.h"

#include <algorithm>
#include <cmath>

namespace simulator {
namespace {

constexpr std::int64_t kOff = 1;
constexpr std::int64_t kOnce = 3;
constexpr int kLeastExposures = 3;
constexpr double kGainStep = 0.1;
/// Of a step: by so much its multiples may be off.
constexpr double kRounding = 1e-6;

double level(const FeatureTable& features, const Scene& scene) {
    const double milliseconds = features.number("ExposureTimeAbs") / 1000;
    return scene.percentPerMillisecond * milliseconds * std::pow(10, features.number("Gain") / 20);
}

double percentOf(const FeatureTable& features, const char* name) {
    return static_cast<double>(features.integer(name));
}

bool isWithin(double value, double aim, double tolerancePercent) {
    return std::abs(value - aim) <= aim * tolerancePercent / 100;
}

/// The lowest and the highest step of the grid within limits that may lie between two.
double firstStep(double least, double grid) {
    return std::ceil(least / grid - kRounding) * grid;
}
double lastStep(double most, double grid) {
    return std::floor(most / grid + kRounding) * grid;
}

/// A share of the way, but one step of the grid at least; `now` when the aim is less than that away.
double nextValue(double now, double aim, double ratePercent, double grid) {
    const double way = aim - now;
    const double step = std::max(std::abs(way) * ratePercent / 100, grid);
    if (std::abs(way) < grid / 2) return now;
    return std::round((now + std::copysign(std::min(step, std::abs(way)), way)) / grid) * grid;
}

/// Goes a share of the way; true when that moved the value by a step of its grid at least.
bool approach(FeatureTable& features, const char* name, double aim, double ratePercent, double grid) {
    const double now = features.number(name);
    const double next = nextValue(now, aim, ratePercent, grid);
    if (std::abs(next - now) < grid / 2) return false;
    features.compute(name, next);
    return true;
}

}  // namespace

struct AutoFunctions::Function {
    const char* mode;
    unsigned (AutoFunctions::*run)(FeatureTable&, const Scene&, bool&);
    unsigned ended;
};

unsigned AutoFunctions::evaluate(FeatureTable& features, const Scene& scene) {
    static constexpr Function kFunctions[] = {
        {"ExposureAuto", &AutoFunctions::runExposure, kExposureAutoEnded},
        {"GainAuto", &AutoFunctions::runGain, kGainAutoEnded},
        {"BalanceWhiteAuto", &AutoFunctions::runBalance, kBalanceAutoEnded}};
    unsigned changes = 0;
    m_exposureMoved = false;
    for (std::size_t i = 0; i < std::size(kFunctions); ++i) {
        const Function& function = kFunctions[i];
        const std::int64_t mode = features.has(function.mode) ? features.integer(function.mode) : kOff;
        int& exposures = m_exposuresInOnce[i];
        exposures = mode == kOnce ? exposures + 1 : 0;
        if (mode == kOff) continue;
        bool settled = true;
        changes |= (this->*function.run)(features, scene, settled);
        if (mode != kOnce || !settled || exposures < kLeastExposures) continue;
        features.compute(function.mode, kOff);
        changes |= function.ended;
    }
    return changes;
}

unsigned AutoFunctions::runExposure(FeatureTable& features, const Scene& scene, bool& settled) {
    const double aim = percentOf(features, "ExposureAutoTarget");
    const double now = level(features, scene);
    if (isWithin(now, aim, percentOf(features, "ExposureAutoAdjustTol"))) return 0;
    const double wanted = now > 0 ? features.number("ExposureTimeAbs") * aim / now : 1e9;
    const double least = percentOf(features, "ExposureAutoMin");
    const double most = std::max(least, percentOf(features, "ExposureAutoMax"));
    m_exposureMoved = approach(features, "ExposureTimeAbs", std::clamp(wanted, least, most),
                               percentOf(features, "ExposureAutoRate"), 1);
    settled = !m_exposureMoved;
    return m_exposureMoved ? kExposureMoved : 0U;
}

unsigned AutoFunctions::runGain(FeatureTable& features, const Scene& scene, bool& settled) {
    const double exposure = features.number("ExposureTimeAbs");
    const bool isExposuresTurn =
        features.integer("ExposureAuto") != kOff && exposure < percentOf(features, "ExposureAutoMax");
    settled = !m_exposureMoved;
    if (isExposuresTurn) return 0;
    const double aim = percentOf(features, "GainAutoTarget");
    const double now = level(features, scene);
    if (isWithin(now, aim, percentOf(features, "GainAutoAdjustTol"))) return 0;
    const double wanted = now > 0 && aim > 0 ? features.number("Gain") + 20 * std::log10(aim / now) : 1e9;
    const double least = firstStep(features.number("GainAutoMin"), kGainStep);
    const double most = std::max(least, lastStep(features.number("GainAutoMax"), kGainStep));
    const bool moved = approach(features, "Gain", std::clamp(wanted, least, most),
                                percentOf(features, "GainAutoRate"), kGainStep);
    settled = !moved;
    return moved ? kGainMoved : 0U;
}

unsigned AutoFunctions::runBalance(FeatureTable& features, const Scene& scene, bool& settled) {
    const FloatRange& range = features.at("BalanceRatioAbs").floatRange;
    const double tolerance = percentOf(features, "BalanceWhiteAutoAdjustTol");
    const double rate = percentOf(features, "BalanceWhiteAutoRate");
    unsigned changes = 0;
    for (const auto& [colour, ratio] : {std::pair("Red", scene.red), std::pair("Blue", scene.blue)}) {
        const double aim = std::clamp(ratio, range.min, range.max);
        const double now = features.number("BalanceRatioAbs", colour);
        const double next = nextValue(now, aim, rate, 0.01);
        if (isWithin(now, aim, tolerance) || std::abs(next - now) < 0.005) continue;
        features.compute("BalanceRatioAbs", colour, next);
        changes = kBalanceMoved;
    }
    settled = changes == 0;
    return changes;
}

}  // namespace simulator
