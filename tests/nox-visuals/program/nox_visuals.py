"""Runs nox-visuals and reads what it writes: each line is checked against the schema."""
import contextlib
import json
import os
import subprocess
import tempfile
import unittest

import jsonschema

PROGRAM = os.environ["NOX_VISUALS"]
NOXSCENE = os.environ["NOXSCENE"]
# The machine may be busy, and a checker slow; only something that hangs takes so long.
PATIENCE = 120

with open(os.environ["OUTPUT_SCHEMA"], encoding="utf-8") as _file:
    _schema = json.load(_file)
jsonschema.Draft202012Validator.check_schema(_schema)
_validator = jsonschema.Draft202012Validator(_schema)


def parse(text):
    """The objects of whole lines, all of which must be as the schema says."""
    assert text == "" or text.endswith("\n"), f"the last line is not whole: {text[-200:]!r}"
    objects = [json.loads(line) for line in text.splitlines()]
    for it in objects:
        _validator.validate(it)
    return objects


def start(*arguments, **options):
    """The running program, its standard output and error in pipes unless `options` say otherwise."""
    options = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "text": True, **options}
    return subprocess.Popen([PROGRAM, *arguments], **options)


def run(*arguments, status=0, **options):
    """Its lines and what it said, once it has ended with this status."""
    process = start(*arguments, **options)
    try:
        out, said = process.communicate(timeout=PATIENCE)
    finally:
        process.kill()
    assert process.returncode == status, f"status {process.returncode}, not {status}: {said}"
    return parse(out or ""), said


def of_type(objects, kind):
    return [it for it in objects if it["type"] == kind]


def launch(description, **options):
    """Runs a pipeline to its end."""
    subprocess.run(["gst-launch-1.0", "-q", *description.split()], check=True, **options)


def has_elements(*names):
    return all(subprocess.run(["gst-inspect-1.0", "--exists", name], check=False).returncode == 0 for name in names)


def draw(scene, frames):
    """Raw I420 frames of a scene of the generator's, 640 by 360."""
    return subprocess.run([NOXSCENE, "--size", "640x360", "--frames", str(frames), *scene.split()],
                          stdout=subprocess.PIPE, check=True).stdout


def make_video(path, scene="pen", frames=60, raw=None, encode="vp8enc deadline=1 cpu-used=8 ! webmmux", layout="i420"):
    """Writes so many frames of a scene, or `raw` ones, 30 a second, by the distribution's encoder.

    `layout` is how the encoder takes the planes, whatever they hold.
    """
    launch(f"fdsrc fd=0 ! rawvideoparse width=640 height=360 framerate=30/1 format={layout} ! "
           f"{encode} ! filesink location={path}", input=raw or draw(scene, frames))
    return path


class WithFolder(unittest.TestCase):
    """A folder for a class's tests."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = folder.name

    @classmethod
    def path(cls, name):
        return os.path.join(cls.folder, name)

    def write(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)
        return self.path(name)


class WithClip(WithFolder):
    """With a clip of the pen in it."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.clip = make_video(cls.path("clip.webm"))


@contextlib.contextmanager
def small_disk(folder, kilobytes):
    """The path of a disk of this size, mounted in `folder`; skips the test where none can be mounted."""
    if os.geteuid() != 0:
        raise unittest.SkipTest("only root can mount a small disk")
    path = os.path.join(folder, "small")
    os.mkdir(path)
    mount = ["mount", "-t", "tmpfs", "-o", f"size={kilobytes}k", "tmpfs", path]
    if subprocess.run(mount, capture_output=True).returncode != 0:
        raise unittest.SkipTest("no small disk can be mounted here")
    try:
        yield path
    finally:
        subprocess.run(["umount", path], check=True)
