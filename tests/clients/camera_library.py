"""The vendor's C library by way of ctypes: its structures, the functions that a client needs, and a class that
reads and sets features, records frames and gets events. Nothing but the standard library is used.
"""

import ctypes
import os
import queue
from ctypes import POINTER, byref, c_bool, c_char_p, c_double, c_int32, c_int64, c_uint32, c_uint64, c_void_p, sizeof

SYSTEM = c_void_p(1)  # the library's own handle
FULL_ACCESS = 1
INT, FLOAT, ENUM, STRING, BOOL, COMMAND, RAW = range(1, 8)
PATIENCE_S = 60


def structure(name, *fields):
    return type(name, (ctypes.Structure,), {"_fields_": fields})


VersionInfo = structure("VersionInfo", ("major", c_uint32), ("minor", c_uint32), ("patch", c_uint32))
CameraInfo = structure(
    "CameraInfo", ("id", c_char_p), ("name", c_char_p), ("model", c_char_p), ("serial", c_char_p),
    ("access", c_uint32), ("interface_id", c_char_p))
FeatureInfo = structure(
    "FeatureInfo", ("name", c_char_p), ("type", c_uint32), ("flags", c_uint32), ("category", c_char_p),
    ("display_name", c_char_p), ("polling_time", c_uint32), ("unit", c_char_p), ("representation", c_char_p),
    ("visibility", c_uint32), ("tooltip", c_char_p), ("description", c_char_p), ("namespace", c_char_p),
    ("is_streamable", c_bool), ("has_affected", c_bool), ("has_selected", c_bool))
Frame = structure(
    "Frame", ("buffer", c_void_p), ("buffer_size", c_uint32), ("context", c_void_p * 4), ("status", c_int32),
    ("flags", c_uint32), ("image_size", c_uint32), ("ancillary_size", c_uint32), ("pixel_format", c_uint32),
    ("width", c_uint32), ("height", c_uint32), ("offset_x", c_uint32), ("offset_y", c_uint32), ("id", c_uint64),
    ("timestamp", c_uint64))
Stamp = structure(  # what the simulator writes into every picture
    "Stamp", ("frame_id", c_uint64), ("camera_ticks", c_uint64), ("exposure_start_ns", c_uint64),
    ("way_ns", c_uint64), ("width", c_uint32), ("height", c_uint32))
Oscillator = structure(  # of the simulated camera's clock
    "Oscillator", ("tick_frequency", c_uint64), ("start_ticks", c_uint64), ("error_ppb", c_int32),
    ("drift_ppb", c_int32), ("drift_period_s", c_uint32), ("jitter_ns", c_uint32))

FrameCallback = ctypes.CFUNCTYPE(None, c_void_p, POINTER(Frame))
InvalidationCallback = ctypes.CFUNCTYPE(None, c_void_p, c_char_p, c_void_p)

