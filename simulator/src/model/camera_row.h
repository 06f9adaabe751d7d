/// One row of a scenario: everything about a camera that its firmware and its wiring fix.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "camera_clock.h"
#include "feature_row.h"
#include "network_link.h"

namespace simulator {

struct SensorRow {
    std::int64_t width;
    std::int64_t height;
    std::int64_t widthStep;
    std::int64_t heightStep;
    std::int64_t offsetXStep;
    std::int64_t offsetYStep;
    double rowSeconds;          ///< readout of one row
    double skippedRowSeconds;   ///< of a row outside of the picture
    double readoutSeconds;      ///< fixed part of the readout
    double shortestExposureUs;  ///< also the pause that an exposure needs before the next one
    double longestExposureUs = 60'000'000;
    double exposureIncrementUs = 1;
    std::int64_t mostBinning = 8;
    std::int64_t mostDecimation = 8;
    std::int64_t bits = 12;  ///< depth of a pixel
};

/// An interface of the host. Texts stay valid for good: clients keep pointers to them.
struct InterfaceRow {
    const char* id;
    const char* name;
    const char* serial;
    LinkRow link = {};
};

inline constexpr const char* kVendorName = "Allied Vision Technologies";

/// A feature's value at power-up; an enumeration's is the text of its entry.
struct PowerUpValue {
    const char* feature;
    FeatureValue value;
};

/// Texts stay valid for good: clients keep pointers to them.
struct CameraRow {
    const char* id = "";  ///< "DEV_" and the twelve digits of the hardware address
    const char* model;
    const char* serial = "";
    const char* firmware;
    std::int64_t partNumber;
    const char* interfaceId = "";
    std::uint32_t ipAddress = 0;  ///< first octet highest, as the next
    std::uint32_t subnetMask;
    bool colour;
    SensorRow sensor;
    std::vector<EnumEntry> pixelFormats;  ///< numbers carry bits per pixel in bits 16 to 23
    std::int64_t powerUpFormat;
    double powerUpRate;         ///< Hz
    double hottestGain;         ///< dB
    std::int64_t memoryFrames;  ///< frames of full size that the camera's memory holds
    OscillatorRow oscillator;
    std::vector<PowerUpValue> powerUpValues = {};  ///< set in this order

    /// 48 bits, first octet highest.
    std::uint64_t macAddress() const { return std::strtoull(id + 4, nullptr, 16); }
};

/// Four decimal numbers with dots; the address's first octet is its highest.
std::string ipText(std::uint32_t address);
/// The address of such a text, nothing of any other.
std::optional<std::uint32_t> ipOf(const std::string& text);

/// All features of such a camera at power-up.
std::vector<FeatureRow> cameraFeatureRows(const CameraRow& camera);

/// Features of the library itself.
std::vector<FeatureRow> systemFeatureRows();

}  // namespace simulator
