/// The frames of one open camera from exposure to callback, on a thread of their own.
///
/// Frames are pipelined: one may be exposed while an earlier one is read out or sent. Everything happens at
/// the true time at which it is due, also when the thread comes late because a callback kept it: a frame
/// then takes only a buffer that was queued by its own time.
#pragma once

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "camera.h"
#include "clock.h"
#include "frame_packets.h"
#include "frame_queue.h"
#include "library_thread.h"
#include "sensor.h"
#include "surroundings.h"
#include "test_picture.h"

namespace simulator {

/// A frame that came to its end, with all that the client's record is to say.
struct FrameReport {
    QueuedFrame frame;
    std::int32_t status = 0;
    std::uint32_t imageSize = 0;
    std::uint32_t ancillarySize = 0;
    PictureShape shape;
    std::uint64_t id = 0;
    std::uint64_t ticks = 0;
};

/// Hands frames to the client. [frame]
class FrameOutlet {
  public:
    virtual void deliver(void* owner, const FrameReport& report) = 0;
    /// [any thread] The library takes back the memory that it lent to a client's record.
    virtual void takeBack(void* record) = 0;

  protected:
    ~FrameOutlet() = default;
};

/// Learns what the camera does. The camera's mutex is held during each call.
class AcquisitionListener {
  public:
    /// For events that the client wants; `at` may lie ahead.
    virtual void onEvent(CameraEvent event, std::uint64_t frameId, Nanoseconds at) = 0;
    /// Automatic functions did something; bits of AutomaticChange.
    virtual void onAutomaticChange(unsigned changes) = 0;
    /// May frames of the acquisition that started last reach the client?
    virtual bool isStartAnnounced() const = 0;

  protected:
    ~AcquisitionListener() = default;
};

/// All operations but start and join are called with the camera's mutex held.
class CaptureEngine {
  public:
    using Lock = std::unique_lock<std::mutex>;

    CaptureEngine(const Surroundings& surroundings, Camera& camera, AcquisitionListener& listener);
    ~CaptureEngine();

    /// Starts the thread; `owner` is what callbacks get. Throws when the system refuses a thread.
    void start(void* owner);
    /// Nothing is exposed or delivered any more, queued frames stay; the thread lives on.
    void halt();
    /// Tells the thread to end.
    void quit();
    /// Waits for the thread; without the camera's mutex and not on that thread.
    void join();
    bool isOwnThread() const;

    /// InvalidAccess when it runs already.
    Result startCapture();
    /// Empties the queue and waits for a running callback, unless it is called from it.
    void endCapture(Lock& lock);

    void startAcquisition();
    void stopAcquisition();
    void abortAcquisition();
    void softwareTrigger();
    void hold(bool hold);
    /// The network is gone from now to then: what is on it is lost.
    void cut(Nanoseconds until);
    /// To be called before settings change: exposes and sends what is due with those of now, should the
    /// thread be late.
    void catchUp() { catchUp(m_clock.now()); }
    /// The same before the network changes.
    void catchUpWithNetwork();
    /// To be called after settings changed.
    void settle();

    FrameQueue& queue() { return m_queue; }
    /// Empties the queue; a frame that is being filled stays.
    void flush();
    /// Also refuses, with InvalidCall, a frame that is being filled, and with BadHandle one that was revoked
    /// during its callback or has no memory any more.
    Result enqueue(const QueuedFrame& frame);
    std::size_t queuedCount() const;
    /// For a record that was revoked (null: for all): gives up its transfer and waits until its memory is
    /// not touched any more, unless it is called from the callback.
    void withdraw(Lock& lock, const void* record);
    /// Waits until no callback runs, unless it is called from it.
    void waitUntilQuiet(Lock& lock);

    /// Waits until the frame was filled and its callback has returned. BadHandle for a frame that is neither
    /// announced nor queued, and when halted; InvalidCall from the callback; Timeout at `deadline`, and when
    /// the frame left the queue unfilled.
    Result waitForFrame(Lock& lock, const void* record, Nanoseconds deadline);
    /// Waits for that many callbacks since the start of capture; false at `deadline` or when halted.
    bool waitForFrames(Lock& lock, std::uint64_t count, Nanoseconds deadline);
    /// Waits until no stop is under way; false at `deadline`.
    bool waitUntilStopped(Lock& lock, Nanoseconds deadline);
    bool isHalted() const { return m_halted; }
    /// Lets the thread look again at what comes from outside.
    void wake() { m_changed.notify(); }