FEATURE = (c_void_p, c_char_p)
ARGUMENTS = {
    "VmbVersionQuery": (POINTER(VersionInfo), c_uint32),
    "VmbStartup": (),
    "VmbShutdown": (),
    "VmbCamerasList": (POINTER(CameraInfo), c_uint32, POINTER(c_uint32), c_uint32),
    "VmbCameraInfoQuery": (c_char_p, POINTER(CameraInfo), c_uint32),
    "VmbCameraOpen": (c_char_p, c_uint32, POINTER(c_void_p)),
    "VmbCameraClose": (c_void_p,),
    "VmbFeatureInfoQuery": (*FEATURE, POINTER(FeatureInfo), c_uint32),
    "VmbFeatureAccessQuery": (*FEATURE, POINTER(c_bool), POINTER(c_bool)),
    "VmbFeatureIntGet": (*FEATURE, POINTER(c_int64)),
    "VmbFeatureIntSet": (*FEATURE, c_int64),
    "VmbFeatureIntRangeQuery": (*FEATURE, POINTER(c_int64), POINTER(c_int64)),
    "VmbFeatureIntIncrementQuery": (*FEATURE, POINTER(c_int64)),
    "VmbFeatureFloatGet": (*FEATURE, POINTER(c_double)),
    "VmbFeatureFloatSet": (*FEATURE, c_double),
    "VmbFeatureFloatRangeQuery": (*FEATURE, POINTER(c_double), POINTER(c_double)),
    "VmbFeatureEnumGet": (*FEATURE, POINTER(c_char_p)),
    "VmbFeatureEnumSet": (*FEATURE, c_char_p),
    "VmbFeatureEnumRangeQuery": (*FEATURE, POINTER(c_char_p), c_uint32, POINTER(c_uint32)),
    "VmbFeatureEnumAsInt": (*FEATURE, c_char_p, POINTER(c_int64)),
    "VmbFeatureStringGet": (*FEATURE, c_void_p, c_uint32, POINTER(c_uint32)),
    "VmbFeatureStringSet": (*FEATURE, c_char_p),
    "VmbFeatureStringMaxlengthQuery": (*FEATURE, POINTER(c_uint32)),
    "VmbFeatureBoolGet": (*FEATURE, POINTER(c_bool)),
    "VmbFeatureBoolSet": (*FEATURE, c_bool),
    "VmbFeatureCommandRun": FEATURE,
    "VmbFeatureCommandIsDone": (*FEATURE, POINTER(c_bool)),
    "VmbFeatureRawGet": (*FEATURE, c_void_p, c_uint32, POINTER(c_uint32)),
    "VmbFeatureRawSet": (*FEATURE, c_char_p, c_uint32),
    "VmbFeatureRawLengthQuery": (*FEATURE, POINTER(c_uint32)),
    "VmbFeatureInvalidationRegister": (*FEATURE, InvalidationCallback, c_void_p),
    "VmbFeatureInvalidationUnregister": (*FEATURE, InvalidationCallback),
    "VmbFrameAnnounce": (c_void_p, POINTER(Frame), c_uint32),
    "VmbFrameRevokeAll": (c_void_p,),
    "VmbCaptureStart": (c_void_p,),
    "VmbCaptureEnd": (c_void_p,),
    "VmbCaptureFrameQueue": (c_void_p, POINTER(Frame), FrameCallback),
    "VmbCaptureFrameWait": (c_void_p, POINTER(Frame), c_uint32),
    "VmbCaptureQueueFlush": (c_void_p,),
    # The simulator's own, see vimba_simulator.h.
    "VmbSimLoadScenario": (c_char_p,),
    "VmbSimFailCall": (c_char_p, c_char_p, c_int32, c_int32),
    "VmbSimUnplugCamera": (c_char_p,),
    "VmbSimPlugCamera": (c_char_p,),
    "VmbSimSetOscillator": (c_char_p, POINTER(Oscillator)),
    "VmbSimReadStamp": (c_void_p, c_uint64, POINTER(Stamp)),
}

EVENT_VALUES = {  # what a callback reads, all values of one event
    b"DiscoveryCameraEvent": (b"DiscoveryCameraEvent", b"DiscoveryCameraIdent"),
    b"EventAcquisitionStartTimestamp": (b"EventAcquisitionStartTimestamp", b"EventAcquisitionStartFrameID"),
}
EVENT_CONTEXT = 4711

checks = 0


def check(holds, sentence):
    global checks
    checks += 1
    assert holds, f"not so: {sentence}"


