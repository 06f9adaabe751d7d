/// Well-known keys of channel and plug-in settings, shared by the host and all its plug-ins.
///
/// Keys compare byte-wise, case matters. "ID:" begins a read-only identity, the part before "/" naming the
/// device family; "ACTION:" begins a key whose setting starts an action instead of storing a value; any other
/// "/" separates a group from the key within it.
#pragma once

#include <array>

namespace config_keys {

// Every key once, in the order in which the host defines them; constants and table are made from it.
#define ZELT_CONFIG_KEYS(X)                                                   \
    /* channel description and common channel settings */                     \
    X(kBlockSize, "BlockSize")                                                \
    X(kMode, "Mode")                                                          \
    X(kUsed, "Used")                                                          \
    X(kValid, "Valid")                                                        \
    X(kChannelType, "ChannelType")                                            \
    X(kShortId, "ShortId")                                                    \
    X(kAdditionalChannelInfo2, "AdditionalChannelInfo2")                      \
    X(kAdditionalChannelInfo3, "AdditionalChannelInfo3")                      \
    X(kDefaultName, "DefaultName")                                            \
    X(kDefaultGroup, "DefaultGroup")                                          \
    X(kDefaultStored, "DefaultStored")                                        \
    X(kSampleUpdateType, "SampleUpdateType")                                  \
    X(kSampleRate, "SampleRate")                                              \
    X(kRange, "Range")                                                        \
    X(kThermocoupleType, "ThermocoupleType")                                  \
    X(kSampleFormat, "SampleFormat")                                          \
    X(kSampleResolution, "SampleResolution")                                  \
    X(kSampleDimension, "SampleDimension")                                    \
    X(kChannelFlags, "ChannelFlags")                                          \
    X(kScaling, "Scaling")                                                    \
    X(kUnit, "Unit")                                                          \
    /* analog input and sensor settings */                                    \
    X(kInputType, "InputType")                                                \
    X(kInputOffset, "InputOffset")                                            \
    X(kBridgeRes, "BridgeRes")                                                \
    X(kShuntResistance, "ShuntResistance")                                    \
    X(kShuntTarget, "ShuntTarget")                                            \
    X(kShuntType, "ShuntType")                                                \
    X(kResistor, "Resistor")                                                  \
    X(kMaxCurrent, "MaxCurrent")                                              \
    X(kMaxPower, "MaxPower")                                                  \
    X(kSensorType, "SensorType")                                              \
    X(kRtdSensorRes, "RTDSensorRes")                                          \
    X(kTemperatureSensors, "TemperatureSensors")                              \
    X(kChannelLockReason, "ChannelLockReason")                                \
    /* bus settings */                                                        \
    X(kBaudRate, "BaudRate")                                                  \
    X(kBaudRateHigh, "BaudRateHigh")                                          \
    X(kListenOnly, "ListenOnly")                                              \
    X(kTermination, "Termination")                                            \
    X(kLineResistance, "LineResistance")                                      \
    /* digital output */                                                      \
    X(kDoValue, "DO_Value")                                                   \
    X(kDoGroup, "DO_Group")                                                   \
    /* filters */                                                             \
    X(kLpFilterFreq, "LP_Filter_Freq")                                        \
    X(kLpFilterState, "LP_Filter_State")                                      \
    X(kLpFilterType, "LP_Filter_Type")                                        \
    X(kLpFilterOrder, "LP_Filter_Order")                                      \
    X(kHpFilterFreq, "HP_Filter_Freq")                                        \
    X(kHpFilterState, "HP_Filter_State")                                      \
    X(kHpFilterType, "HP_Filter_Type")                                        \
    X(kHpFilterOrder, "HP_Filter_Order")                                      \
    X(kHpFilterIsAnalogCoupling, "HP_Filter_Is_Analog_Coupling")              \
    X(kInputImpedance, "InputImpedance")                                      \
    X(kDelayCompensation, "DelayCompensation")                                \
    X(kZeroPaddingMode, "ZeroPaddingMode")                                    \
    /* counter inputs */                                                      \
    X(kCounterFilter, "Counter_Filter")                                       \
    X(kEncoderMode, "EncoderMode")                                            \
    X(kCounterHpFilter, "Counter_HP_Filter")                                  \
    X(kCounterFilterA, "Counter_Filter_A")                                    \
    X(kCounterFilterAState, "Counter_Filter_A_STATE")                         \
    X(kCounterFilterB, "Counter_Filter_B")                                    \
    X(kCounterFilterBState, "Counter_Filter_B_STATE")                         \
    X(kCounterFilterZ, "Counter_Filter_Z")                                    \
    X(kCounterFilterZState, "Counter_Filter_Z_STATE")                         \
    X(kCounterHpFilterA, "Counter_HP_Filter_A")                               \
    X(kCounterHpFilterAState, "Counter_HP_Filter_A_STATE")                    \
    X(kInvertedA, "Inverted_A")                                               \
    X(kInvertedB, "Inverted_B")                                               \
    X(kReset, "Reset")                                                        \
    X(kReTrigger, "ReTrigger")                                                \
    X(kSourceA, "Source_A")                                                   \
    X(kThreshold, "Threshold")                                                \
    /* converter and excitation */                                            \
    X(kAdcMode, "AdcMode")                                                    \
    X(kAdcMaxSampleRate, "AdcMaxSampleRate")                                  \
    X(kAdcPhaseCompensation, "AdcPhaseCompensation")                          \
    X(kModuleSerialNumber, "ModuleSerialNumber")                              \
    X(kExcitation, "Excitation")                                              \
    X(kExcitationMode, "ExcitationMode")                                      \
    X(kExcitationSync, "ExcitationSync")                                      \
    X(kCarrierFrequency, "CarrierFrequency")                                  \
    X(kPhaseAdjust, "PhaseAdjust")                                            \
    X(kSensorFaultDetection, "SensorFaultDetection")                          \
    X(kOutputFilter, "OutputFilter")                                          \
    X(kTriggerLevel, "TriggerLevel")                                          \
    /* actions */                                                             \
    X(kActionAmplifierZero, "ACTION:AmplifierZero")                           \
    X(kActionSensorBalance, "ACTION:SensorBalance")                           \
    X(kActionInputShort, "ACTION:InputShort")                                 \
    X(kActionShuntOn, "ACTION:ShuntOn")                                       \
    X(kActionShuntOff, "ACTION:ShuntOff")                                     \
    X(kActionLineResistanceCompensation, "ACTION:LineResistanceCompensation") \
    X(kActionReadSensorOffsetAdjustment, "ACTION:ReadSensorOffsetAdjustment") \
    X(kActionFindTriggerLevel, "ACTION:FindTriggerLevel")                     \
    X(kActionResetModule, "ACTION:ResetModule")                               \
    X(kActionCounterReset, "ACTION:CounterReset")                             \
    /* sensor identification */                                               \
    X(kTedsType, "TEDS/Type")                                                 \
    X(kTedsSerial, "TEDS/Serial")                                             \
    X(kTedsCalDate, "TEDS/CalDate")                                           \
    X(kTedsData, "TEDSData")                                                  \
    X(kTedsScanEnabled, "TEDSScanEnabled")                                    \
    /* plug-in level and miscellaneous */                                     \
    X(kPluginGodMode, "Plugin/GodMode")                                       \
    X(kPluginTedsScanEnabled, "TEDSScanEnabled")                              \
    X(kFrameCounterChannels, "FrameCounterChannels")                          \
    X(kAmplifierOutputRange, "AmplifierOutputRange")                          \
    /* camera identity */                                                     \
    X(kIdCameraChannelIndex, "ID:CAMERA/ChannelIndex")                        \
    X(kIdCameraSubChannelId, "ID:CAMERA/SubChannelId")                        \
    /* camera settings */                                                     \
    X(kCameraExposure, "CAMERA/Exposure")                                     \
    X(kCameraExposureAuto, "CAMERA/ExposureAuto")                             \
    X(kCameraFrameSetting, "CAMERA/FrameSetting")                             \
    X(kCameraGain, "CAMERA/Gain")                                             \
    X(kCameraGainAuto, "CAMERA/GainAuto")                                     \
    X(kCameraGainAutoAdjustTol, "CAMERA/GainAutoAdjustTol")                   \
    X(kCameraGainAutoRate, "CAMERA/GainAutoRate")                             \
    X(kCameraGamma, "CAMERA/Gamma")                                           \
    X(kCameraHue, "CAMERA/Hue")                                               \
    X(kCameraSaturation, "CAMERA/Saturation")                                 \
    X(kCameraTriggerMode, "CAMERA/TriggerMode")                               \
    X(kCameraType, "CAMERA/Type")                                             \
    X(kCameraWhitebalanceAuto, "CAMERA/WhitebalanceAuto")                     \
    X(kCameraWhitebalanceRed, "CAMERA/WhitebalanceRed")                       \
    X(kCameraWhitebalanceBlue, "CAMERA/WhitebalanceBlue")                     \
    /* frame geometry and format */                                           \
    X(kFrameWidth, "FrameWidth")                                              \
    X(kFrameHeight, "FrameHeight")                                            \
    X(kFrameOffsetX, "FrameOffsetX")                                          \
    X(kFrameOffsetY, "FrameOffsetY")                                          \
    X(kPixelAspectRatio, "PixelAspectRatio")                                  \
    X(kFrameFormat, "FrameFormat")                                            \
    /* camera actions */                                                      \
    X(kActionCameraAutoExposure, "ACTION:Camera/AutoExposure")                \
    X(kActionCameraAutoGain, "ACTION:Camera/AutoGain")                        \
    X(kActionCameraAutoWhitebalance, "ACTION:Camera/AutoWhitebalance")        \
    /* positioning receivers */                                               \
    X(kGpsReceiverDynamic, "GPS/ReceiverDynamic")                             \
    X(kGpsPositionSmoothing, "GPS/PositionSmoothing")                         \
    X(kGpsSbas, "GPS/SBAS")                                                   \
    X(kGpsVelocityType, "GPS/VelocityType")                                   \
    /* bus time stamps */                                                     \
    X(kCanTimestampSource, "CAN/TimestampSource")                             \
    /* matrix channels */                                                     \
    X(kMatrixDescription, "MatrixDescription")                                \
    X(kMatrixCursorInfo, "MatrixCursorInfo")

#define ZELT_DEFINE_KEY(name, text) inline constexpr const char* const name = text;
ZELT_CONFIG_KEYS(ZELT_DEFINE_KEY)
#undef ZELT_DEFINE_KEY

/// All keys in order, for whoever lists or checks them; "TEDSScanEnabled" stands there twice, under its two
/// names.
inline constexpr auto kAllKeys = std::to_array<const char*>({
#define ZELT_LIST_KEY(name, text) name,
    ZELT_CONFIG_KEYS(ZELT_LIST_KEY)
#undef ZELT_LIST_KEY
});

#undef ZELT_CONFIG_KEYS

}  // namespace config_keys
