#include "camera_feature_rows.h"

namespace simulator {

std::vector<FeatureRow> systemFeatureRows() {
    const char* discovery = "/Discovery";
    const std::vector<EnumEntry> happenings = {
        {"Missing", 0}, {"Detected", 1}, {"Reachable", 2}, {"Unreachable", 3}};
    FeatureRows rows;
    rows.push_back(boolRow("GeVTLIsPresent", true).in("/Info").readOnly().text("Network cameras"));
    rows.push_back(boolRow("UsbTLIsPresent", false).in("/Info").readOnly().text("Universal serial bus"));
    rows.push_back(boolRow("FiWTLIsPresent", false).in("/Info").readOnly().text("Serial bus 1394"));
    rows.push_back(boolRow("CLTLIsPresent", false).in("/Info").readOnly().text("Parallel links"));
    rows.push_back(floatRow("Elapsed", {0, 1e300}, 0.0)
                       .in("/Info")
                       .of("s")
                       .readOnly()
                       .changing()
                       .text("Time since start-up"));
    rows.push_back(commandRow("GeVDiscoveryAllOnce").in(discovery).text("One round of discovery"));
    rows.push_back(commandRow("GeVDiscoveryAllAuto").in(discovery).text("Discovery until further notice"));
    rows.push_back(commandRow("GeVDiscoveryAllOff").in(discovery).text("Ends automatic discovery"));
    rows.push_back(intRow("GeVDiscoveryAllDuration", {0, 60'000, 1}, 150)
                       .in(discovery)
                       .of("ms")
                       .text("Length of a round"));
    rows.push_back(enumRow("DiscoveryCameraEvent", happenings, 0)
                       .in(discovery)
                       .readOnly()
                       .changing()
                       .text("What happened to a camera last"));
    rows.push_back(
        textRow("DiscoveryCameraIdent", "").in(discovery).changing().text("Which camera it happened to"));
    rows.push_back(enumRow("DiscoveryInterfaceEvent", happenings, 0)
                       .in(discovery)
                       .readOnly()
                       .changing()
                       .text("What happened to an interface last"));
    rows.push_back(textRow("DiscoveryInterfaceIdent", "")
                       .in(discovery)
                       .changing()
                       .text("Which interface it happened to"));
    return rows;
}

}  // namespace simulator
