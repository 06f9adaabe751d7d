/// Fills the client's frame record and calls its callback.
#pragma once

#include "capture_engine.h"

namespace simulator {

class VendorFrameOutlet final : public FrameOutlet {
  public:
    void deliver(void* owner, const FrameReport& report) override;
    void takeBack(void* record) override;
};

}  // namespace simulator
