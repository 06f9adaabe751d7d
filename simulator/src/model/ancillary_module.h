/// The chunk data of one received frame as features. A copy: the frame may be queued again meanwhile.
#pragma once

#include <mutex>

#include "chunk_data.h"
#include "feature_module.h"

namespace simulator {

class AncillaryModule : public FeatureModule {
  public:
    AncillaryModule(const LibraryContext& library, const ChunkData& data);

    const char* name() const override { return "ancillary data"; }
    bool isAlive() const override { return true; }

  protected:
    std::mutex& mutex() override { return m_mutex; }
    FeatureTable& features() override { return m_features; }
    Result execute(Lock&, const char*) override { return Result::Success; }

  private:
    std::mutex m_mutex;
    FeatureTable m_features;
};

}  // namespace simulator
