#include "camera_feature_rows.h"

namespace simulator {
namespace {

constexpr const char* kImageMode = "/ImageMode";
constexpr const char* kImageFormat = "/ImageFormat";

void addIdentityRows(FeatureRows& rows, const CameraRow& camera) {
    rows.push_back(textRow("DeviceVendorName", kVendorName).in("/Info").text("Maker of the camera"));
    rows.push_back(textRow("DeviceModelName", camera.model).in("/Info").text("Model of the camera"));
    rows.push_back(
        textRow("DeviceUserID", "").in("/Info").writable(16).text("Name that a user gave the camera"));
    rows.push_back(rawRow("SimulatorRawData", 64, 1024)
                       .in("/Info")
                       .text("Bytes of the simulator's own, without any effect"));
    rows.push_back(textRow("DeviceID", camera.serial).in("/Info").text("Serial number of the camera"));
}

void addSizeRows(FeatureRows& rows, const SensorRow& sensor) {
    const IntRange sizes{1, kUnlimited, 1};
    rows.push_back(intRow("SensorWidth", sizes, sensor.width)
                       .in("/Info")
                       .of("px")
                       .readOnly()
                       .text("Columns of the sensor"));
    rows.push_back(intRow("SensorHeight", sizes, sensor.height)
                       .in("/Info")
                       .of("px")
                       .readOnly()
                       .text("Rows of the sensor"));
    rows.push_back(
        intRow("WidthMax", sizes, sensor.width).in(kImageMode).of("px").readOnly().text("Widest picture"));
    rows.push_back(
        intRow("HeightMax", sizes, sensor.height).in(kImageMode).of("px").readOnly().text("Highest picture"));
}

void addRegionRows(FeatureRows& rows, const SensorRow& sensor) {
    rows.push_back(intRow("Width", {sensor.widthStep, sensor.width, sensor.widthStep}, sensor.width)
                       .in(kImageFormat)
                       .of("px")
                       .whileIdle()
                       .affecting({"OffsetX", "ImageSize", "PayloadSize", "AcquisitionFrameRateLimit",
                                   "AcquisitionFrameRateAbs"})
                       .text("Columns of the picture"));
    rows.push_back(intRow("Height", {sensor.heightStep, sensor.height, sensor.heightStep}, sensor.height)
                       .in(kImageFormat)
                       .of("px")
                       .whileIdle()
                       .affecting({"OffsetY", "ImageSize", "PayloadSize", "AcquisitionFrameRateLimit",
                                   "AcquisitionFrameRateAbs"})
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
    addSizeRows(rows, camera.sensor);
    addRegionRows(rows, camera.sensor);
    rows.push_back(
        enumRow("PixelFormat", camera.pixelFormats, camera.powerUpFormat)
            .in(kImageFormat)
            .whileIdle()
            .affecting({"ImageSize", "PayloadSize", "AcquisitionFrameRateLimit", "AcquisitionFrameRateAbs"})
            .text("Format of the pixels"));
    const IntRange sizes{0, kUnlimited, 1};
    rows.push_back(
        intRow("ImageSize", sizes, 0).in(kImageFormat).of("B").readOnly().text("Bytes of the picture"));
    rows.push_back(intRow("PayloadSize", sizes, 0)
                       .in(kImageFormat)
                       .of("B")
                       .readOnly()
                       .text("Bytes that a frame's buffer needs"));
}

}  // namespace simulator
