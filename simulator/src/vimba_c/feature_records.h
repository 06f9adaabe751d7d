/// The vendor's records about features and entries.
#pragma once

#include "feature_module.h"
#include "vimba_c.h"

namespace simulator {

VmbFeatureInfo_t featureInfo(const FeatureFacts& facts);
VmbFeatureEnumEntry_t entryInfo(const EnumEntry& entry);

}  // namespace simulator
