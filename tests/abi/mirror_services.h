/// Mirrors of services and their registry.
#pragma once

#include <gtest/gtest.h>

#include "if_service_factory.h"
#include "mirror.h"

namespace slot_check {

inline constexpr boost::uuids::uuid kServiceId{{16, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1}};

template <class Service>
class RecordingService : public EndOf<Service> {
  public:
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

}  // namespace slot_check
