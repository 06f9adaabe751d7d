/// The least that can stand in for the camera vendor's library while the plug-in is measured: cameras in
/// memory whose frames the measuring program delivers itself. It reads no clock for a frame and leaves pixels
/// alone; what a real library must lock, its queue of buffers, it locks as well.
#pragma once

#include <chrono>
#include <cstdint>

#include "vimba_c.h"

namespace bench::vendor {

inline constexpr unsigned kMostCameras = 64;

/// Bytes between what different threads write, more than a processor fetches along with what it needs: in a
/// host such things lie at random.
inline constexpr std::size_t kApart = 512;

/// From now on that many cameras are listed; those that are open stay open.
void plug(unsigned cameras);
/// The id under which a camera is listed; cameras are counted from 0. Valid for good.
const char* idOf(unsigned camera);

/// A frame as the camera numbers and dates it.
struct Delivery {
    std::uint64_t frameId = 0;
    std::uint64_t ticks = 0;
};
/// Fills the buffer that was queued first and calls its callback on this thread. False, and nothing called,
/// when no buffer is queued: a real camera's frame would be lost.
bool deliver(unsigned camera, const Delivery& frame);
/// A buffer and whom to call when it is full.
struct Buffer {
    VmbFrame_t* frame = nullptr;
    VmbFrameCallback callback = nullptr;
};
/// Takes the buffer that was queued first and fills it, as a camera does while a callback still runs; without
/// a frame when no buffer is queued.
Buffer fill(unsigned camera, const Delivery& frame);
/// Calls the callback of a buffer that `fill` gave.
void complete(unsigned camera, const Buffer& buffer);

/// How long each register of that camera takes that is written; 0 at first. What was written is read from the
/// library's memory, as features are that do not change by themselves.
void setRegisterTime(unsigned camera, std::chrono::nanoseconds time);
/// The longest that the writing of a register of that camera took so far. [any thread]
std::chrono::nanoseconds longestRegister(unsigned camera);

/// Calls of the vendor's functions by this thread so far, those for buffers included.
std::uint64_t calls();

}  // namespace bench::vendor
