#include "zelt_gige_camera_channel_news.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace zelt_gige_camera;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr Verdict kTooFast{kLimitExceeded, "too fast"};
constexpr Verdict kTooLong{kLimitExceeded, "too long"};
constexpr Verdict kNoFrequency{kNoAuxFrequency, "too fast"};

std::vector<std::string> textsOf(const ChannelNews& news) {
    std::vector<std::string> texts;
    for (const ChannelMessage& message : news.messages()) texts.push_back(message.text);
    return texts;
}

TEST(News, AreNoneAtFirst) {
    const ChannelNews news;
    EXPECT_THAT(news.keys(), IsEmpty());
    EXPECT_THAT(news.messages(), IsEmpty());
    EXPECT_FALSE(news.hasFailure());
}

TEST(News, TellEachKeyOnceInTheOrderOfItsFirstChange) {
    ChannelNews news;
    for (const char* key : {"Valid", "CAMERA/Gain", "Valid", "valid", "CAMERA/Gain"}) news.changed(key);
    EXPECT_THAT(news.keys(), ElementsAre("Valid", "CAMERA/Gain", "valid"));
    EXPECT_THAT(news.messages(), IsEmpty());
}

TEST(News, OfAValidationAreItsMessageAsItStandsWithoutTheCamerasName) {
    ChannelNews news;
    news.add(kTooFast);
    ASSERT_EQ(news.messages().size(), 1u);
    EXPECT_EQ(news.messages()[0].text, "too fast");
    EXPECT_EQ(news.messages()[0].logLine, "");
    EXPECT_EQ(news.messages()[0].detail, "");
    EXPECT_FALSE(news.messages()[0].named);
    EXPECT_THAT(news.keys(), IsEmpty());
}

TEST(News, OfAValidationThatPassesAreNone) {
    ChannelNews news;
    news.add(Verdict{});
    EXPECT_THAT(news.messages(), IsEmpty());
}

TEST(News, OfTheSameVerdictAgainAreNone) {
    ChannelNews news;
    const std::string sameTextElsewhere = "too fast";
    news.add(kTooFast);
    news.add(kTooFast);
    news.add(Verdict{kLimitExceeded, sameTextElsewhere.c_str()});
    EXPECT_THAT(textsOf(news), ElementsAre("too fast"));
}

TEST(News, OfAnotherVerdictAreTold) {
    ChannelNews news;
    news.add(kTooFast);
    news.add(kTooLong);
    news.add(kNoFrequency);
    news.add(kTooFast);
    news.add(kNoFrequency);
    EXPECT_THAT(textsOf(news), ElementsAre("too fast", "too long", "too fast", "too fast", "too fast"));
}

TEST(News, OfAVerdictThatWasGoneInBetweenAreToldAgain) {
    ChannelNews news;
    news.add(kTooFast);
    news.add(Verdict{});
    news.add(kTooFast);
    EXPECT_THAT(textsOf(news), ElementsAre("too fast", "too fast"));
}

TEST(News, KeepFailuresAndVerdictsInTheirOrder) {
    ChannelNews news;
    news.add(kTooLong);
    news.add(ChannelMessage{"line", "failed '%1'", "detail"});
    news.add(kTooFast);
    EXPECT_THAT(textsOf(news), ElementsAre("too long", "failed '%1'", "too fast"));
}

TEST(News, TellAFailureFromAValidationThatDidNotPass) {
    ChannelNews news;
    news.changed("Valid");
    news.add(kTooFast);
    EXPECT_FALSE(news.hasFailure());
    news.add(ChannelMessage{"line", "failed '%1'"});
    EXPECT_TRUE(news.hasFailure());
    news.add(kTooLong);
    EXPECT_TRUE(news.hasFailure());
}

TEST(News, ShowTheSameFailureAsOftenAsItHappens) {
    ChannelNews news;
    for (int time = 0; time < 2; ++time) news.add(ChannelMessage{"line", "failed '%1'"});
    EXPECT_EQ(news.messages().size(), 2u);
}

}  // namespace
