/// What the parts of the library share, and what a camera finds around it besides.
#pragma once

#include <functional>
#include <memory>

#include "choices.h"
#include "clock.h"
#include "faults.h"
#include "line_input.h"
#include "misuse_log.h"
#include "network_link.h"

namespace simulator {

class FrameOutlet;

struct LibraryContext {
    SimulatorClock& clock;
    const Choices& choices;
    MisuseLog& misuses;
};

struct Surroundings : LibraryContext {
    FrameOutlet& outlet;
    std::shared_ptr<FrameFaults> faults;
    std::shared_ptr<LineInput> line;
    std::shared_ptr<NetworkLink> link;
    std::function<void()> onStart;  ///< for every AcquisitionStart; called with the camera's mutex held
};

}  // namespace simulator
