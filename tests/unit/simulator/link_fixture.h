/// Cameras on a link that a test describes, in virtual time.
#pragma once

#include <cmath>

#include "virtual_fixture.h"

namespace test_support {

inline constexpr const char* kInterface = "SimulatedNetwork0";

/// What the library's counters of a stream say.
struct StreamCounts {
    StreamCounts() = default;
    explicit StreamCounts(VmbHandle_t camera)
        : delivered(intOf(camera, "StatFrameDelivered")),
          dropped(intOf(camera, "StatFrameDropped")),
          rescued(intOf(camera, "StatFrameRescued")),
          underrun(intOf(camera, "StatFrameUnderrun")),
          received(intOf(camera, "StatPacketReceived")),
          missed(intOf(camera, "StatPacketMissed")),
          requested(intOf(camera, "StatPacketRequested")),
          resent(intOf(camera, "StatPacketResent")),
          errors(intOf(camera, "StatPacketErrors")) {}
    StreamCounts& operator+=(const StreamCounts& more) {
        for (const auto field : {&StreamCounts::delivered, &StreamCounts::dropped, &StreamCounts::rescued,
                                 &StreamCounts::underrun, &StreamCounts::received, &StreamCounts::missed,
                                 &StreamCounts::requested, &StreamCounts::resent, &StreamCounts::errors}) {
            this->*field += more.*field;
        }
        return *this;
    }
    VmbInt64_t delivered = 0;
    VmbInt64_t dropped = 0;
    VmbInt64_t rescued = 0;
    VmbInt64_t underrun = 0;
    VmbInt64_t received = 0;
    VmbInt64_t missed = 0;
    VmbInt64_t requested = 0;
    VmbInt64_t resent = 0;
    VmbInt64_t errors = 0;
};

class LinkTest : public VirtualTimeTest {
  protected:
    static void setLink(const VmbSimLink& link) {
        ASSERT_EQ(VmbSimSetLink(kInterface, &link), VmbErrorSuccess);
    }
    /// Pictures of 64 x 64 bytes in packets of 64 bytes of them: 64 packets, each a row of the picture.
    static VmbHandle_t openInRows(const char* id = kColourCamera) {
        const VmbHandle_t camera = openFast(id);
        setInt(camera, "Height", 64);
        EXPECT_EQ(VmbSimForceFeature(id, "GevSCPSPacketSize", "100"), VmbErrorSuccess);
        return camera;
    }
    static void acquire(Stream& stream, std::uint64_t milliseconds) {
        stream.startCapture();
        run(stream.camera, "AcquisitionStart");
        advance(milliseconds * kMillisecond);
        run(stream.camera, "AcquisitionStop");
        advance(kSecond);
    }
    /// `sigmas` standard deviations of a count of `trials` with this chance. Five are left once in 1.7
    /// million runs.
    static double spread(double trials, double chance, double sigmas = 5) {
        return sigmas * std::sqrt(trials * chance * (1 - chance));
    }
};

}  // namespace test_support
