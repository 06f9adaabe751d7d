#include "zelt_gige_camera_channel_messages.h"

#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "log_capture.h"

namespace {

using exception_manager::Exception;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zelt_gige_camera::ChannelMessages;

Exception message(const std::string& text) {
    return {0, text, "ZELT_GIGE_CAMERA"};
}

TEST(ChannelMessagesTest, HasNoMessageAtFirst) {
    const ChannelMessages messages;
    Exception last(7, "untouched", "");
    EXPECT_FALSE(messages.getLast(last));
    EXPECT_EQ(last.getMessage(), "untouched");
}

TEST(ChannelMessagesTest, KeepsTheLatestMessage) {
    ChannelMessages messages;
    messages.post(message("first"));
    messages.post(message("second"));
    Exception last;
    EXPECT_TRUE(messages.getLast(last));
    EXPECT_EQ(last.getMessage(), "second");
}

TEST(ChannelMessagesTest, TellsTheListenerOfEachMessageAfterItWasStored) {
    ChannelMessages messages;
    std::vector<std::string> told;
    messages.setListener([&](const Exception& exception) {
        Exception last;
        messages.getLast(last);
        told.push_back(exception.getMessage() + "/" + last.getMessage());
    });
    messages.post(message("one"));
    messages.post(message("two"));
    EXPECT_THAT(told, ElementsAre("one/one", "two/two"));
}

TEST(ChannelMessagesTest, ForgetsAListenerThatWasReplaced) {
    ChannelMessages messages;
    int first = 0;
    int second = 0;
    messages.setListener([&](const Exception&) { ++first; });
    messages.setListener([&](const Exception&) { ++second; });
    messages.post(message("one"));
    messages.setListener({});
    messages.post(message("two"));
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

TEST(ChannelMessagesTest, LetsAListenerReplaceItself) {
    ChannelMessages messages;
    auto state = std::make_shared<std::string>("alive");
    std::string seen;
    messages.setListener([&messages, &seen, state](const Exception&) {
        messages.setListener({});
        seen = *state;
    });
    messages.post(message("one"));
    messages.post(message("two"));
    EXPECT_EQ(seen, "alive");
}

TEST(ChannelMessagesTest, EndsWhatAListenerThrowsWithALogLine) {
    const test_support::LogCapture log;
    ChannelMessages messages;
    messages.setListener([](const Exception&) { throw std::runtime_error("window closed"); });
    EXPECT_NO_THROW(messages.post(message("Camera %1 is no longer connected")));
    messages.setListener([](const Exception&) { throw 5; });
    EXPECT_NO_THROW(messages.post(message("again")));
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error),
                ElementsAre("A message listener failed on: Camera %1 is no longer connected",
                            "A message listener failed on: again"));
}

TEST(ChannelMessagesTest, CallsNoListenerAfterItWasReplacedWhileMessagesComeFromAnotherThread) {
    ChannelMessages messages;
    std::atomic<bool> done{false};
    std::thread posting([&] {
        while (!done) messages.post(message("one"));
    });
    for (int round = 0; round < 500; ++round) {
        auto alive = std::make_unique<int>(round);
        messages.setListener([value = alive.get()](const Exception&) { ++*value; });
        Exception last;
        messages.getLast(last);
        messages.setListener({});
        // The listener's memory goes here: a late call would touch it.
    }
    done = true;
    posting.join();
}

}  // namespace
