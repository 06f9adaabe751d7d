#!/usr/bin/env python3
"""A camera client in Python, on the vendor's C library alone.

    client.py LIBRARY [FUNCTION]

LIBRARY is the path of libVimbaC.so or VimbaC.dll. The program finds, sets up, records and unplugs the two
cameras of the simulator and demands at every step what the vendor's interface promises. With FUNCTION the next
call of that vendor function fails on purpose: the program has to notice. Exit code: 0 when all holds, else 1.
"""

import ctypes
import os
import queue
import sys
from ctypes import byref, c_bool, c_int64, c_uint32, c_void_p, sizeof

import camera_library
from camera_library import (FULL_ACCESS, PATIENCE_S, SYSTEM, CameraInfo, Client, FeatureInfo, Frame, FrameCallback,
                            Oscillator, Stamp, VersionInfo, check)

INTERNAL_FAULT, NOT_STARTED, NOT_FOUND, BAD_HANDLE, INVALID_ACCESS, BAD_PARAMETER = -1, -2, -3, -4, -6, -7
STRUCT_SIZE, MORE_DATA, WRONG_TYPE, INVALID_VALUE, TIMEOUT, INCOMPLETE = -8, -9, -10, -11, -12, -19
MANY_TICKS = 2**40
FIRST, SECOND = b"DEV_000F31A10001", b"DEV_000F31A10002"


def structures_have_the_sizes_of_the_vendor(_):
    for kind, size in ((VersionInfo, 12), (CameraInfo, 48), (FeatureInfo, 96), (Frame, 104)):
        check(sizeof(kind) == size, f"{kind.__name__} has {size} bytes")


def library_starts_up(client):
    version = VersionInfo()
    client.call("VmbVersionQuery", byref(version), sizeof(version))
    check(version.major == 1, "the library is of version 1")
    client.refuses(STRUCT_SIZE, "a wrong size is refused", "VmbVersionQuery", byref(version), 11)
    count = c_uint32()
    client.refuses(NOT_STARTED, "nothing is listed before the start", "VmbCamerasList", None, 0, byref(count), 48)
    client.call("VmbStartup")


def cameras_are_listed(client):
    check(not client.list_cameras(), "no camera is listed before a round of discovery")
    client.run(b"GeVDiscoveryAllOnce", SYSTEM)
    cameras = client.list_cameras()
    check({camera.id for camera in cameras} == {FIRST, SECOND}, "discovery finds both cameras")
    info = CameraInfo()
    client.call("VmbCameraInfoQuery", FIRST, byref(info), sizeof(info))
    check(info.serial == b"50-0503300001" and info.access & FULL_ACCESS, "the first can be opened, by its serial")
    client.refuses(STRUCT_SIZE, "a wrong size is refused", "VmbCameraInfoQuery", FIRST, byref(info), 47)
    count = c_uint32()
    client.refuses(MORE_DATA, "a short array is refused", "VmbCamerasList", (CameraInfo * 1)(), 1, byref(count), 48)
    check(count.value == 2, "a short array learns the number of cameras")


def camera_opens(client):
    handle = c_void_p()
    client.refuses(NOT_FOUND, "an unknown camera does not open", "VmbCameraOpen", b"DEV_0", FULL_ACCESS, byref(handle))
    client.camera = client.open(FIRST)
    client.refuses(INVALID_ACCESS, "it opens only once", "VmbCameraOpen", FIRST, FULL_ACCESS, byref(handle))
    readable, writeable = c_bool(), c_bool()
    client.call("VmbFeatureAccessQuery", client.camera, b"DeviceModelName", byref(readable), byref(writeable))
    check(readable and not writeable, "the name of the model can only be read")


