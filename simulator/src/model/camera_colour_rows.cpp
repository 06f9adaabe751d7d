#include "camera_feature_rows.h"

namespace simulator {
namespace {

void addWhiteBalanceRows(FeatureRows& rows) {
    const char* path = "/Controls/Whitebalance";
    rows.push_back(enumRow("BalanceWhiteAuto", {{"Off", 1}, {"Continuous", 2}, {"Once", 3}}, 1)
                       .in(path)
                       .affecting({"BalanceRatioAbs"})
                       .text("Automatic white balance"));
    rows.push_back(percentRow("BalanceWhiteAutoAdjustTol", {0, 50, 1}, 5)
                       .in(path)
                       .text("Dead band of the automatic white balance"));
    rows.push_back(percentRow("BalanceWhiteAutoRate", {1, 100, 1}, 100)
                       .in(path)
                       .text("Speed of the automatic white balance"));
    rows.push_back(enumRow("BalanceRatioSelector", {{"Red", 0}, {"Blue", 1}}, 0)
                       .in(path)
                       .affecting({"BalanceRatioAbs"})
                       .text("Colour that BalanceRatioAbs is for"));
    rows.push_back(floatRow("BalanceRatioAbs", {0.8, 3.0}, 1.0)
                       .in(path)
                       .roundedTo(0.01)
                       .per("BalanceRatioSelector")
                       .text("Gain of the colour against green"));
}

void addTransformationRows(FeatureRows& rows) {
    const char* path = "/Controls/ColorTransformationControl";
    const char* selector = "ColorTransformationValueSelector";
    rows.push_back(enumRow("ColorTransformationMode", {{"Off", 0}, {"Manual", 1}, {"Temp6500K", 2}}, 0)
                       .in(path)
                       .text("Where the colour matrix comes from"));
    rows.push_back(enumRow(selector,
                           {{"Gain00", 0},
                            {"Gain01", 1},
                            {"Gain02", 2},
                            {"Gain10", 3},
                            {"Gain11", 4},
                            {"Gain12", 5},
                            {"Gain20", 6},
                            {"Gain21", 7},
                            {"Gain22", 8}},
                           0)
                       .in(path)
                       .affecting({"ColorTransformationValue"})
                       .text("Element of the colour matrix, row and column"));
    rows.push_back(floatRow("ColorTransformationValue", {-2, 2}, 0.0)
                       .in(path)
                       .per(selector, {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0})
                       .text("Value of the element"));
}

}  // namespace

void addLevelRows(FeatureRows& rows) {
    rows.push_back(floatRow("BlackLevel", {0, 255.75}, 0.0)
                       .in("/Controls/BlackLevelControl")
                       .of("DN")
                       .text("Value of a dark pixel"));
    rows.push_back(floatRow("Gamma", {0.45, 1.0}, 1.0).in("/Controls").text("Gamma, 1 for none"));
}

void addColourRows(FeatureRows& rows) {
    rows.push_back(floatRow("Hue", {-40, 40}, 0.0).in("/Controls").of("°").text("Turn of the colours"));
    rows.push_back(floatRow("Saturation", {0, 2}, 1.0).in("/Controls").text("Saturation of the colours"));
    addWhiteBalanceRows(rows);
    addTransformationRows(rows);
}

void addSubregionRows(FeatureRows& rows, const SensorRow& sensor) {
    const auto edge = [&](const char* name, std::int64_t initial, const char* opposite, const char* text) {
        rows.push_back(intRow(name, {0, initial, 1}, initial)
                           .in("/DSPSubregion")
                           .of("px")
                           .affecting({opposite})
                           .text(text));
    };
    edge("DSPSubregionLeft", 0, "DSPSubregionRight", "First column that automatic functions look at");
    edge("DSPSubregionTop", 0, "DSPSubregionBottom", "First row that automatic functions look at");
    edge("DSPSubregionRight", sensor.width, "DSPSubregionLeft", "Column behind the last one");
    edge("DSPSubregionBottom", sensor.height, "DSPSubregionTop", "Row behind the last one");
}

}  // namespace simulator
