// The camera's side of the network, and the library's: stream, protocol, addresses.
#include "camera_feature_rows.h"

namespace simulator {
namespace {

const IntRange kAny{0, kUnlimited, 1};
const IntRange kAddresses{0, UINT32_MAX, 1};
const IntRange kPackets{500, 16'384, 1};
constexpr std::int64_t kPowerUpPacket = 8228;
const std::vector<const char*> kRates = {"AcquisitionFrameRateLimit", "AcquisitionFrameRateAbs"};

/// A setting of the library's driver. Few change anything here.
FeatureRow driverRow(const char* name, IntRange range, std::int64_t initial, const char* text) {
    return intRow(name, range, initial).in("/Stream/Settings").text(text);
}

/// As network addresses are numbers here: the first octet lowest.
std::int64_t lowestFirst(std::uint32_t address) {
    return address >> 24 | (address >> 8 & 0xFF00) | (address << 8 & 0xFF'0000) |
           std::int64_t{address & 0xFF} << 24;
}

void addRateRows(FeatureRows& rows) {
    const char* path = "/Stream/Settings";
    rows.push_back(enumRow("BandwidthControlMode", {{"StreamBytesPerSecond", 0}, {"SCPD", 1}, {"Both", 2}}, 0)
                       .in(path)
                       .except({{"SCPD"}, {"Both"}})
                       .text("What limits the data rate"));
    rows.push_back(intRow("StreamBytesPerSecond", {1'000'000, 124'000'000, 1}, 115'000'000)
                       .in(path)
                       .of("B/s")
                       .affecting(kRates)
                       .text("Upper limit of the data rate"));
    rows.push_back(boolRow("StreamFrameRateConstrain", true)
                       .in(path)
                       .affecting(kRates)
                       .text("Limits the frame rate to what StreamBytesPerSecond allows"));
}

void addPacketRows(FeatureRows& rows) {
    const char* path = "/GigE/Configuration";
    rows.push_back(commandRow("GVSPAdjustPacketSize")
                       .in(path)
                       .whileIdle()
                       .affecting({"GevSCPSPacketSize", "GVSPPacketSize"})
                       .text("Finds the largest packet that passes and takes it"));
    rows.push_back(intRow("GevSCPSPacketSize", kPackets, kPowerUpPacket)
                       .in(path)
                       .of("B")
                       .whileIdle()
                       .affecting({"GVSPPacketSize"})
                       .text("Size of a stream packet"));
    rows.push_back(intRow("GVSPPacketSize", kPackets, kPowerUpPacket)
                       .in("/Stream/Settings")
                       .of("B")
                       .whileIdle()
                       .affecting({"GevSCPSPacketSize"})
                       .text("Size of a stream packet as the driver sees it"));
}

void addDriverRows(FeatureRows& rows) {
    rows.push_back(driverRow("GVSPBurstSize", {1, 256, 1}, 32, "Packets per burst"));
    rows.push_back(enumRow("GVSPDriver", {{"Socket", 0}, {"Filter", 1}}, 0)
                       .in("/Stream/Settings")
                       .text("Driver that receives the stream"));
    rows.push_back(enumRow("GVSPProtocol", {{"UDP", 0}}, 0)
                       .in("/Stream/Settings")
                       .readOnly()
                       .text("Protocol below the stream"));
    rows.push_back(driverRow("GVSPHostReceiveBuffers", {256, 2048, 1}, 512, "Buffers for packets"));
    rows.push_back(driverRow("GVSPHostReceiveBufferSize", {65'536, 1'073'741'824, 1}, 67'108'864,
                             "Size of the receive buffer")
                       .of("B"));
    rows.push_back(driverRow("GVSPMaxLookBack", {1, 1024, 1}, 30, "How far back packets are missed"));
    rows.push_back(driverRow("GVSPMaxRequests", {1, 512, 1}, 3, "Requests for a packet"));
    rows.push_back(driverRow("GVSPMaxWaitSize", {8, 1024, 1}, 100, "Packets to wait for"));
    rows.push_back(driverRow("GVSPMissingSize", {0, 1024, 1}, 512, "Missing packets before a request"));
    rows.push_back(driverRow("GVSPTiltingSize", {0, 1024, 1}, 100, "Packets that may overtake"));
    rows.push_back(driverRow("GVSPTimeout", {10, 5000, 1}, 70, "Time until a packet is missing").of("ms"));
}

void addBufferRows(FeatureRows& rows, const CameraRow& camera) {
    const char* hold = "/GigE/StreamHold";
    const char* info = "/Stream/Info";
    rows.push_back(enumRow("StreamHoldEnable", {{"Off", 0}, {"On", 1}}, 0)
                       .in(hold)
                       .text("Keeps pictures in the camera's memory"));
    rows.push_back(intRow("StreamHoldCapacity", kAny, camera.memoryFrames)
                       .in(hold)
                       .readOnly()
                       .text("Pictures of full size that the camera's memory holds"));
    rows.push_back(textRow("StreamID", "Stream0").in(info).text("Identifier of the stream"));
    rows.push_back(enumRow("StreamType", {{"GEV", 0}}, 0).in(info).readOnly().text("Kind of the stream"));
    rows.push_back(intRow("StreamAnnounceBufferMinimum", kAny, 1)
                       .in(info)
                       .readOnly()
                       .text("Frames that have to be announced at least"));
    rows.push_back(intRow("StreamAnnouncedBufferCount", kAny, 0)
                       .in(info)
                       .readOnly()
                       .changing()
                       .text("Frames that are announced"));
    rows.push_back(enumRow("StreamBufferHandlingMode", {{"Default", 0}}, 0)
                       .in("/Stream/Settings")
                       .text("Order in which frames are filled"));
    rows.push_back(boolRow("MulticastEnable", false)
                       .in("/Stream/Multicast")
                       .text("Sends the stream to several receivers"));
}

void addControlRows(FeatureRows& rows) {
    const char* path = "/GigE/GVCP";
    const IntRange heartbeats{500, 10'000, 1};
    rows.push_back(intRow("GVCPCmdRetries", {1, 10, 1}, 5).in(path).text("Repetitions of a command"));
    rows.push_back(
        intRow("GVCPCmdTimeout", {10, 5000, 1}, 250).in(path).of("ms").text("Time for a command's answer"));
    rows.push_back(intRow("GevHeartbeatInterval", heartbeats, 1450)
                       .in(path)
                       .of("ms")
                       .text("Time between two signs of life"));
    rows.push_back(intRow("GevHeartbeatTimeout", heartbeats, 3000)
                       .in(path)
                       .of("ms")
                       .text("Time without a sign of life that ends control"));
}

void addAddressRows(FeatureRows& rows, const CameraRow& camera) {
    const char* current = "/GigE/Current";
    const char* persistent = "/GigE/Persistent";
    const auto fixed = [&](const char* name, std::int64_t value, const char* text) {
        rows.push_back(intRow(name, kAny, value).in(current).readOnly().text(text));
    };
    const auto kept = [&](const char* name, const char* text) {
        rows.push_back(intRow(name, kAddresses, 0).in(persistent).text(text));
    };
    rows.push_back(enumRow("GevIPConfigurationMode", {{"LLA", 4}, {"Persistent", 5}, {"DHCP", 6}}, 4)
                       .in("/GigE/Configuration")
                       .text("Where the address at the next power-up comes from"));
    fixed("GevCurrentIPAddress", lowestFirst(camera.ipAddress), "Address of the camera");
    fixed("GevCurrentSubnetMask", lowestFirst(camera.subnetMask), "Mask of its network");
    fixed("GevCurrentDefaultGateway", 0, "Its gateway");
    fixed("GevDeviceMACAddress", static_cast<std::int64_t>(camera.macAddress()), "Hardware address");
    kept("GevPersistentIPAddress", "Address in mode Persistent");
    kept("GevPersistentSubnetMask", "Mask in mode Persistent");
    kept("GevPersistentDefaultGateway", "Gateway in mode Persistent");
}

}  // namespace

void addNetworkRows(FeatureRows& rows, const CameraRow& camera) {
    addRateRows(rows);
    addPacketRows(rows);
    addDriverRows(rows);
    addBufferRows(rows, camera);
    addControlRows(rows);
    addAddressRows(rows, camera);
}

}  // namespace simulator
