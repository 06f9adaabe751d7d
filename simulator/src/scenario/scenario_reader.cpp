#include "scenario_reader.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "camera.h"
#include "camera_models.h"
#include "embedded_texts.h"
#include "event_actions.h"
#include "feature_json.h"
#include "schema_check.h"
#include "strict_json.h"

namespace simulator {
namespace {

constexpr InterfaceRow kNetwork{"SimulatedNetwork0", "Simulated network 0", "02-000000-0000"};
constexpr std::size_t kMostCameras = 256;

const Json& schema() {
    static const auto& parsed = *[] {
        const auto& all = embeddedTexts();
        const auto found = std::find_if(all.begin(), all.end(), [](const EmbeddedText& text) {
            return std::string_view(text.name) == "schema";
        });
        return new Json(Json::parse(found->text()));
    }();
    return parsed;
}

std::string padded(std::size_t number, std::size_t digits) {
    const std::string text = std::to_string(number);
    return std::string(digits > text.size() ? digits - text.size() : 0, '0') + text;
}

/// {n}, {nn} ... become the number with that many digits.
std::string numbered(std::string text, std::size_t number) {
    for (std::size_t at = text.find('{'); at != std::string::npos; at = text.find('{', at + 1)) {
        const std::size_t end = text.find_first_not_of('n', at + 1);
        if (end == std::string::npos || text[end] != '}' || end == at + 1) continue;
        text.replace(at, end + 1 - at, padded(number, end - at - 1));
    }
    return text;
}

Nanoseconds nanoseconds(const Json& seconds) {
    return std::llround(seconds.get<double>() * 1e9);
}

class Reader {
  public:
    Scenario read(const Json& file, const char* name) {
        m_scenario.name = name;
        m_scenario.seed = file.value("seed", std::uint64_t{0});
        readChoices(file);
        readInterfaces(file);
        const Json& cameras = file["cameras"];
        for (std::size_t i = 0; i < cameras.size(); ++i) readCameras(cameras[i], Place("/cameras") / i);
        if (m_scenario.interfaces.empty()) m_scenario.interfaces.push_back(kNetwork);
        const Json events = file.value("events", Json::array());
        for (std::size_t i = 0; i < events.size(); ++i) readEvent(events[i], Place("/events") / i);
        return std::move(m_scenario);
    }

  private:
    void readChoices(const Json& file) {
        static constexpr std::pair<const char*, Choice> kChoices[] = {
            {"FrameIdAfterRestart", Choice::FrameIdAfterRestart},
            {"FrameIdWidth", Choice::FrameIdWidth},
            {"QueueBeforeStart", Choice::QueueBeforeStart},
            {"RepeatedStartup", Choice::RepeatedStartup},
            {"SetInCallback", Choice::SetInCallback}};
        const Json given = file.value("choices", Json::object());
        for (const auto& [name, choice] : kChoices) {
            if (given.contains(name)) m_scenario.choices.emplace_back(choice, given[name]);
        }
    }

    void readInterfaces(const Json& file) {
        const Json interfaces = file.value("interfaces", Json::array());
        for (std::size_t i = 0; i < interfaces.size(); ++i) {
            const Json& given = interfaces[i];
            const Place at = Place("/interfaces") / i;
            const char* id = text(given, "id", "", at);
            if (findInterface(id) != nullptr) refuse(at / "id", inQuotes(id) + " is there twice");
            m_scenario.interfaces.push_back({id, text(given, "name", id, at), text(given, "serial", id, at),
                                             readLink(given.value("link", Json::object()), {})});
        }
    }

    const InterfaceRow* findInterface(std::string_view id) const {
        const auto& all = m_scenario.interfaces;
        const auto found =
            std::find_if(all.begin(), all.end(), [&](const InterfaceRow& row) { return id == row.id; });
        return found != all.end() ? &*found : nullptr;
    }

    /// A text of the file that stays valid, with the number of the camera in it.
    const char* text(const Json& object, const char* key, const std::string& otherwise,
                     const Place& at) const {
        const std::string given = numbered(object.value(key, otherwise), m_number);
        const bool isPlain = std::none_of(given.begin(), given.end(), [](char c) {
            return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
        });
        if (!isPlain) refuse(at / key, "the text has control characters");
        return keptText(given);
    }

    void readCameras(const Json& given, const Place& at) {
        const std::size_t count = given.value("count", std::size_t{1});
        for (m_number = 1; m_number <= count; ++m_number) {
            if (m_scenario.cameras.size() == kMostCameras) refuse(at, "more than 256 cameras");
            readCamera(given, at);
        }
        m_number = 1;
    }

    void readCamera(const Json& given, const Place& at) {
        ScenarioCamera camera;
        camera.row = *findCameraModel(given["model"].get<std::string>());
        readIdentity(given, at, camera.row);
        readSensor(given, camera.row);
        const Json none = Json::object();
        camera.row.oscillator = readOscillator(given.value("oscillator", none), camera.row.oscillator);
        addErrorStep(given, at, camera.row.oscillator);
        readFeatures(given, at, camera.row);
        camera.scene = readScene(given.value("scene", none), {});
        camera.taken = given.value("taken", false);
        camera.plugged = given.value("plugged", true);
        readPulseFaults(given, at, camera);
        if (given.contains("line")) {
            ScenarioEvent start;
            start.sentence = "line " + given["line"].dump();
            start.act = driveLine(camera.row.id, readRhythm(given["line"], at / "line"));
            m_scenario.events.push_back(std::move(start));
        }
        m_scenario.cameras.push_back(std::move(camera));
    }

