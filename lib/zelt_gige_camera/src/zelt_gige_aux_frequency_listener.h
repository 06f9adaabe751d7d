/// Who is told of the frequency of the host's trigger output.
#pragma once

#include "zelt_gige_aux_frequency.h"

namespace zelt_gige_camera {

class IfAuxFrequencyListener {
  public:
    /// [host threads] One call at a time, with the service's mutex held: it must not call the service.
    virtual void onSyncOutAuxFrequencyChanged(const AuxFrequency& frequency) = 0;

  protected:
    ~IfAuxFrequencyListener() = default;
};

}  // namespace zelt_gige_camera
