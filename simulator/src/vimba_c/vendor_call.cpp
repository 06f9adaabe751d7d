#include "vendor_call.h"

#include <charconv>
#include <cstdlib>

#include "frame_outlet.h"
#include "vimba_simulator.h"

namespace simulator {
namespace {

std::string number(double value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return std::string(text, end);
}

std::string quoted(const char* text) {
    return text != nullptr ? '"' + std::string(text) + '"' : "null";
}

std::string handleName(VmbHandle_t handle) {
    const auto module = simulation().module(handle);
    return module != nullptr ? module->name() : "bad handle";
}

std::string frameName(VmbHandle_t camera, const void* frame) {
    const std::uint32_t number = simulation().frameNumber(camera, frame);
    return number != 0 ? "frame " + std::to_string(number) : "unknown frame";
}

}  // namespace

Simulation& simulation() {
    static_assert(std::string_view(kScenarioVariable) == VMBSIM_SCENARIO_VARIABLE);
    // Never destroyed: a client may leave threads of the library running when it exits.
    static auto& outlet = *new VendorFrameOutlet;
    static auto& instance = *[] {
        const char* scenario = std::getenv(kScenarioVariable);
        const bool named = scenario != nullptr && *scenario != '\0';
        return new Simulation(outlet, named ? scenario : kDefaultScenario);
    }();
    return instance;
}

std::string Argument::written() const {
    switch (m_kind) {
        case Kind::Handle:
            return handleName(const_cast<VmbHandle_t>(m_pointer));
        case Kind::Text:
            return quoted(text());
        case Kind::Int:
            return std::to_string(m_int);
        case Kind::Float:
            return number(m_float);
        case Kind::Frame:
            break;
    }
    return frameName(m_camera, m_pointer);
}

std::string Output::written() const {
    if (m_pointer == nullptr) return "";
    switch (m_kind) {
        case Kind::Int:
            return ", " + std::to_string(*static_cast<const VmbInt64_t*>(m_pointer));
        case Kind::Count:
            return ", " + std::to_string(*static_cast<const VmbUint32_t*>(m_pointer));
        case Kind::Flag:
            return *static_cast<const VmbBool_t*>(m_pointer) ? ", 1" : ", 0";
        case Kind::Float:
            return ", " + number(*static_cast<const double*>(m_pointer));
        case Kind::Text:
            return ", " + quoted(*static_cast<const char* const*>(m_pointer));
        case Kind::Buffer:
            return ", " + quoted(static_cast<const char*>(m_pointer));
        case Kind::Handle:
            break;
    }
    return ", " + handleName(*static_cast<const VmbHandle_t*>(m_pointer));
}

CallScope::CallScope(const char* function, const Arguments& arguments)
    : CurrentCall(function), m_arguments(arguments), m_journalled(simulation().journal().isOn()) {
    if (m_journalled) m_before = line();
}

CallScope::~CallScope() {
    if (misuses().empty()) return;
    const std::string who = m_journalled ? m_before : line();
    for (const char* sentence : misuses()) simulation().misuses().append(who, sentence);
}

const char* CallScope::firstText() const {
    for (const Argument& argument : m_arguments) {
        if (argument.isText()) return argument.text();
    }
    return nullptr;
}

void CallScope::midway() {
    const auto* call = static_cast<const CallScope*>(get());
    std::string camera;
    bool plugged = false;
    if (call == nullptr ||
        !simulation().cableFaults().strikes(call->function(), call->firstText(), camera, plugged)) {
        return;
    }
    simulation().plug(camera, plugged);
}

std::string CallScope::line() const {
    std::string text = std::string("[") + threadRoleName(currentThreadRole()) + "] " + function() + "(";
    const char* separator = "";
    for (const Argument& argument : m_arguments) {
        text += separator + argument.written();
        separator = ", ";
    }
    return text + ")";
}

bool CallScope::fails(VmbError_t& result) {
    return simulation().callFaults().strikes(function(), firstText(), result);
}

void CallScope::finish(VmbError_t result, const std::initializer_list<Output>& outputs) {
    if (!m_journalled) return;
    // A frame has its number only when the call has announced it.
    const bool announced = result == VmbErrorSuccess && m_before.find("unknown frame") != std::string::npos;
    std::string text = (announced ? line() : m_before) + " = " + std::to_string(result);
    if (result == VmbErrorSuccess) {
        for (const Output& output : outputs) text += output.written();
    }
    simulation().journal().append(text);
}

VmbError_t notStarted() {
    simulation().misuses().add("the library is not started");
    return VmbErrorApiNotStarted;
}

void reportWaitInCallback() {
    if (currentThreadRole() != ThreadRole::Host) simulation().misuses().add(kWaitInCallback);
}

void CallScope::finishVoid() {
    if (m_journalled) simulation().journal().append(m_before);
}

}  // namespace simulator