    void readIdentity(const Json& given, const Place& at, CameraRow& row) {
        const std::size_t place = m_scenario.cameras.size() + 1;
        row.id = text(given, "id", "DEV_000F31A1" + padded(place, 4), at);
        const std::string_view id = row.id;
        const bool isId = id.size() == 16 && id.substr(0, 4) == "DEV_" &&
                          id.find_first_not_of("0123456789ABCDEF", 4) == std::string_view::npos;
        if (!isId) refuse(at / "id", inQuotes(id) + " is not DEV_ and twelve digits 0 to 9, A to F");
        row.serial = text(given, "serial", "50-0" + std::to_string(row.partNumber) + padded(place, 3), at);
        const std::string address =
            text(given, "ip", ipText(0xA9FE'0A00 + static_cast<std::uint32_t>(place)), at);
        const auto ip = ipOf(address);
        if (!ip) refuse(at / "ip", inQuotes(address) + " is not four numbers of 0 to 255 with dots");
        row.ipAddress = *ip;
        const std::initializer_list<std::pair<const char*, std::string>> own = {
            {"id", row.id}, {"serial", row.serial}, {"ip", address}};
        for (const auto& [key, value] : own) {
            if (!m_taken[key].insert(value).second) refuse(at / key, inQuotes(value) + " is there twice");
        }
        row.interfaceId = text(given, "interface", kNetwork.id, at);
        if (findInterface(row.interfaceId) != nullptr) return;
        const bool isUsual = std::string_view(row.interfaceId) == kNetwork.id;
        m_scenario.interfaces.push_back(isUsual ? kNetwork
                                                : InterfaceRow{row.interfaceId, row.interfaceId, row.serial});
    }

    static void readSensor(const Json& given, CameraRow& row) {
        const Json sensor = given.value("sensor", Json::object());
        const std::int64_t memory = row.memoryFrames * row.sensor.width * row.sensor.height;
        row.sensor.width = sensor.value("width", row.sensor.width);
        row.sensor.height = sensor.value("height", row.sensor.height);
        row.memoryFrames = std::max<std::int64_t>(1, memory / (row.sensor.width * row.sensor.height));
    }

    void addErrorStep(const Json& given, const Place& at, OscillatorRow& oscillator) const {
        constexpr std::int64_t kMost = 1'000'000;
        oscillator.errorPpb +=
            given.value("errorPpbStep", std::int64_t{0}) * static_cast<std::int64_t>(m_number - 1);
        if (std::abs(oscillator.errorPpb) > kMost)
            refuse(at / "errorPpbStep", "leads to an error above 10^6 ppb");
    }

    void readFeatures(const Json& given, const Place& at, CameraRow& row) const {
        const Json features = given.value("features", Json::object());
        if (features.empty() && !given.contains("name")) return;
        FeatureProbe probe(row);
        std::vector<PowerUpValue> values;
        for (const auto& [name, value] : features.items()) {
            values.push_back(probe.preset(name, value, at / "features" / name));
        }
        if (given.contains("name")) {
            values.push_back(probe.preset("DeviceUserID", text(given, "name", "", at), at / "name"));
        }
        row.powerUpValues = std::move(values);
    }

    static void readPulseFaults(const Json& given, const Place& at, ScenarioCamera& camera) {
        const Json faults = given.value("pulseFaults", Json::array());
        for (std::size_t i = 0; i < faults.size(); ++i) {
            const PulseFaultRow fault = readPulseFault(faults[i]);
            const bool overlaps = fault.every > 0 && fault.every < fault.count;
            if (overlaps) refuse(at / "pulseFaults" / i / "every", "is less than count");
            camera.pulseFaults.push_back(fault);
        }
    }

    void readEvent(const Json& given, const Place& at) {
        ScenarioEvent event;
        event.at = nanoseconds(given["at"]);
        event.after = given.value("after", "");
        if (!event.after.empty()) findCamera(m_scenario, event.after, at / "after");
        if (given.contains("every")) event.every = nanoseconds(given["every"]);
        if (given.contains("times") && event.every == 0) refuse(at / "times", "needs \"every\" beside it");
        event.times = given.value("times", std::uint64_t{event.every > 0 ? 0U : 1U});
        const auto action = given["do"].items().begin();
        event.sentence = action.key() + " " + action.value().dump();
        event.act = readAction(given["do"], at / "do", m_scenario);
        m_scenario.events.push_back(std::move(event));
    }

    Scenario m_scenario;
    std::size_t m_number = 1;  // of the camera among those that are alike
    std::map<std::string, std::set<std::string>> m_taken;
};

}  // namespace

Scenario readScenario(const std::string& text, const char* name) {
    const Json file = parseStrictly(text);
    checkSchema(schema(), file);
    return Reader().read(file, name);
}

}  // namespace simulator
