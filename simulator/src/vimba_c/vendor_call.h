/// The one way into the library: every vendor function passes through here, which consults the ordered
/// faults, keeps exceptions inside and writes the journal; `Client` then checks what every call needs.
#pragma once

#include <cstdint>
#include <exception>
#include <initializer_list>
#include <memory>
#include <new>
#include <string>
#include <system_error>

#include "simulation.h"
#include "vimba_c.h"

namespace simulator {

/// The vendor's handle of the library itself, gVimbaHandle.
inline VmbHandle_t systemHandle() {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the interface has it so
    return reinterpret_cast<VmbHandle_t>(std::uintptr_t{1});
}

/// The simulation of this process; made at first use.
Simulation& simulation();

inline VmbError_t code(Result result) {
    return static_cast<VmbError_t>(result);
}

/// An argument as the journal shows it.
class Argument {
  public:
    Argument(VmbHandle_t handle) : m_kind(Kind::Handle), m_pointer(handle) {}
    Argument(const char* text) : m_kind(Kind::Text), m_pointer(text) {}
    Argument(VmbInt64_t number) : m_kind(Kind::Int), m_int(number) {}
    Argument(VmbUint32_t number) : m_kind(Kind::Int), m_int(number) {}
    Argument(VmbBool_t flag) : m_kind(Kind::Int), m_int(flag ? 1 : 0) {}
    Argument(double number) : m_kind(Kind::Float), m_float(number) {}
    Argument(VmbHandle_t camera, const VmbFrame_t* frame)
        : m_kind(Kind::Frame), m_pointer(frame), m_camera(camera) {}

    bool isText() const { return m_kind == Kind::Text; }
    const char* text() const { return static_cast<const char*>(m_pointer); }
    /// Before the call, and once more behind it for what the call itself announced.
    std::string written() const;

  private:
    enum class Kind { Handle, Text, Int, Float, Frame };

    Kind m_kind;
    const void* m_pointer = nullptr;
    VmbHandle_t m_camera = nullptr;
    VmbInt64_t m_int = 0;
    double m_float = 0;
};

/// A place for a result; a null pointer writes nothing.
class Output {
  public:
    Output(const VmbInt64_t* number) : m_kind(Kind::Int), m_pointer(number) {}
    Output(const VmbUint32_t* number) : m_kind(Kind::Count), m_pointer(number) {}
    Output(const VmbBool_t* flag) : m_kind(Kind::Flag), m_pointer(flag) {}
    Output(const double* number) : m_kind(Kind::Float), m_pointer(number) {}
    Output(const char* const* text) : m_kind(Kind::Text), m_pointer(text) {}
    Output(const char* buffer) : m_kind(Kind::Buffer), m_pointer(buffer) {}
    Output(const VmbHandle_t* handle) : m_kind(Kind::Handle), m_pointer(handle) {}

    /// ", " and the value.
    std::string written() const;

  private:
    enum class Kind { Int, Count, Flag, Float, Text, Buffer, Handle };

    Kind m_kind;
    const void* m_pointer;
};

/// One call from its beginning to its end.
class CallScope final : public CurrentCall {
  public:
    using Arguments = std::initializer_list<Argument>;

    CallScope(const char* function, const Arguments& arguments);
    ~CallScope();

    /// Does an ordered fault take the place of the call?
    bool fails(VmbError_t& result);
    /// The call has passed its checks: cables that were ordered to be pulled or plugged in now are.
    static void midway();
    void finish(VmbError_t result, const std::initializer_list<Output>& outputs);
    void finishVoid();

  private:
    std::string line() const;
    /// Null when there is none.
    const char* firstText() const;

    const Arguments& m_arguments;
    const bool m_journalled;
    std::string m_before;  // arguments as they read before the call
};

template <typename Body>
VmbError_t guarded(Body&& body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return VmbErrorResources;
    } catch (const std::system_error&) {
        return VmbErrorResources;
    } catch (const std::exception&) {
        return VmbErrorInternalFault;
    }
}

template <typename Body>
VmbError_t vendorCall(const char* function, std::initializer_list<Argument> arguments,
                      std::initializer_list<Output> outputs, Body&& body) {
    return guarded([&] {
        CallScope scope(function, arguments);
        VmbError_t result = VmbErrorSuccess;
        const bool struck = scope.fails(result);
        if (!struck) result = guarded(body);
        scope.finish(result, struck ? std::initializer_list<Output>{} : outputs);
        return result;
    });
}

/// VmbErrorApiNotStarted, which is a misuse.
VmbError_t notStarted();
/// For calls that may wait: on a thread of the library they are a misuse.
void reportWaitInCallback();

/// What is checked behind the handle and before the name.
struct Given {
    bool arguments = true;   ///< no pointer is null that must not be
    bool structSize = true;  ///< the record's size is the one of this version
};

/// Started, handle, null pointers, record size: in this order, for every function.
inline VmbError_t checkGiven(const Given& given) {
    if (!given.arguments) return VmbErrorBadParameter;
    return given.structSize ? VmbErrorSuccess : VmbErrorStructSize;
}

template <typename Body>
VmbError_t withLibrary(const Given& given, Body&& body) {
    if (!simulation().isStarted()) return notStarted();
    const VmbError_t checked = checkGiven(given);
    if (checked != VmbErrorSuccess) return checked;
    CallScope::midway();
    return code(body(simulation()));
}

template <typename Body>
VmbError_t withModule(VmbHandle_t handle, const Given& given, Body&& body) {
    if (!simulation().isStarted()) return notStarted();
    const std::shared_ptr<FeatureModule> module = simulation().module(handle);
    if (module == nullptr) return code(simulation().unknownHandle(handle));
    if (!module->isAlive()) return VmbErrorBadHandle;
    const VmbError_t checked = checkGiven(given);
    if (checked != VmbErrorSuccess) return checked;
    CallScope::midway();
    return code(body(*module));
}

/// Also for a camera that is gone: taking memory back from it must still wait for its threads.
template <typename Body>
VmbError_t withCamera(VmbHandle_t handle, const Given& given, Body&& body) {
    if (!simulation().isStarted()) return notStarted();
    const std::shared_ptr<CameraSession> session = simulation().session(handle);
    if (session == nullptr) return code(simulation().unknownHandle(handle));
    const VmbError_t checked = session->isAlive() ? checkGiven(given) : VmbErrorSuccess;
    if (checked != VmbErrorSuccess) return checked;
    CallScope::midway();
    return code(body(*session));
}

/// The two-step lists: counts, or fills as far as the array goes.
template <typename Item, typename Source, typename Convert>
Result fillList(const std::vector<Source>& source, Item* array, VmbUint32_t length, VmbUint32_t* found,
                Convert&& convert) {
    const auto total = static_cast<VmbUint32_t>(source.size());
    if (found != nullptr) *found = total;
    if (array == nullptr) return Result::Success;
    for (VmbUint32_t i = 0; i < total && i < length; ++i) array[i] = convert(source[i]);
    return length < total || length == 0 ? Result::MoreData : Result::Success;
}

}  // namespace simulator
