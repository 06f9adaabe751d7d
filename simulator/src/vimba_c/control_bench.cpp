// The control interface of what cameras find around them: light, clocks, the line, and open choices.
#include <algorithm>
#include <cmath>
#include <iterator>

#include "vendor_call.h"
#include "vimba_simulator.h"

using namespace simulator;

namespace {

constexpr VmbUint64_t kLongest = kNever / 16;  // some 18 years
constexpr VmbUint64_t kLongestHiccup = 1'000'000'000'000'000;

template <typename Use>
VmbError_t withLine(const char* cameraId, bool given, Use&& use) {
    return guarded([&]() -> VmbError_t {
        return given ? code(simulation().useLine(cameraId, use)) : VmbErrorBadParameter;
    });
}

bool isRatio(double value) {
    return std::isfinite(value) && value > 0;
}

OscillatorRow oscillatorRow(const VmbSimOscillator& oscillator) {
    OscillatorRow row;
    row.tickFrequency = static_cast<std::int64_t>(oscillator.tickFrequency);
    row.startTicks = oscillator.startTicks;
    row.errorPpb = oscillator.errorPpb;
    row.driftPpb = oscillator.driftPpb;
    row.driftPeriod = oscillator.driftPeriodS * kSecond;
    row.stampJitter = oscillator.jitterNs;
    return row;
}

bool isWithinPpb(VmbInt32_t error) {
    return error >= -1'000'000 && error <= 1'000'000;
}

bool isPossible(const VmbSimLink& link) {
    constexpr VmbUint64_t kMillion = 1'000'000;
    const bool isPacket =
        link.largestPacket == 0 || (link.largestPacket >= 500 && link.largestPacket <= 16'384);
    const VmbUint32_t millions[] = {link.lossPpm,    link.burstPpm,       link.burstPackets,
                                    link.reorderPpm, link.reorderPackets, link.latePpm};
    return isPacket && link.bytesPerSecond <= kMillion * kMillion &&
           link.bufferBytes <= kMillion * kMillion && link.lateNs <= kSecond &&
           std::all_of(std::begin(millions), std::end(millions),
                       [](auto value) { return value <= kMillion; });
}

LinkRow linkRow(const VmbSimLink& link) {
    LinkRow row;
    row.bytesPerSecond = static_cast<std::int64_t>(link.bytesPerSecond);
    row.bufferBytes = static_cast<std::int64_t>(link.bufferBytes);
    if (link.largestPacket != 0) row.largestPacket = link.largestPacket;
    row.lossPpm = link.lossPpm;
    row.burstPpm = link.burstPpm;
    row.burstPackets = link.burstPackets;
    row.reorderPpm = link.reorderPpm;
    row.reorderPackets = link.reorderPackets;
    row.latePpm = link.latePpm;
    row.late = static_cast<Nanoseconds>(link.lateNs);
    return row;
}

}  // namespace

VmbError_t VmbSimSetLink(const char* interfaceId, const VmbSimLink* link) {
    return guarded([&]() -> VmbError_t {
        if (interfaceId == nullptr || link == nullptr) return VmbErrorBadParameter;
        if (!isPossible(*link)) return VmbErrorInvalidValue;
        return code(simulation().setLink(interfaceId, linkRow(*link)));
    });
}

VmbError_t VmbSimHiccup(const char* cameraId, VmbUint64_t ns) {
    return guarded([&]() -> VmbError_t {
        if (cameraId == nullptr) return VmbErrorBadParameter;
        if (ns < 1 || ns > kLongestHiccup) return VmbErrorInvalidValue;
        return code(simulation().hiccup(cameraId, static_cast<Nanoseconds>(ns)));
    });
}

VmbError_t VmbSimSetScene(const char* cameraId, const VmbSimScene* scene) {
    return guarded([&]() -> VmbError_t {
        if (cameraId == nullptr || scene == nullptr) return VmbErrorBadParameter;
        const bool possible = std::isfinite(scene->percentPerMillisecond) &&
                              scene->percentPerMillisecond >= 0 && isRatio(scene->red) &&
                              isRatio(scene->blue);
        if (!possible) return VmbErrorInvalidValue;
        return code(simulation().setScene(cameraId, {scene->percentPerMillisecond, scene->red, scene->blue}));
    });
}

VmbError_t VmbSimChoose(VmbSimChoice choice, VmbUint32_t option) {
    return code(simulation().choices().choose(static_cast<Choice>(choice), option));
}

void VmbSimSeed(VmbUint64_t seed) {
    simulation().seed(seed);
}

VmbError_t VmbSimSetOscillator(const char* cameraId, const VmbSimOscillator* oscillator) {
    return guarded([&]() -> VmbError_t {
        if (cameraId == nullptr || oscillator == nullptr) return VmbErrorBadParameter;
        const bool possible = oscillator->tickFrequency >= 1 && oscillator->tickFrequency <= kSecond &&
                              isWithinPpb(oscillator->errorPpb) && isWithinPpb(oscillator->driftPpb) &&
                              oscillator->driftPeriodS > 0;
        if (!possible) return VmbErrorInvalidValue;
        return code(simulation().replaceClock(cameraId, oscillatorRow(*oscillator)));
    });
}

VmbError_t VmbSimDriveLine(const char* cameraId, const VmbSimRhythm* rhythm) {
    const bool given = rhythm != nullptr && rhythm->phaseNs <= kLongest && rhythm->widthNs <= kLongest &&
                       rhythm->jitterNs <= kLongest;
    return withLine(cameraId, given, [&](LineInput& line, Nanoseconds now) {
        const LineRhythm row{rhythm->numerator, rhythm->denominator,
                             static_cast<Nanoseconds>(rhythm->widthNs),
                             static_cast<Nanoseconds>(rhythm->jitterNs)};
        return line.drive(row, now + static_cast<Nanoseconds>(rhythm->phaseNs), now);
    });
}

VmbError_t VmbSimPulseLine(const char* cameraId, const VmbUint64_t* times, VmbUint32_t count,
                           VmbUint64_t widthNs) {
    const bool given = (times != nullptr || count == 0) && widthNs <= kLongest;
    return withLine(cameraId, given, [&](LineInput& line, Nanoseconds now) {
        std::vector<Nanoseconds> rises;
        for (VmbUint32_t i = 0; i < count; ++i) {
            if (times[i] > kLongest) return Result::BadParameter;
            rises.push_back(static_cast<Nanoseconds>(times[i]));
        }
        return line.add(rises, static_cast<Nanoseconds>(widthNs), now);
    });
}

VmbError_t VmbSimSilenceLine(const char* cameraId) {
    return withLine(cameraId, true, [](LineInput& line, Nanoseconds now) {
        line.silence(now);
        return Result::Success;
    });
}

VmbError_t VmbSimDisturbLine(const char* cameraId, VmbSimPulseFault fault, VmbUint64_t first,
                             VmbUint64_t count) {
    const bool given = fault <= VmbSimPulseBouncing && first > 0;
    return withLine(cameraId, given, [&](LineInput& line, Nanoseconds) {
        line.disturb({static_cast<PulseFault>(fault), first, count});
        return Result::Success;
    });
}
