/// Mirrors of services and their registry.
#pragma once

#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "if_service_factory.h"
#include "if_sync_aux_service.h"
#include "if_system_topology_service.h"
#include "mirror.h"

namespace slot_check {

inline constexpr boost::uuids::uuid kServiceId{{16, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1}};

template <class Service>
class RecordingService : public EndOf<Service> {
  public:
    using EndOf<Service>::EndOf;

    virtual std::uint32_t addRef() {
        answered("addRef");
        return 3000000000u;
    }
    virtual std::uint32_t release() {
        answered("release");
        return 3000000001u;
    }

    static Operations operations() {
        return {{"addRef", entryOf(&RecordingService::addRef)},
                {"release", entryOf(&RecordingService::release)}};
    }

  protected:
    ~RecordingService() = default;
};

class RecordingServiceFactory : public RecordingService<plugin_api::IfServiceFactory> {
  public:
    virtual bool getService(const boost::uuids::uuid& id, plugin_api::IfService** out) {
        answered("getService");
        *out = this;
        return id == kServiceId;
    }

    static Operations operations() {
        Operations all = RecordingService::operations();
        all.push_back({"getService", entryOf(&RecordingServiceFactory::getService)});
        return all;
    }
};

class RecordingSyncAuxService : public RecordingService<zelt::IfSyncAuxService> {
  public:
    virtual void setSyncOutAuxFrequency(std::int64_t numerator, std::int64_t denominator) {
        answerIf("setSyncOutAuxFrequency", numerator == kNumerator && denominator == kDenominator);
    }

    static Operations operations() {
        Operations all = RecordingService::operations();
        all.push_back({"setSyncOutAuxFrequency", entryOf(&RecordingSyncAuxService::setSyncOutAuxFrequency)});
        return all;
    }

    static constexpr std::int64_t kNumerator = std::numeric_limits<std::int64_t>::min();
    static constexpr std::int64_t kDenominator = 9'000'000'001;

  protected:
    ~RecordingSyncAuxService() = default;
};

template <class Topology>
class RecordingTopologyService : public RecordingService<Topology> {
  public:
    using RecordingService<Topology>::RecordingService;
    using Callback = zelt::IfSystemTopologyService::Callback;

    virtual void getTopology(std::uint64_t reserved, Callback callback, void* context) {
        answerIf("getTopology", reserved == kHandle);
        callback(context, "text", 4);
    }
    virtual bool isTopologyDynamic() {
        answered("isTopologyDynamic");
        return true;
    }
    virtual void setListener(std::uint64_t handle) { answerIf("setListener", handle == kHandle); }
    virtual bool removeListener(std::uint64_t handle) {
        answered("removeListener");
        return handle == kHandle;
    }

    static Operations operations() {
        Operations all = RecordingService<Topology>::operations();
        all.push_back({"getTopology", entryOf(&RecordingTopologyService::getTopology)});
        all.push_back({"isTopologyDynamic", entryOf(&RecordingTopologyService::isTopologyDynamic)});
        all.push_back({"setListener", entryOf(&RecordingTopologyService::setListener)});
        all.push_back({"removeListener", entryOf(&RecordingTopologyService::removeListener)});
        return all;
    }

    static constexpr std::uint64_t kHandle = 0x8000000000000001u;

  protected:
    ~RecordingTopologyService() = default;
};

/// Slots 0 and 1.
inline void callService(Mirror& mirror) {
    EXPECT_EQ(mirror.slot<std::uint32_t()>(0)(), 3000000000u);
    EXPECT_EQ(mirror.slot<std::uint32_t()>(1)(), 3000000001u);
}

/// Slots 0 to 2.
inline void callServiceFactory(Mirror& mirror) {
    callService(mirror);
    plugin_api::IfService* found = nullptr;
    EXPECT_TRUE(
        (mirror.slot<bool(const boost::uuids::uuid&, plugin_api::IfService**)>(2)(kServiceId, &found)));
    EXPECT_EQ(found, &mirror.as<plugin_api::IfServiceFactory>());
}

/// Slots 0 to 2.
inline void callSyncAuxService(Mirror& mirror) {
    callService(mirror);
    mirror.slot<void(std::int64_t, std::int64_t)>(2)(RecordingSyncAuxService::kNumerator,
                                                     RecordingSyncAuxService::kDenominator);
}

/// Slots 0 to 5.
inline void callTopologyService(Mirror& mirror) {
    using Callback = zelt::IfSystemTopologyService::Callback;
    constexpr std::uint64_t kHandle = 0x8000000000000001u;
    callService(mirror);
    std::string told;
    const Callback tell = [](void* context, const char* text, std::size_t length) {
        static_cast<std::string*>(context)->assign(text, length);
    };
    mirror.slot<void(std::uint64_t, Callback, void*)>(2)(kHandle, tell, &told);
    EXPECT_EQ(told, "text");
    EXPECT_TRUE(mirror.slot<bool()>(3)());
    mirror.slot<void(std::uint64_t)>(4)(kHandle);
    EXPECT_TRUE(mirror.slot<bool(std::uint64_t)>(5)(kHandle));
}

}  // namespace slot_check
