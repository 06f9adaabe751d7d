#include "camera_trouble.h"

#include <gmock/gmock.h>

#include "fake_plugin.h"

using host::ChannelMessage;
using host::notOpenSentence;

namespace {

constexpr const char* kHeld =
    "Cannot open camera 'X': Could not open camera: Operation is invalid with the current access mode";

class CameraTrouble : public testing::Test {
  protected:
    CameraTrouble() {
        for (const std::uint32_t id : {0u, 1u, 2u}) m_creator.m_plugin->addChannel(id);
        m_session = std::make_unique<host::Session>(m_creator.source(), host::SessionOptions{},
                                                    std::make_unique<host::VendorProbe>(nullptr));
    }
    void close(std::uint32_t id) {
        m_creator.m_plugin->m_channels.at(id)->m_items[config_keys::kFrameWidth] =
            config_items::ScalarConfigItem(0, "pixel");
    }

    host_test::FakeCreator m_creator;
    std::unique_ptr<host::Session> m_session;
};

TEST_F(CameraTrouble, IsNoneWhenAllAreOpen) {
    EXPECT_EQ(notOpenSentence(*m_session, {0, 1, 2}, {{1, kHeld}}), "");
}

TEST_F(CameraTrouble, NamesACameraThatIsHeldByAnotherProgram) {
    close(1);
    EXPECT_EQ(notOpenSentence(*m_session, {0, 1}, {{1, "earlier"}, {1, kHeld}, {0, "other"}}),
              "Camera 1 Camera is held by another program: close that program, or record without the camera: "
              "--channel 0 2.");
    EXPECT_EQ(notOpenSentence(*m_session, {0, 2}, {{1, kHeld}}), "") << "it is not concerned";
}

TEST_F(CameraTrouble, NamesTheReasonOfOneThatIsNotOpenForAnother) {
    close(0);
    close(1);
    close(2);
    EXPECT_EQ(notOpenSentence(*m_session, {2}, {{2, "Cannot open camera 'X': Timeout during wait."}}),
              "Camera 2 Camera is not open (Cannot open camera 'X': Timeout during wait): check power, cable "
              "and network.");
    EXPECT_EQ(notOpenSentence(*m_session, {1, 2}, {{1, kHeld}}),
              "Camera 1 Camera is held by another program; Camera 2 Camera is not open: close that program, "
              "check power, cable and network.");
}

}  // namespace
