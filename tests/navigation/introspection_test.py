"""The navigation interface from Python: an object that implements it hears the positions."""
import unittest

import gi

gi.require_version("Nox", "1.0")
from gi.repository import GObject, Nox


class Recorder(GObject.Object, Nox.Navigation):
    def __init__(self):
        super().__init__()
        self.positions = []

    def do_new_position(self, x, y, pressed):
        self.positions.append((x, y, pressed))


class Introspection(unittest.TestCase):
    def test_implementation_hears_positions(self):
        recorder = Recorder()
        recorder.new_position(0.25, 0.75, True)
        recorder.new_position(0.5, 1.0, False)
        self.assertEqual(recorder.positions, [(0.25, 0.75, True), (0.5, 1.0, False)])

    def test_type_is_the_one_of_the_library(self):
        self.assertEqual(GObject.type_name(Nox.Navigation), "NoxNavigation")


if __name__ == "__main__":
    unittest.main()