def integers_and_floats(client):
    client.set(b"Width", 640)
    check(client.get(b"Width") == 640, "the width is 640 pixels")
    check(client.range_of(b"Width")[1] == 656, "the sensor is 656 pixels wide")
    step = client.ask(c_int64, "VmbFeatureIntIncrementQuery", client.camera, b"Width")
    check(step == 8, "widths are multiples of 8")
    client.refuses(INVALID_VALUE, "a width between is refused", "VmbFeatureIntSet", client.camera, b"Width", 641)
    client.refuses(INVALID_VALUE, "a wider one is refused", "VmbFeatureIntSet", client.camera, b"Width", 664)
    client.set(b"ExposureTimeAbs", 2000.4)
    check(client.get(b"ExposureTimeAbs") == 2000, "exposure is rounded to microseconds")
    shortest = client.range_of(b"ExposureTimeAbs")[0]
    check(shortest == 30, "the shortest exposure is 30 us")
    client.refuses(INVALID_VALUE, "a shorter one is refused", "VmbFeatureFloatSet", client.camera,
                   b"ExposureTimeAbs", 29)


def enumerations_and_switches(client):
    formats = [b"Mono8", b"BayerRG8", b"YUV411Packed", b"YUV422Packed", b"RGB8Packed", b"BGR8Packed"]
    check(client.entries_of(b"PixelFormat") == formats, "formats are listed in the order of their numbers")
    client.set(b"PixelFormat", b"RGB8Packed")
    check(client.get(b"PixelFormat") == b"RGB8Packed", "the format is RGB8Packed")
    number = client.ask(c_int64, "VmbFeatureEnumAsInt", client.camera, b"PixelFormat", b"RGB8Packed")
    check(number == 0x02180014, "the number of RGB8Packed says three bytes a pixel")
    client.refuses(INVALID_VALUE, "an unknown entry is refused", "VmbFeatureEnumSet", client.camera,
                   b"PixelFormat", b"Sepia")
    client.set(b"StreamFrameRateConstrain", False)
    check(client.get(b"StreamFrameRateConstrain") is False, "a switch is off")
    client.set(b"StreamFrameRateConstrain", True)
    check(client.get(b"StreamFrameRateConstrain") is True, "a switch is on")


def texts_and_bytes(client):
    longest = client.ask(c_uint32, "VmbFeatureStringMaxlengthQuery", client.camera, b"DeviceUserID")
    check(longest == 16, "the user's name for the camera has room for 16 bytes")
    client.set(b"DeviceUserID", b"fifteen letters")
    check(client.get(b"DeviceUserID") == b"fifteen letters", "15 letters and a zero fit")
    client.refuses(INVALID_VALUE, "16 do not", "VmbFeatureStringSet", client.camera,
                   b"DeviceUserID", b"sixteen letters!")
    client.refuses(MORE_DATA, "a short buffer is refused", "VmbFeatureStringGet", client.camera, b"DeviceUserID",
                   ctypes.create_string_buffer(15), 15, None)
    client.set(b"SimulatorRawData", b"\0\1\xFF\0")
    length = client.ask(c_uint32, "VmbFeatureRawLengthQuery", client.camera, b"SimulatorRawData")
    check(length == 4 and client.get(b"SimulatorRawData") == b"\0\1\xFF\0", "raw bytes hold zeros too")


def commands(client):
    fast = Oscillator(tick_frequency=10**9, start_ticks=MANY_TICKS, error_ppb=12_000, drift_period_s=1)
    client.call("VmbSimSetOscillator", FIRST, byref(fast))
    check(client.get(b"GevTimestampTickFrequency") == 10**9, "the camera counts nanoseconds")
    client.run(b"GevTimestampControlLatch")
    first = client.get(b"GevTimestampValue")
    check(first >= MANY_TICKS, "the camera's clock needs more than 32 bits")
    client.run(b"GevTimestampControlLatch")
    check(client.get(b"GevTimestampValue") > first, "the camera's clock goes on between two latches")


