#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "camera_channel_calls.h"

namespace {

using property_tests::CameraChannelCalls;
using property_tests::Command;

/// A call of the vendor's library fails in one command of eight.
rc::Gen<unsigned> anyFault() {
    return rc::gen::weightedOneOf<unsigned>(
        {{7, rc::gen::just(0u)}, {1, rc::gen::resize(100, rc::gen::inRange(0u, 33u))}});
}

/// Any setting, and more often those that decide on the rate: trigger mode, format and frame rate.
rc::Gen<unsigned> anySetting() {
    return rc::gen::weightedOneOf<unsigned>(
        {{2, rc::gen::inRange(0u, 19u)}, {1, rc::gen::inRange(16u, 19u)}});
}

/// Any value, and as often one of the first, which a camera takes.
rc::Gen<unsigned> anyValue() {
    return rc::gen::weightedOneOf<unsigned>({{1, rc::gen::inRange(0u, 24u)}, {1, rc::gen::inRange(0u, 3u)}});
}

rc::Gen<Command> anyCommand() {
    const auto what = rc::gen::weightedElement<int>({{12, Command::Set},
                                                     {1, Command::Action},
                                                     {1, Command::Used},
                                                     {3, Command::Aux},
                                                     {4, Command::Prepare},
                                                     {2, Command::Start},
                                                     {2, Command::Advance},
                                                     {1, Command::Process},
                                                     {2, Command::Stop},
                                                     {1, Command::Enumerate},
                                                     {1, Command::Cable},
                                                     {1, Command::Check}});
    return rc::gen::resize(
        100, rc::gen::build<Command>(
                 rc::gen::set(&Command::what, what), rc::gen::set(&Command::camera, rc::gen::inRange(0u, 2u)),
                 rc::gen::set(&Command::which, anySetting()), rc::gen::set(&Command::value, anyValue()),
                 rc::gen::set(&Command::fault, anyFault())));
}

RC_GTEST_PROP(CameraChannelProperty, AfterAnyCallsTheChannelsShowWhatTheCamerasHold, ()) {
    const auto faultAtOpen = *anyFault();
    const auto commands = *rc::gen::container<std::vector<Command>>(anyCommand());
    CameraChannelCalls sequence(faultAtOpen);
    sequence.run(commands);
    RC_ASSERT(sequence.difference() == "");
}

}  // namespace
