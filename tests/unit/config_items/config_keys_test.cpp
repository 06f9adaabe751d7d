#include "config_keys.h"

#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct Row {
    const char* constant;
    const char* text;
};

const std::vector<Row>& rows() {
    static const std::vector<Row> s_rows = {
        {config_keys::kBlockSize, "BlockSize"},
        {config_keys::kMode, "Mode"},
        {config_keys::kUsed, "Used"},
        {config_keys::kValid, "Valid"},
        {config_keys::kChannelType, "ChannelType"},
        {config_keys::kShortId, "ShortId"},
        {config_keys::kAdditionalChannelInfo2, "AdditionalChannelInfo2"},
        {config_keys::kAdditionalChannelInfo3, "AdditionalChannelInfo3"},
        {config_keys::kDefaultName, "DefaultName"},
        {config_keys::kDefaultGroup, "DefaultGroup"},
        {config_keys::kDefaultStored, "DefaultStored"},
        {config_keys::kSampleUpdateType, "SampleUpdateType"},
        {config_keys::kSampleRate, "SampleRate"},
        {config_keys::kRange, "Range"},
        {config_keys::kThermocoupleType, "ThermocoupleType"},
        {config_keys::kSampleFormat, "SampleFormat"},
        {config_keys::kSampleResolution, "SampleResolution"},
        {config_keys::kSampleDimension, "SampleDimension"},
        {config_keys::kChannelFlags, "ChannelFlags"},
        {config_keys::kScaling, "Scaling"},
        {config_keys::kUnit, "Unit"},
        {config_keys::kInputType, "InputType"},
        {config_keys::kInputOffset, "InputOffset"},
        {config_keys::kBridgeRes, "BridgeRes"},
        {config_keys::kShuntResistance, "ShuntResistance"},
        {config_keys::kShuntTarget, "ShuntTarget"},
        {config_keys::kShuntType, "ShuntType"},
        {config_keys::kResistor, "Resistor"},
        {config_keys::kMaxCurrent, "MaxCurrent"},
        {config_keys::kMaxPower, "MaxPower"},
        {config_keys::kSensorType, "SensorType"},
        {config_keys::kRtdSensorRes, "RTDSensorRes"},
        {config_keys::kTemperatureSensors, "TemperatureSensors"},
        {config_keys::kChannelLockReason, "ChannelLockReason"},
        {config_keys::kBaudRate, "BaudRate"},
        {config_keys::kBaudRateHigh, "BaudRateHigh"},
        {config_keys::kListenOnly, "ListenOnly"},
        {config_keys::kTermination, "Termination"},
        {config_keys::kLineResistance, "LineResistance"},
        {config_keys::kDoValue, "DO_Value"},
        {config_keys::kDoGroup, "DO_Group"},
        {config_keys::kLpFilterFreq, "LP_Filter_Freq"},
        {config_keys::kLpFilterState, "LP_Filter_State"},
        {config_keys::kLpFilterType, "LP_Filter_Type"},
        {config_keys::kLpFilterOrder, "LP_Filter_Order"},
        {config_keys::kHpFilterFreq, "HP_Filter_Freq"},
        {config_keys::kHpFilterState, "HP_Filter_State"},
        {config_keys::kHpFilterType, "HP_Filter_Type"},
        {config_keys::kHpFilterOrder, "HP_Filter_Order"},
        {config_keys::kHpFilterIsAnalogCoupling, "HP_Filter_Is_Analog_Coupling"},
        {config_keys::kInputImpedance, "InputImpedance"},
        {config_keys::kDelayCompensation, "DelayCompensation"},
        {config_keys::kZeroPaddingMode, "ZeroPaddingMode"},
        {config_keys::kCounterFilter, "Counter_Filter"},
        {config_keys::kEncoderMode, "EncoderMode"},
        {config_keys::kCounterHpFilter, "Counter_HP_Filter"},
        {config_keys::kCounterFilterA, "Counter_Filter_A"},
        {config_keys::kCounterFilterAState, "Counter_Filter_A_STATE"},
        {config_keys::kCounterFilterB, "Counter_Filter_B"},
        {config_keys::kCounterFilterBState, "Counter_Filter_B_STATE"},
        {config_keys::kCounterFilterZ, "Counter_Filter_Z"},
        {config_keys::kCounterFilterZState, "Counter_Filter_Z_STATE"},
        {config_keys::kCounterHpFilterA, "Counter_HP_Filter_A"},
        {config_keys::kCounterHpFilterAState, "Counter_HP_Filter_A_STATE"},
        {config_keys::kInvertedA, "Inverted_A"},
        {config_keys::kInvertedB, "Inverted_B"},
        {config_keys::kReset, "Reset"},
        {config_keys::kReTrigger, "ReTrigger"},
        {config_keys::kSourceA, "Source_A"},
        {config_keys::kThreshold, "Threshold"},
        {config_keys::kAdcMode, "AdcMode"},
        {config_keys::kAdcMaxSampleRate, "AdcMaxSampleRate"},
        {config_keys::kAdcPhaseCompensation, "AdcPhaseCompensation"},
        {config_keys::kModuleSerialNumber, "ModuleSerialNumber"},
        {config_keys::kExcitation, "Excitation"},
        {config_keys::kExcitationMode, "ExcitationMode"},
        {config_keys::kExcitationSync, "ExcitationSync"},
        {config_keys::kCarrierFrequency, "CarrierFrequency"},
        {config_keys::kPhaseAdjust, "PhaseAdjust"},
        {config_keys::kSensorFaultDetection, "SensorFaultDetection"},
        {config_keys::kOutputFilter, "OutputFilter"},
        {config_keys::kTriggerLevel, "TriggerLevel"},
        {config_keys::kActionAmplifierZero, "ACTION:AmplifierZero"},
        {config_keys::kActionSensorBalance, "ACTION:SensorBalance"},
        {config_keys::kActionInputShort, "ACTION:InputShort"},
        {config_keys::kActionShuntOn, "ACTION:ShuntOn"},
        {config_keys::kActionShuntOff, "ACTION:ShuntOff"},
        {config_keys::kActionLineResistanceCompensation, "ACTION:LineResistanceCompensation"},
        {config_keys::kActionReadSensorOffsetAdjustment, "ACTION:ReadSensorOffsetAdjustment"},
        {config_keys::kActionFindTriggerLevel, "ACTION:FindTriggerLevel"},
        {config_keys::kActionResetModule, "ACTION:ResetModule"},
        {config_keys::kActionCounterReset, "ACTION:CounterReset"},
        {config_keys::kTedsType, "TEDS/Type"},
        {config_keys::kTedsSerial, "TEDS/Serial"},
        {config_keys::kTedsCalDate, "TEDS/CalDate"},
        {config_keys::kTedsData, "TEDSData"},
        {config_keys::kTedsScanEnabled, "TEDSScanEnabled"},
        {config_keys::kPluginGodMode, "Plugin/GodMode"},
        {config_keys::kPluginTedsScanEnabled, "TEDSScanEnabled"},
        {config_keys::kFrameCounterChannels, "FrameCounterChannels"},
        {config_keys::kAmplifierOutputRange, "AmplifierOutputRange"},
        {config_keys::kIdCameraChannelIndex, "ID:CAMERA/ChannelIndex"},
        {config_keys::kIdCameraSubChannelId, "ID:CAMERA/SubChannelId"},
        {config_keys::kCameraExposure, "CAMERA/Exposure"},
        {config_keys::kCameraExposureAuto, "CAMERA/ExposureAuto"},
        {config_keys::kCameraFrameSetting, "CAMERA/FrameSetting"},
        {config_keys::kCameraGain, "CAMERA/Gain"},
        {config_keys::kCameraGainAuto, "CAMERA/GainAuto"},
        {config_keys::kCameraGainAutoAdjustTol, "CAMERA/GainAutoAdjustTol"},
        {config_keys::kCameraGainAutoRate, "CAMERA/GainAutoRate"},
        {config_keys::kCameraGamma, "CAMERA/Gamma"},
        {config_keys::kCameraHue, "CAMERA/Hue"},
        {config_keys::kCameraSaturation, "CAMERA/Saturation"},
        {config_keys::kCameraTriggerMode, "CAMERA/TriggerMode"},
        {config_keys::kCameraType, "CAMERA/Type"},
        {config_keys::kCameraWhitebalanceAuto, "CAMERA/WhitebalanceAuto"},
        {config_keys::kCameraWhitebalanceRed, "CAMERA/WhitebalanceRed"},
        {config_keys::kCameraWhitebalanceBlue, "CAMERA/WhitebalanceBlue"},
        {config_keys::kFrameWidth, "FrameWidth"},
        {config_keys::kFrameHeight, "FrameHeight"},
        {config_keys::kFrameOffsetX, "FrameOffsetX"},
        {config_keys::kFrameOffsetY, "FrameOffsetY"},
        {config_keys::kPixelAspectRatio, "PixelAspectRatio"},
        {config_keys::kFrameFormat, "FrameFormat"},
        {config_keys::kActionCameraAutoExposure, "ACTION:Camera/AutoExposure"},
        {config_keys::kActionCameraAutoGain, "ACTION:Camera/AutoGain"},
        {config_keys::kActionCameraAutoWhitebalance, "ACTION:Camera/AutoWhitebalance"},
        {config_keys::kGpsReceiverDynamic, "GPS/ReceiverDynamic"},
        {config_keys::kGpsPositionSmoothing, "GPS/PositionSmoothing"},
        {config_keys::kGpsSbas, "GPS/SBAS"},
        {config_keys::kGpsVelocityType, "GPS/VelocityType"},
        {config_keys::kCanTimestampSource, "CAN/TimestampSource"},
        {config_keys::kMatrixDescription, "MatrixDescription"},
        {config_keys::kMatrixCursorInfo, "MatrixCursorInfo"},
    };
    return s_rows;
}

TEST(ConfigKeys, HaveTheAgreedTexts) {
    for (const Row& row : rows()) EXPECT_STREQ(row.constant, row.text);
}

TEST(ConfigKeys, StandInTheTableInTheAgreedOrder) {
    ASSERT_EQ(config_keys::kAllKeys.size(), rows().size());
    for (std::size_t i = 0; i < rows().size(); ++i)
        EXPECT_STREQ(config_keys::kAllKeys[i], rows()[i].text) << i;
}

TEST(ConfigKeys, AreHundredAndThirtyFourWithOneTextTwice) {
    EXPECT_EQ(config_keys::kAllKeys.size(), 134u);
    const std::set<std::string> different(config_keys::kAllKeys.begin(), config_keys::kAllKeys.end());
    EXPECT_EQ(different.size(), 133u);
    EXPECT_STREQ(config_keys::kTedsScanEnabled, config_keys::kPluginTedsScanEnabled);
}

}  // namespace