  private:
    struct Exposure {
        std::uint64_t id = 0;
        std::uint64_t capture = 0;  // the capture that it is for; of no use to a later one
        Nanoseconds start = 0;
        Nanoseconds readyAt = 0;   // in the camera's memory
        Nanoseconds transfer = 0;  // by the camera's own rate
        std::uint64_t ticks = 0;
        PictureShape shape;
        std::uint64_t trailer = 0;  // bytes behind the picture
        ChunkData chunk;
        FrameFate fate;
        // Known from the beginning of its transfer on.
        Nanoseconds transferAt = 0;
        Nanoseconds sentAt = 0;     // the transfer ends
        Nanoseconds arrivedAt = 0;  // with all that was requested
        Nanoseconds dueAt = 0;      // at the client
        FramePackets packets;
        PacketTally tally;
    };
    enum class Stage { Drawing, Ready, Calling };
    enum class Withdrawal { None, Drop, PutBack };
    struct Transfer {
        Exposure exposure;
        QueuedFrame frame;
        Stage stage = Stage::Drawing;
        Withdrawal withdrawal = Withdrawal::None;
    };
    enum class Step { Edge, Trigger, Deliver, Transfer, Book, Expose };
    struct Next {
        Nanoseconds at;
        Step step;
    };
    /// More than the memory of any camera holds.
    static constexpr std::size_t kInFlight = 256;
    static constexpr std::uint64_t kNobody = UINT64_MAX;

    void run();
    void enterOwnThread();
    /// What the camera does next, up to the beginning of a transfer; no step of it gives up the lock.
    std::optional<Next> nextOfCamera() const;
    void stepCamera(const Next& next);
    void catchUp(Nanoseconds until);
    std::optional<Next> next() const;
    void step(Lock& lock, const Next& next);
    void begin(Nanoseconds now);
    /// Edges of the line that came while nobody cared are over.
    void watchLine();
    void takeEdge(Nanoseconds at);
    bool isLineHigh();
    void report(CameraEvent event, std::uint64_t id, Nanoseconds at);
    std::uint64_t clientId(std::uint64_t id) const;
    std::size_t memoryFrames() const;
    /// Of frames whose transfer has not begun.
    bool isMemoryFull() const;
    void dropInFlight();
    Exposure& inFlight(std::size_t index);
    const Exposure& inFlight(std::size_t index) const;
    bool isUnderWay(const void* record) const;
    /// Tells those who wait in a call.
    void progress();
    void finishIfDone();
    void expose(Nanoseconds start);
    /// When the next transfer begins, if one can.
    std::optional<Nanoseconds> nextBooking() const;
    /// Settles when and how that frame arrives.
    void book(Nanoseconds begin);
    void send(Exposure& exposure);
    static void weigh(Exposure& exposure);
    /// Of a frame that is booked: into the client's memory.
    void beginTransfer(Lock& lock);
    void draw(const Transfer& transfer);
    static void damage(const Exposure& exposure, std::uint8_t* image);
    void deliver(Lock& lock);
    void giveUpTransfer(Withdrawal withdrawal);
    bool isCalling() const { return m_transfer && m_transfer->stage == Stage::Calling; }
    FrameReport report(const Transfer& transfer) const;

    /// A call that waits for a frame to be filled.
    struct FrameWaiter {
        const void* record;
        bool filled;
    };
    class Watch;

    const Surroundings m_surroundings;
    SimulatorClock& m_clock;
    Camera& m_camera;
    LineInput& m_line;
    AcquisitionListener& m_listener;
    void* m_owner = nullptr;
    Condition m_changed;   // the thread has to look again
    Condition m_progress;  // a call may have waited long enough

    FrameQueue m_queue;
    ExposureAgenda m_agenda;
    bool m_capturing = false;
    bool m_watchingLine = false;
    SensorSettings m_settled;                    // settings that the agenda knows
    int m_watches = 0;                           // calls that wait
    std::uint64_t m_awaitedCallbacks = kNobody;  // the lowest number that a call waits for
    std::vector<FrameWaiter*> m_frameWaiters;
    std::uint64_t m_exposures = 0;
    std::uint64_t m_captures = 0;
    bool m_restart = false;         // when the stop is through
    bool m_triggerRestart = false;  // a software trigger waits for it
    bool m_halted = false;
    bool m_quit = false;
    std::uint64_t m_nextId = 1;
    std::uint64_t m_lastSent = 0;  // id of the last frame that came to the end of its way
    Nanoseconds m_linkFreeAt = 0;  // for this camera's next frame
    Nanoseconds m_arrivedAt = 0;   // of the frame booked last, as the next
    Nanoseconds m_dueAt = 0;
    Nanoseconds m_goneSince = 0;  // the network of late
    Nanoseconds m_goneUntil = 0;
    Nanoseconds m_stoppedAt = 0;
    std::uint64_t m_callbacks = 0;
    std::uint64_t m_transfers = 0;

    std::array<Exposure, kInFlight> m_inFlight;
    std::size_t m_firstInFlight = 0;
    std::size_t m_inFlightCount = 0;
    std::size_t m_bookedCount = 0;  // of these, the first ones
    std::optional<Transfer> m_transfer;

    // Of the frame thread alone.
    TestPicture m_picture;
    std::vector<std::uint8_t> m_scratch;
    LibraryThread m_thread;
};

}  // namespace simulator
