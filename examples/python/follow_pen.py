#!/usr/bin/env python3
"""Follows the pen of light in a video, in the two ways that an application can: by a probe that sees the events which
noxpentracker sends down the pipeline, and by an object that implements Nox.Navigation.

usage: follow_pen.py SOURCE

SOURCE is the piece of a pipeline that ends in raw video, such as "v4l2src ! videoconvert" or
"filesrc location=pen.webm ! decodebin ! videoconvert". Ends with the video, or at Ctrl-C.
"""
import sys

import gi

gi.require_version("Gst", "1.0")
gi.require_version("Nox", "1.0")
from gi.repository import GObject, Gst, Nox


class Cursor(GObject.Object, Nox.Navigation):
    """Is told every position, on the thread that carries the video."""

    def __init__(self):
        super().__init__()
        self.positions = 0

    def do_new_position(self, x, y, pressed):
        self.positions += 1
        print(f"navigation: {x:.3f} {y:.3f} {'pressed' if pressed else 'hovering'}")


class EventCounter:
    """Sees the events in the pipeline: each comes just before the buffer that it is about."""

    def __init__(self):
        self.events = 0

    def __call__(self, _pad, info):
        structure = info.get_event().get_structure()
        if structure is not None and structure.has_name("NoxTrackingData"):
            self.events += 1
            x, y, pressed = map(structure.get_value, ("x", "y", "pressed"))
            print(f"event:      {x:.3f} {y:.3f} {'pressed' if pressed else 'hovering'}")
        return Gst.PadProbeReturn.OK


def play(pipeline):
    """Plays to the end; False after an error."""
    pipeline.set_state(Gst.State.PLAYING)
    message = pipeline.get_bus().timed_pop_filtered(
        Gst.CLOCK_TIME_NONE, Gst.MessageType.EOS | Gst.MessageType.ERROR
    )
    pipeline.set_state(Gst.State.NULL)
    return message.type == Gst.MessageType.EOS


def main(source):
    pipeline = Gst.parse_launch(f"{source} ! noxpentracker name=tracker ! fakesink")
    tracker = pipeline.get_by_name("tracker")
    cursor = Cursor()
    counter = EventCounter()
    tracker.set_property("navigation-object", cursor)
    tracker.get_static_pad("src").add_probe(Gst.PadProbeType.EVENT_DOWNSTREAM, counter)
    ended = play(pipeline)
    # The tracker would keep its reference beyond its own end.
    tracker.set_property("navigation-object", None)
    print(f"{counter.events} events, {cursor.positions} positions told")
    return 0 if ended else 1


if __name__ == "__main__":
    Gst.init(None)
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1]))