class Client:
    """The library and, once opened, one camera. Features are read and set by name, whatever their type."""

    def __init__(self, path):
        self.library = ctypes.CDLL(os.path.abspath(path))
        for name, arguments in ARGUMENTS.items():
            function = getattr(self.library, name)
            function.argtypes = arguments
            function.restype = None if name == "VmbShutdown" else c_int32
        self.camera = c_void_p()
        self.arrivals = queue.Queue()  # filled by callbacks, on threads of the library
        self.events = queue.Queue()
        # The library keeps addresses only, so that these must live as long as it may call or fill them.
        self.on_frame = FrameCallback(self._frame_arrived)
        self.on_event = InvalidationCallback(self._event_came)
        self.frames, self.buffers = [], []

    def call(self, function, *arguments):
        code = getattr(self.library, function)(*arguments)
        names = [a.decode("latin-1") for a in arguments if isinstance(a, bytes)]
        check(not code, f"{function}({', '.join(names)}) succeeds (it answers {code})")

    def refuses(self, code, sentence, function, *arguments):
        answer = getattr(self.library, function)(*arguments)
        check(answer == code, f"{sentence} (it answers {answer} instead of {code})")

    def ask(self, kind, function, *arguments):
        """The one value that a function writes through its last pointer."""
        value = kind()
        self.call(function, *arguments, byref(value))
        return value.value

    def range_of(self, name):
        kind, function = {INT: (c_int64, "VmbFeatureIntRangeQuery"),
                          FLOAT: (c_double, "VmbFeatureFloatRangeQuery")}[self.type_of(name)]
        low, high = kind(), kind()
        self.call(function, self.camera, name, byref(low), byref(high))
        return low.value, high.value

    def entries_of(self, name):
        count = self.ask(c_uint32, "VmbFeatureEnumRangeQuery", self.camera, name, None, 0)
        entries = (c_char_p * count)()
        self.call("VmbFeatureEnumRangeQuery", self.camera, name, entries, count, None)
        return list(entries)

    def type_of(self, name, owner=None):
        info = FeatureInfo()
        self.call("VmbFeatureInfoQuery", owner or self.camera, name, byref(info), sizeof(info))
        return info.type

    def get(self, name, owner=None):
        owner = owner or self.camera
        kind = self.type_of(name, owner)
        if kind == STRING:
            return self._get_bytes("VmbFeatureStringGet", owner, name).rstrip(b"\0")
        if kind == RAW:
            return self._get_bytes("VmbFeatureRawGet", owner, name)
        ctype, function = {
            INT: (c_int64, "VmbFeatureIntGet"), FLOAT: (c_double, "VmbFeatureFloatGet"),
            ENUM: (c_char_p, "VmbFeatureEnumGet"), BOOL: (c_bool, "VmbFeatureBoolGet")}[kind]
        return self.ask(ctype, function, owner, name)

    def _get_bytes(self, function, owner, name):
        size = self.ask(c_uint32, function, owner, name, None, 0)
        buffer = ctypes.create_string_buffer(size)
        self.call(function, owner, name, buffer, size, None)
        return buffer.raw

    def set(self, name, value):
        kind = self.type_of(name)
        size = (len(value),) if kind == RAW else ()
        function = {INT: "VmbFeatureIntSet", FLOAT: "VmbFeatureFloatSet", ENUM: "VmbFeatureEnumSet",
                    STRING: "VmbFeatureStringSet", BOOL: "VmbFeatureBoolSet", RAW: "VmbFeatureRawSet"}[kind]
        self.call(function, self.camera, name, value, *size)

    def run(self, command, owner=None):
        owner = owner or self.camera
        self.call("VmbFeatureCommandRun", owner, command)
        while not self.ask(c_bool, "VmbFeatureCommandIsDone", owner, command):
            pass

    def list_cameras(self):
        count = c_uint32()
        self.call("VmbCamerasList", None, 0, byref(count), sizeof(CameraInfo))
        cameras = (CameraInfo * count.value)()
        if cameras:  # versions of the library disagree whether an array without room is an error
            self.call("VmbCamerasList", cameras, count, byref(count), sizeof(CameraInfo))
        return list(cameras)

    def open(self, camera_id):
        return c_void_p(self.ask(c_void_p, "VmbCameraOpen", camera_id, FULL_ACCESS))

    def listen(self, event, owner):
        self.call("VmbFeatureInvalidationRegister", owner, event, self.on_event, EVENT_CONTEXT)

    def stop_listening(self, event, owner):
        self.call("VmbFeatureInvalidationUnregister", owner, event, self.on_event)

    def begin_capture(self, count, on_frame):
        size = self.get(b"PayloadSize")
        self.buffers = [ctypes.create_string_buffer(size) for _ in range(count)]
        self.frames = [Frame(ctypes.addressof(buffer), size) for buffer in self.buffers]
        for frame in self.frames:
            self.call("VmbFrameAnnounce", self.camera, frame, sizeof(Frame))
        self.call("VmbCaptureStart", self.camera)
        for frame in self.frames:
            self.call("VmbCaptureFrameQueue", self.camera, frame, on_frame)

    def end_capture(self):
        self.run(b"AcquisitionStop")
        for function in ("VmbCaptureEnd", "VmbCaptureQueueFlush", "VmbFrameRevokeAll"):
            self.call(function, self.camera)

    def read_stamp(self, frame):
        stamp = Stamp()
        self.call("VmbSimReadStamp", frame.buffer, frame.image_size, byref(stamp))
        return stamp

    def next_of(self, deliveries):
        item = deliveries.get(timeout=PATIENCE_S)
        if isinstance(item, Exception):
            raise item
        return item

    def _frame_arrived(self, camera, pointer):
        def take():
            frame = Frame.from_buffer_copy(pointer.contents)
            stamp = self.read_stamp(frame)
            self.call("VmbCaptureFrameQueue", camera, pointer, self.on_frame)
            return frame, stamp
        self._deliver(self.arrivals, take)

    def _event_came(self, owner, name, context):
        def take():
            check(context == EVENT_CONTEXT, "the callback gets the context of its registration")
            return tuple(self.get(value, owner) for value in EVENT_VALUES[name])
        self._deliver(self.events, take)

    def _deliver(self, deliveries, take):
        try:
            deliveries.put(take())
        except Exception as error:  # would end in the library's thread; whoever waits shall raise it
            deliveries.put(error)
