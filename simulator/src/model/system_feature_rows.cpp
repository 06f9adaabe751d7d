#include "camera_feature_rows.h"

namespace simulator {

namespace {

void addInfoRows(FeatureRows& rows) {
    const auto layer = [&](const char* name, bool present, const char* text) {
        rows.push_back(boolRow(name, present).in("/Info").readOnly().text(text));
    };
    layer("GeVTLIsPresent", true, "Network cameras");
    layer("UsbTLIsPresent", false, "Universal serial bus");
    layer("FiWTLIsPresent", false, "Serial bus 1394");
    layer("CLTLIsPresent", false, "Parallel links");
    rows.push_back(floatRow("Elapsed", {0, 1e300}, 0.0)
                       .in("/Info")
                       .of("s")
                       .readOnly()
                       .changing()
                       .text("Time since start-up"));
}

void addDiscoveryRows(FeatureRows& rows) {
    const char* path = "/Discovery";
    rows.push_back(commandRow("GeVDiscoveryAllOnce").in(path).text("One round of discovery"));
    rows.push_back(commandRow("GeVDiscoveryAllAuto").in(path).text("Discovery until further notice"));
    rows.push_back(commandRow("GeVDiscoveryAllOff").in(path).text("Ends automatic discovery"));
    rows.push_back(
        intRow("GeVDiscoveryAllDuration", {0, 60'000, 1}, 150).in(path).of("ms").text("Length of a round"));
    const auto news = [&](FeatureRow row, const char* text) {
        row.flags = kRead | kUnnamed;
        rows.push_back(std::move(row).in(path).text(text));
    };
    const std::vector<EnumEntry> happenings = {
        {"Missing", 0}, {"Detected", 1}, {"Reachable", 2}, {"Unreachable", 3}};
    news(enumRow("DiscoveryCameraEvent", happenings, 0), "What happened to a camera last");
    news(textRow("DiscoveryCameraIdent", ""), "Which camera it happened to");
    news(enumRow("DiscoveryInterfaceEvent", happenings, 0), "What happened to an interface last");
    news(textRow("DiscoveryInterfaceIdent", ""), "Which interface it happened to");
}

void addBroadcastRows(FeatureRows& rows) {
    const char* address = "/ForceIP";
    const char* action = "/ActionControl";
    const IntRange words{0, UINT32_MAX, 1};
    rows.push_back(intRow("GeVForceIPAddressMAC", {0, 0xFFFF'FFFF'FFFF, 1}, 0)
                       .in(address)
                       .text("Hardware address of the camera that is to have another address"));
    rows.push_back(intRow("GeVForceIPAddressIP", words, 0).in(address).text("Its address"));
    rows.push_back(intRow("GeVForceIPAddressSubnetMask", words, 0).in(address).text("Mask of its network"));
    rows.push_back(intRow("GeVForceIPAddressGateway", words, 0).in(address).text("Its gateway"));
    rows.push_back(commandRow("GeVForceIPAddressSend").in(address).text("Tells the camera"));
    rows.push_back(intRow("ActionDeviceKey", words, 0).in(action).text("Key of the devices to act"));
    rows.push_back(intRow("ActionGroupKey", words, 0).in(action).text("Key of the group to act"));
    rows.push_back(intRow("ActionGroupMask", words, 0).in(action).text("Mask of the group to act"));
    rows.push_back(commandRow("ActionCommand").in(action).text("Tells the cameras to act"));
}

}  // namespace

std::vector<FeatureRow> systemFeatureRows() {
    FeatureRows rows;
    addInfoRows(rows);
    addDiscoveryRows(rows);
    addBroadcastRows(rows);
    return rows;
}

}  // namespace simulator
