#include <cstdint>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "channel_config_calls.h"
#include "plugin_config_calls.h"
#include "zeltpu_event_counter_channel.h"

namespace {

using property_tests::ChannelConfigCalls;

rc::Gen<std::vector<std::uint8_t>> calls() {
    return rc::gen::scale(4.0,
                          rc::gen::container<std::vector<std::uint8_t>>(rc::gen::arbitrary<std::uint8_t>()));
}

RC_GTEST_PROP(ChannelConfigProperty, AnyCallsAreAnsweredAsTheModelAnswersThem, ()) {
    ChannelConfigCalls sequence;
    sequence.run(*calls());
    RC_CLASSIFY(sequence.callsMade() > 30);
    RC_ASSERT(sequence.difference() == "");
}

// A sequence that begins with options of every kind, so that most calls find one.
RC_GTEST_PROP(ChannelConfigProperty, AnyCallsOnManyOptionsAreAnsweredAsTheModelAnswersThem, ()) {
    std::vector<std::uint8_t> bytes;
    for (std::uint8_t i = 0; i < 8; ++i)
        bytes.insert(bytes.end(), {0, i, *rc::gen::arbitrary<std::uint8_t>()});
    const auto more = *calls();
    bytes.insert(bytes.end(), more.begin(), more.end());
    ChannelConfigCalls sequence;
    sequence.run(bytes);
    RC_ASSERT(sequence.difference() == "");
}

RC_GTEST_PROP(PluginConfigProperty, AnyCallsAreAnsweredAsTheModelAnswersThem, ()) {
    property_tests::PluginConfigCalls sequence;
    sequence.run(*calls());
    RC_ASSERT(sequence.difference() == "");
}

RC_GTEST_PROP(EventCounterProperty, EndsAtTheLastCountSetAndTheIncrementsSince, ()) {
    zelt::plugin_util::EventCounterChannel counter("n", "s", "u");
    std::uint64_t expected = 0;
    for (const auto& set : *rc::gen::arbitrary<std::vector<rc::Maybe<std::uint64_t>>>()) {
        if (set) {
            counter.setCount(0, *set);
            expected = *set;
        } else {
            counter.increment(0);
            ++expected;
        }
        RC_ASSERT(counter.getCount() == expected);
    }
}

}  // namespace