def mistakes_are_told_apart(client):
    value = c_int64()

    def refuses(code, sentence, handle, name, out):
        client.refuses(code, sentence, "VmbFeatureIntGet", handle, name, out)
    refuses(NOT_FOUND, "an unknown feature", client.camera, b"Widht", byref(value))
    refuses(WRONG_TYPE, "a float is no integer", client.camera, b"Gain", byref(value))
    refuses(BAD_PARAMETER, "no place for the value", client.camera, b"Width", None)
    refuses(BAD_HANDLE, "no handle", None, b"Width", byref(value))
    client.refuses(INVALID_ACCESS, "a feature to be read", "VmbFeatureIntSet", client.camera, b"PayloadSize", 1)


def frames_arrive_by_callback(client):
    for name, value in ((b"Height", 480), (b"PixelFormat", b"Mono8"), (b"TriggerSelector", b"FrameStart"),
                        (b"TriggerMode", b"Off"), (b"AcquisitionFrameRateAbs", 50.0),
                        (b"AcquisitionMode", b"MultiFrame"), (b"AcquisitionFrameCount", 4)):
        client.set(name, value)
    check(client.get(b"PayloadSize") == 640 * 480, "a picture has one byte for each pixel")
    client.begin_capture(4, client.on_frame)
    for first_id in (1, 5):  # each callback queues its frame again, so that a second start has buffers
        client.run(b"AcquisitionStart")
        arrivals = [client.next_of(client.arrivals) for _ in range(4)]
        check([frame.id for frame, _ in arrivals] == list(range(first_id, first_id + 4)), "no frame is missing")
        pictures_are_those_of_their_frames(arrivals)
        stamps_keep_the_rhythm([stamp for _, stamp in arrivals])
        client.run(b"AcquisitionStop")
    client.end_capture()


def pictures_are_those_of_their_frames(arrivals):
    for frame, stamp in arrivals:
        check((frame.status, frame.flags) == (0, 15), "the frame is complete, with size, place, number and time")
        check((frame.width, frame.height, frame.image_size) == (640, 480, 640 * 480), "it has the size of the picture")
        check(frame.pixel_format == 0x01080001, "it has the number of Mono8")
        check(frame.timestamp >= MANY_TICKS, "its time has all its bits")
        check((stamp.frame_id, stamp.camera_ticks) == (frame.id, frame.timestamp), "its picture is its own")
        check((stamp.width, stamp.height) == (640, 480), "its picture has its size")


def stamps_keep_the_rhythm(stamps):
    for earlier, later in zip(stamps, stamps[1:]):
        ticks = later.camera_ticks - earlier.camera_ticks
        check(abs(ticks - 20_000_000) <= 1, "50 Hz of the camera's clock are 20 ms of its ticks")
        true = later.exposure_start_ns - earlier.exposure_start_ns
        check(abs(true * 1.000012 - 20_000_000) <= 2, "the camera's clock is 12 millionths fast")


def frames_are_waited_for(client):
    client.set(b"TriggerMode", b"On")
    client.set(b"TriggerSource", b"Software")
    client.set(b"AcquisitionMode", b"Continuous")
    client.begin_capture(1, FrameCallback())
    frame = client.frames[0]
    client.run(b"AcquisitionStart")
    client.refuses(INVALID_ACCESS, "the width is locked now", "VmbFeatureIntSet", client.camera, b"Width", 320)
    client.refuses(TIMEOUT, "untriggered, nothing comes", "VmbCaptureFrameWait", client.camera, frame, 20)
    client.run(b"TriggerSoftware")
    client.call("VmbCaptureFrameWait", client.camera, frame, PATIENCE_S * 1000)
    pictures_are_those_of_their_frames([(frame, client.read_stamp(frame))])
    check(frame.id == 1, "frames are numbered anew with each capture")
    ctypes.memset(frame.buffer + 1000, 255 - client.buffers[0].raw[1000], 1)
    client.refuses(INCOMPLETE, "one changed byte is found", "VmbSimReadStamp", frame.buffer, 640 * 480, byref(Stamp()))
    client.end_capture()


