#include "zeltpu_event_counter_channel.h"

#include <array>
#include <cstddef>
#include <limits>
#include <memory>

#include "channel_config_types.h"
#include "config_items.h"
#include "config_keys.h"

namespace zelt::plugin_util {
namespace {

using channel_config::DAQChannelType;
using channel_config::DAQSampleResolution;
using channel_config::SampleOccurrenceType;
using config_items::RangeConfigItem;

// The range ends where a signed 32-bit number does, on purpose, although the count goes further.
constexpr double kRangeEnd = std::numeric_limits<std::int32_t>::max();
constexpr const char* kNotApplicable = "N/A";

}  // namespace

EventCounterChannel::EventCounterChannel(const std::string& name, const std::string& shortId,
                                         const std::string& unit) {
    namespace keys = config_keys;
    addOption(std::make_shared<ChannelUsedOption>(keys::kUsed, m_used, /*locked=*/false));
    addOption(constantOption(keys::kValid, true));
    addOption(readOnlyTextOption(keys::kDefaultName, name));
    addOption(readOnlyTextOption(keys::kShortId, shortId));
    addOption(readOnlyTextOption(keys::kUnit, unit));
    addOption(std::make_shared<ConstantRangeOption>(keys::kRange,
                                                    RangeConfigItem<double>(0, kRangeEnd, unit, unit)));
    addOption(constantOption(keys::kMode, std::string("Events")));
    addOption(constantOption(keys::kThreshold, std::string(kNotApplicable)));
    addOption(constantOption(keys::kReTrigger, std::string(kNotApplicable)));
    addOption(constantOption(keys::kCounterFilter, std::string(kNotApplicable)));
    addOption(constantOption(keys::kChannelType, DAQChannelType::Counter));
    addOption(constantOption(keys::kSampleUpdateType, SampleOccurrenceType::Asynchronous));
    addOption(constantOption(keys::kSampleResolution, DAQSampleResolution::Count));
}

void EventCounterChannel::setCount(std::int64_t time, std::uint64_t count) {
    m_count = count;
    if (m_sink == nullptr || !m_used) return;
    std::array<unsigned char, sizeof(count)> sample;
    for (std::size_t i = 0; i < sample.size(); ++i) sample[i] = static_cast<unsigned char>(count >> (8 * i));
    m_sink->addSample(time, sample.data(), sample.size());
}

void EventCounterChannel::increment(std::int64_t time) {
    setCount(time, m_count + 1);
}

}  // namespace zelt::plugin_util
