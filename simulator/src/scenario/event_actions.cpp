#include "event_actions.h"

#include <algorithm>
#include <iterator>

#include "feature_json.h"
#include "simulation.h"
#include "vendor_functions.h"

namespace simulator {
namespace {

/// The arguments of an action, and what they must fit to.
struct Call {
    const Json& arguments;
    const Place& at;
    const Scenario& scenario;

    std::string text(const char* key) const { return arguments.value(key, ""); }
    const ScenarioCamera& camera() const { return findCamera(scenario, text("camera"), at / "camera"); }
    std::string cameraId() const { return camera().row.id; }
    /// Empty for all cameras.
    std::string anyCameraId() const { return arguments.contains("camera") ? cameraId() : ""; }
    std::string interfaceId() const {
        std::vector<std::string> ids;
        for (const InterfaceRow& row : scenario.interfaces) ids.emplace_back(row.id);
        return oneOf("interface", ids);
    }
    std::string oneOf(const char* key, const std::vector<std::string>& allowed) const {
        std::string name = text(key);
        const bool known = std::find(allowed.begin(), allowed.end(), name) != allowed.end();
        if (!known) refuseUnknown(at / key, key, name, allowed);
        return name;
    }
};

const char* orNull(const std::string& id) {
    return id.empty() ? nullptr : id.c_str();
}

template <bool plugged>
EventAct cableOfCamera(const Call& call) {
    return [id = call.cameraId()](Simulation& all) { return all.plug(id, plugged); };
}

template <bool plugged>
EventAct cableOfInterface(const Call& call) {
    return [id = call.interfaceId()](Simulation& all) { return all.plugInterface(id, plugged); };
}

template <bool taken>
EventAct control(const Call& call) {
    return [id = call.cameraId()](Simulation& all) { return all.takeControl(id, taken); };
}

template <bool held>
EventAct sensor(const Call& call) {
    return [id = call.cameraId()](Simulation& all) { return all.holdSensor(id, held); };
}

EventAct loseFrames(const Call& call) {
    const std::uint32_t count = call.arguments["count"];
    return [id = call.cameraId(), count](Simulation& all) {
        all.frameFaults(id)->lose(count);
        return Result::Success;
    };
}

EventAct breakFrames(const Call& call) {
    static constexpr std::pair<std::string_view, std::int32_t> kStatus[] = {
        {"Incomplete", -1}, {"TooSmall", -2}, {"Invalid", -3}};
    const std::string name = call.text("status");
    const auto* status = std::find_if(std::begin(kStatus), std::end(kStatus),
                                      [&](const auto& row) { return row.first == name; });
    const std::uint32_t count = call.arguments["count"];
    return [id = call.cameraId(), count, status = status->second](Simulation& all) {
        all.frameFaults(id)->damage(count, status);
        return Result::Success;
    };
}

EventAct failCall(const Call& call) {
    const std::string function = call.oneOf("function", vendorFunctions());
    const std::int32_t code = vendorErrorCode(call.oneOf("code", vendorErrors()));
    const std::int32_t nth = call.arguments.value("nth", 1);
    if (nth == 0) refuse(call.at / "nth", "calls are counted from 1");
    const bool anyArgument = !call.arguments.contains("argument");
    return [=, argument = call.text("argument")](Simulation& all) {
        all.callFaults().add(function, anyArgument, argument, nth, code);
        return Result::Success;
    };
}

EventAct drive(const Call& call) {
    return driveLine(call.anyCameraId(), readRhythm(call.arguments["rhythm"], call.at / "rhythm"));
}

EventAct silenceLine(const Call& call) {
    return [id = call.anyCameraId()](Simulation& all) {
        return all.useLine(orNull(id), [](LineInput& line, Nanoseconds now) {
            line.silence(now);
            return Result::Success;
        });
    };
}

EventAct disturbLine(const Call& call) {
    return [id = call.anyCameraId(), fault = readPulseFault(call.arguments)](Simulation& all) {
        return all.useLine(orNull(id), [&](LineInput& line, Nanoseconds) {
            line.disturb(fault);
            return Result::Success;
        });
    };
}

EventAct forceFeature(const Call& call) {
    const std::string feature = call.text("feature");
    const Json& value = call.arguments["value"];
    const std::string id = call.anyCameraId();
    const std::string text = id.empty() ? forcedSystemText(feature, value, call.at)
                                        : FeatureProbe(call.camera().row).forcedText(feature, value, call.at);
    return [=](Simulation& all) { return all.forceFeature(orNull(id), feature, text); };
}

EventAct setLink(const Call& call) {
    const std::string id = call.interfaceId();
    const auto& rows = call.scenario.interfaces;
    const auto own =
        std::find_if(rows.begin(), rows.end(), [&](const InterfaceRow& row) { return id == row.id; });
    const LinkRow link = readLink(call.arguments["link"], own->link);
    return [id, link](Simulation& all) { return all.setLink(id, link); };
}

EventAct hiccup(const Call& call) {
    const Nanoseconds span = call.arguments["ns"];
    return [id = call.cameraId(), span](Simulation& all) { return all.hiccup(id, span); };
}

EventAct setScene(const Call& call) {
    const Scene scene = readScene(call.arguments["scene"], call.camera().scene);
    return [id = call.cameraId(), scene](Simulation& all) { return all.setScene(id, scene); };
}

EventAct setOscillator(const Call& call) {
    const OscillatorRow row = readOscillator(call.arguments["oscillator"], call.camera().row.oscillator);
    return [id = call.cameraId(), row](Simulation& all) { return all.replaceClock(id, row); };
}

struct ActionRow {
    std::string_view name;
    EventAct (*read)(const Call& call);
};

// The arguments of each are in the schema.
constexpr ActionRow kActions[] = {
    {"unplugCamera", &cableOfCamera<false>},
    {"plugCamera", &cableOfCamera<true>},
    {"unplugInterface", &cableOfInterface<false>},
    {"plugInterface", &cableOfInterface<true>},
    {"takeControl", &control<true>},
    {"returnControl", &control<false>},
    {"holdSensor", &sensor<true>},
    {"releaseSensor", &sensor<false>},
    {"loseFrames", &loseFrames},
    {"breakFrames", &breakFrames},
    {"failCall", &failCall},
    {"driveLine", &drive},
    {"silenceLine", &silenceLine},
    {"disturbLine", &disturbLine},
    {"forceFeature", &forceFeature},
    {"setLink", &setLink},
    {"hiccup", &hiccup},
    {"setScene", &setScene},
    {"setOscillator", &setOscillator},
};

}  // namespace

OscillatorRow readOscillator(const Json& object, OscillatorRow base) {
    base.tickFrequency = object.value("tickFrequency", base.tickFrequency);
    base.startTicks = object.value("startTicks", base.startTicks);
    base.errorPpb = object.value("errorPpb", base.errorPpb);
    base.driftPpb = object.value("driftPpb", base.driftPpb);
    base.driftPeriod = object.value("driftPeriodS", base.driftPeriod / kSecond) * kSecond;
    base.stampJitter = object.value("jitterNs", base.stampJitter);
    return base;
}

LinkRow readLink(const Json& object, LinkRow base) {
    static constexpr std::pair<const char*, std::int64_t LinkRow::*> kFields[] = {
        {"bytesPerSecond", &LinkRow::bytesPerSecond},
        {"bufferBytes", &LinkRow::bufferBytes},
        {"largestPacket", &LinkRow::largestPacket},
        {"lossPpm", &LinkRow::lossPpm},
        {"burstPpm", &LinkRow::burstPpm},
        {"burstPackets", &LinkRow::burstPackets},
        {"reorderPpm", &LinkRow::reorderPpm},
        {"reorderPackets", &LinkRow::reorderPackets},
        {"latePpm", &LinkRow::latePpm},
        {"lateNs", &LinkRow::late}};
    for (const auto& [key, field] : kFields) base.*field = object.value(key, base.*field);
    return base;
}

Scene readScene(const Json& object, Scene base) {
    base.percentPerMillisecond = object.value("percentPerMillisecond", base.percentPerMillisecond);
    base.red = object.value("red", base.red);
    base.blue = object.value("blue", base.blue);
    return base;
}

ScenarioRhythm readRhythm(const Json& object, const Place& at) {
    ScenarioRhythm read;
    read.rhythm.numerator = object["numerator"];
    read.rhythm.denominator = object.value("denominator", read.rhythm.denominator);
    read.rhythm.width = object["widthNs"];
    read.rhythm.jitter = object.value("jitterNs", read.rhythm.jitter);
    read.phase = object.value("phaseNs", read.rhythm.jitter);
    if (LineInput().drive(read.rhythm, read.phase, 0) != Result::Success) {
        refuse(at,
               "a rhythm has at most 10^6 Hz, widths from 1 ns to a quarter of the period, a jitter of at "
               "most a 16th of it, and a phase of at least the jitter");
    }
    return read;
}

PulseFaultRow readPulseFault(const Json& object) {
    const std::string name = object["fault"];
    PulseFaultRow row;
    if (name == "doubled") row.fault = PulseFault::Doubled;
    if (name == "bouncing") row.fault = PulseFault::Bouncing;
    row.first = object["first"];
    row.count = object.value("count", row.count);
    row.every = object.value("every", row.every);
    return row;
}

const ScenarioCamera& findCamera(const Scenario& scenario, const std::string& id, const Place& at) {
    std::vector<std::string> ids;
    for (const ScenarioCamera& camera : scenario.cameras) {
        if (id == camera.row.id) return camera;
        ids.emplace_back(camera.row.id);
    }
    refuseUnknown(at, "camera", id, ids);
}

EventAct driveLine(const std::string& camera, const ScenarioRhythm& rhythm) {
    return [=](Simulation& all) {
        return all.useLine(orNull(camera), [&](LineInput& line, Nanoseconds now) {
            return line.drive(rhythm.rhythm, now + rhythm.phase, now);
        });
    };
}

EventAct readAction(const Json& action, const Place& at, const Scenario& scenario) {
    const auto given = action.items().begin();
    const Place place = at / given.key();
    const auto* row = std::find_if(std::begin(kActions), std::end(kActions),
                                   [&](const ActionRow& known) { return known.name == given.key(); });
    if (row == std::end(kActions)) throw std::logic_error("the schema has an unknown action " + given.key());
    return row->read({given.value(), place, scenario});
}

}  // namespace simulator