def starts_tell_their_time(client):
    event = b"EventAcquisitionStartTimestamp"
    client.set(b"TriggerMode", b"Off")
    client.set(b"AcquisitionMode", b"SingleFrame")
    client.set(b"EventSelector", b"AcquisitionStart")
    client.set(b"EventNotification", b"On")
    client.listen(event, client.camera)
    client.begin_capture(1, client.on_frame)
    client.run(b"AcquisitionStart")
    time, frame_id = client.next_of(client.events)
    frame, _ = client.next_of(client.arrivals)
    check(frame_id == frame.id, "the start names its first frame")
    check(abs(frame.timestamp - time - 4200) <= 1, "the first exposure begins 4.2 us after the start")
    client.stop_listening(event, client.camera)
    client.run(b"AcquisitionStop")
    client.run(b"AcquisitionStart")
    client.next_of(client.arrivals)
    check(client.events.empty(), "nobody listens to the second start")
    client.end_capture()


def cables_are_noticed(client):
    second = client.open(SECOND)
    client.listen(b"DiscoveryCameraEvent", SYSTEM)
    client.run(b"GeVDiscoveryAllAuto", SYSTEM)
    found = {client.next_of(client.events) for _ in range(2)}
    check(found == {(b"Detected", FIRST), (b"Detected", SECOND)}, "discovery begins with both cameras")
    client.call("VmbSimUnplugCamera", SECOND)
    check(client.next_of(client.events) == (b"Missing", SECOND), "the unplugged camera is missed")
    check([camera.id for camera in client.list_cameras()] == [FIRST], "the other one is left")
    client.refuses(BAD_HANDLE, "its handle is void", "VmbFeatureCommandRun", second, b"AcquisitionStart")
    client.refuses(BAD_HANDLE, "it is closed all the same", "VmbCameraClose", second)
    client.call("VmbSimPlugCamera", SECOND)
    check(client.next_of(client.events) == (b"Detected", SECOND), "the plugged camera is found again")
    client.run(b"GeVDiscoveryAllOff", SYSTEM)
    client.stop_listening(b"DiscoveryCameraEvent", SYSTEM)
    client.call("VmbCameraClose", client.open(SECOND))


def library_shuts_down(client):
    client.call("VmbCameraClose", client.camera)
    client.refuses(BAD_HANDLE, "a closed camera has no features", "VmbFeatureIntSet", client.camera, b"Width", 320)
    client.library.VmbShutdown()
    client.refuses(NOT_STARTED, "nothing works after the end", "VmbFeatureCommandRun", SYSTEM, b"GeVDiscoveryAllOnce")
    client.call("VmbStartup")
    client.library.VmbShutdown()


STEPS = (
    structures_have_the_sizes_of_the_vendor, library_starts_up, cameras_are_listed, camera_opens,
    integers_and_floats, enumerations_and_switches, texts_and_bytes, commands, mistakes_are_told_apart,
    frames_arrive_by_callback, frames_are_waited_for, starts_tell_their_time, cables_are_noticed,
    library_shuts_down)


def run_steps(client, failing_function):
    client.call("VmbSimLoadScenario", b"two-cameras")
    if failing_function:
        client.call("VmbSimFailCall", failing_function.encode(), None, 1, INTERNAL_FAULT)
    for step in STEPS:
        try:
            step(client)
        except (AssertionError, queue.Empty) as error:
            print(f"FAILED {step.__name__}: {str(error) or 'nothing came in time'}")
            return False
    return True


def main(path, failing_function=None):
    try:
        client = Client(path)
    except (OSError, AttributeError) as error:
        print(f"The library cannot be used: {error}")
        return 1
    passed = run_steps(client, failing_function)
    print(f"{len(STEPS)} tests, {camera_library.checks} checks, {0 if passed else 1} failed", flush=True)
    return 0 if passed else 1


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    # Without the interpreter's own end: after a failure the library's threads may still call back.
    os._exit(main(*sys.argv[1:]))
