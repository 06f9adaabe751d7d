#include "camera_feature_rows.h"

namespace simulator {
namespace {

constexpr const char* kImageMode = "/ImageMode";
constexpr const char* kImageFormat = "/ImageFormat";

using Names = std::vector<const char*>;

const Names kSizeAndRate = {"ImageSize", "PayloadSize", "AcquisitionFrameRateLimit",
                            "AcquisitionFrameRateAbs"};

Names joined(Names names, const Names& more) {
    names.insert(names.end(), more.begin(), more.end());
    return names;
}

Names andSizeAndRate(const Names& names) {
    return joined(names, kSizeAndRate);
}

void addIdentityRows(FeatureRows& rows, const CameraRow& camera) {
    const char* path = "/Info";
    rows.push_back(textRow("DeviceVendorName", kVendorName).in(path).text("Maker of the camera"));
    rows.push_back(textRow("DeviceModelName", camera.model).in(path).text("Model of the camera"));
    rows.push_back(textRow("DeviceID", camera.serial).in(path).text("Serial number of the camera"));
    rows.push_back(
        textRow("DeviceUserID", "").in(path).writable(16).text("Name that a user gave the camera"));
    rows.push_back(
        textRow("DeviceFirmwareVersion", camera.firmware).in(path).text("Version of the firmware"));
    rows.push_back(intRow("DevicePartNumber", {0, kUnlimited, 1}, camera.partNumber)
                       .in(path)
                       .readOnly()
                       .text("Number of the model"));
    rows.push_back(
        enumRow("DeviceScanType", {{"Areascan", 0}}, 0).in(path).readOnly().text("Kind of the sensor"));
    rows.push_back(rawRow("SimulatorRawData", 64, kLongestRaw)
                       .in("/Simulator")
                       .text("Bytes of the simulator's own, without any effect"));
}

void addSensorRows(FeatureRows& rows, const CameraRow& camera) {
    const char* path = "/Info";
    const IntRange sizes{1, kUnlimited, 1};
    const SensorRow& sensor = camera.sensor;
    const auto size = [&](const char* name, const char* where, std::int64_t value, const char* text) {
        rows.push_back(intRow(name, sizes, value).in(where).of("px").readOnly().text(text));
    };
    size("SensorWidth", path, sensor.width, "Columns of the sensor");
    size("SensorHeight", path, sensor.height, "Rows of the sensor");
    size("WidthMax", kImageMode, sensor.width, "Widest picture");
    size("HeightMax", kImageMode, sensor.height, "Highest picture");
    rows.push_back(
        intRow("SensorBits", sizes, sensor.bits).in(path).of("bit").readOnly().text("Depth of the sensor"));
    rows.push_back(enumRow("SensorType", {{"Mono", 0}, {"Bayer", 1}}, camera.colour ? 1 : 0)
                       .in(path)
                       .readOnly()
                       .text("Colours of the sensor"));
}

void addModeRows(FeatureRows& rows, const SensorRow& sensor) {
    // Binning and decimation exclude each other, so each changes the other's range.
    const auto divisor = [&](const char* name, std::int64_t most, const Names& affected, const char* text) {
        rows.push_back(intRow(name, {1, most, 1}, 1)
                           .in(kImageMode)
                           .whileIdle()
                           .affecting(andSizeAndRate(affected))
                           .text(text));
    };
    const auto across = [](const Names& others) {
        return joined({"WidthMax", "Width", "OffsetX", "DSPSubregionLeft", "DSPSubregionRight"}, others);
    };
    const auto down = [](const Names& others) {
        return joined({"HeightMax", "Height", "OffsetY", "DSPSubregionTop", "DSPSubregionBottom"}, others);
    };
    const Names binning = {"BinningHorizontal", "BinningVertical"};
    const Names decimation = {"DecimationHorizontal", "DecimationVertical"};
    divisor("BinningHorizontal", sensor.mostBinning, across(decimation), "Columns that are added up");
    divisor("BinningVertical", sensor.mostBinning, down(decimation), "Rows that are added up");
    divisor("DecimationHorizontal", sensor.mostDecimation, across(binning), "One column of so many");
    divisor("DecimationVertical", sensor.mostDecimation, down(binning), "One row of so many");
    rows.push_back(boolRow("ReverseX", false).in(kImageMode).text("Turns the picture left to right"));
    rows.push_back(boolRow("ReverseY", false).in(kImageMode).text("Turns the picture upside down"));
}

void addRegionRows(FeatureRows& rows, const SensorRow& sensor) {
    rows.push_back(intRow("Width", {sensor.widthStep, sensor.width, sensor.widthStep}, sensor.width)
                       .in(kImageFormat)
                       .of("px")
                       .whileIdle()
                       .affecting(andSizeAndRate({"OffsetX"}))
                       .text("Columns of the picture"));
    rows.push_back(intRow("Height", {sensor.heightStep, sensor.height, sensor.heightStep}, sensor.height)
                       .in(kImageFormat)
                       .of("px")
                       .whileIdle()
                       .affecting(andSizeAndRate({"OffsetY"}))
                       .text("Rows of the picture"));
    rows.push_back(intRow("OffsetX", {0, 0, sensor.offsetXStep}, 0)
                       .in(kImageFormat)
                       .of("px")
                       .whileIdle()
                       .affecting({"Width"})
                       .text("First column of the picture"));
    rows.push_back(intRow("OffsetY", {0, 0, sensor.offsetYStep}, 0)
                       .in(kImageFormat)
                       .of("px")
                       .whileIdle()
                       .affecting({"Height"})
                       .text("First row of the picture"));
}

}  // namespace

void addImageRows(FeatureRows& rows, const CameraRow& camera) {
    addIdentityRows(rows, camera);
    addSensorRows(rows, camera);
    addModeRows(rows, camera.sensor);
    addRegionRows(rows, camera.sensor);
    rows.push_back(enumRow("PixelFormat", camera.pixelFormats, camera.powerUpFormat)
                       .in(kImageFormat)
                       .whileIdle()
                       .affecting(kSizeAndRate)
                       .text("Format of the pixels"));
    rows.push_back(boolRow("ChunkModeActive", false)
                       .in(kImageFormat)
                       .whileIdle()
                       .affecting({"NonImagePayloadSize", "PayloadSize", "AcquisitionFrameRateLimit",
                                   "AcquisitionFrameRateAbs"})
                       .text("Sends data about the frame behind the picture"));
    const auto bytes = [&](const char* name, const char* text) {
        rows.push_back(intRow(name, {0, kUnlimited, 1}, 0).in(kImageFormat).of("B").readOnly().text(text));
    };
    bytes("ImageSize", "Bytes of the picture");
    bytes("NonImagePayloadSize", "Bytes of the data behind the picture");
    bytes("PayloadSize", "Bytes that a frame's buffer needs");
}

}  // namespace simulator
