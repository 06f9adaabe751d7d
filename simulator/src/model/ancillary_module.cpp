#include "ancillary_module.h"

#include <vector>

namespace simulator {
namespace {

FeatureRow chunkRow(const char* name, std::int64_t value, const char* unit, const char* description) {
    return intRow(name, {0, UINT32_MAX, 1}, value).in("/ChunkData").of(unit).readOnly().text(description);
}

std::vector<FeatureRow> rows(const ChunkData& data) {
    return {chunkRow("ChunkAcquisitionFrameCount", data.acquisitionCount, "",
                     "Number of the frame in its acquisition"),
            chunkRow("ChunkExposureTime", data.exposureUs, "µs", "Exposure time of the frame"),
            chunkRow("ChunkGain", data.gainDb, "dB", "Gain of the frame"),
            chunkRow("ChunkSyncInLevels", data.inputs, "", "Levels of the input lines"),
            chunkRow("ChunkSyncOutLevels", data.outputs, "", "Levels of the output lines")};
}

}  // namespace

AncillaryModule::AncillaryModule(const LibraryContext& library, const ChunkData& data)
    : FeatureModule(library, ThreadRole::Event, false), m_features(rows(data)) {}

}  // namespace simulator
