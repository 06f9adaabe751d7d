/// One row of a scenario: everything about a camera that its firmware and its wiring fix.
#pragma once

#include <cstdint>
#include <vector>

#include "feature_row.h"

namespace simulator {

struct SensorRow {
    std::int64_t width;
    std::int64_t height;
    std::int64_t widthStep;
    std::int64_t heightStep;
    std::int64_t offsetXStep;
    std::int64_t offsetYStep;
    double rowSeconds;          ///< readout of one row
    double readoutSeconds;      ///< fixed part of the readout
    double shortestExposureUs;  ///< also the pause that an exposure needs before the next one
};

/// Texts are literals: clients keep pointers to them.
struct CameraRow {
    const char* id;  ///< "DEV_" and the twelve digits of the hardware address
    const char* model;
    const char* serial;
    const char* interfaceId;
    bool colour;
    SensorRow sensor;
    std::vector<EnumEntry> pixelFormats;  ///< numbers carry bits per pixel in bits 16 to 23
    std::int64_t powerUpFormat;
    double powerUpRate;     ///< Hz
    double hottestGain;     ///< dB
    std::int64_t clockPpb;  ///< how much too fast the oscillator is
};

/// All features of such a camera at power-up.
std::vector<FeatureRow> cameraFeatureRows(const CameraRow& camera);

/// Features of the library itself.
std::vector<FeatureRow> systemFeatureRows();

}  // namespace simulator
