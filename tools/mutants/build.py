"""Builds of a tree, with the test programs of each of its rooms."""
import hashlib
import json
import os
import resource
import signal
import subprocess

# Of Highway's targets on x86 three, which among them compile every branch of the kernels.
_KERNEL_ARGS = "-mssse3 -DHWY_BROKEN_TARGETS=(HWY_SSE4|HWY_AVX3)"
_OPTIONS = ["-Doptimization=1", "-Ddebug=false", "-Dbenchmarks=disabled", "-Dintrospection=disabled",
            "-Dprogram=disabled", "-Db_pch=false", f"-Dcpp_args={_KERNEL_ARGS}"]
_ELEMENTS = "noxvisuals"
_LONG = 5.0  # seconds
_MODULE = "src/noxvisuals/libgstnoxvisuals_sse.so"
_PLAIN_MEMORY = 6 << 30  # bytes; a changed program may ask for more and more


def _seconds_of_children():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


class Program:
    """A test program."""

    def __init__(self, described, folder, memory):
        self._command = described["cmd"]
        self._env = described["env"]
        self._memory = memory
        self.target = os.path.relpath(described["cmd"][0], folder)
        self.seconds = 0.0  # of CPU time that it takes; known once it has run
        self.rooms = {suite.split(":")[-1] for suite in described["suite"]}

    def passes(self, quick, seconds):
        """Runs it to its first failure, and for so many seconds of CPU time at most."""
        env = dict(os.environ, **self._env, GTEST_FAIL_FAST="1")
        env.pop("NOX_TEST_QUICK", None)
        if quick: env["NOX_TEST_QUICK"] = "1"

        def limit():
            os.setpgrp()
            resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds + 1))
            resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 28, 1 << 28))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            resource.setrlimit(resource.RLIMIT_AS, (self._memory, self._memory))

        process = subprocess.Popen(self._command, env=env, preexec_fn=limit, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            # One that waits takes no CPU time; and other work may leave it little.
            return process.wait(timeout=60 + 4 * seconds) == 0
        except subprocess.TimeoutExpired:
            return False
        finally:
            self._end(process)

    @staticmethod
    def _end(process):
        try:
            os.killpg(process.pid, signal.SIGKILL)  # its children too
        except ProcessLookupError:
            pass
        process.wait()


class Build:
    """A build folder, with the test programs of some rooms and of the elements."""

    def __init__(self, tree, folder, rooms, sanitize):
        self.folder = folder
        options = [*_OPTIONS, *(["-Db_sanitize=address"] if sanitize else [])]
        again = ["--reconfigure"] if (folder / "build.ninja").is_file() else []
        self._env = dict(os.environ, CCACHE_DIR=str(folder.parent / "ccache"), CCACHE_MAXSIZE="2G")
        self._run(["meson", "setup", folder, tree.folder, *options, *again])
        described = json.loads(subprocess.run(["meson", "introspect", "--tests", folder], check=True,
                                              capture_output=True, text=True).stdout)
        memory = resource.RLIM_INFINITY if sanitize else _PLAIN_MEMORY
        programs = [Program(d, folder, memory) for d in described if d["protocol"] == "gtest"]
        self.programs = [p for p in programs if p.rooms & {*rooms, _ELEMENTS}]
        self._objects = {}  # what the compiler makes of the unchanged sources

    def _run(self, command):
        done = subprocess.run(command, env=self._env, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True)
        if done.returncode != 0: raise RuntimeError(done.stdout[-3000:])

    def of_rooms(self, rooms):
        return [p for p in self.programs if rooms & p.rooms]

    def of_elements(self):
        """Their tests but those of states and threads, which take long and use the cores little."""
        return [p for p in self.of_rooms({_ELEMENTS}) if p.seconds < _LONG]

    def compiles(self, programs):
        try:
            self._build(programs)
        except RuntimeError:
            return False
        return True

    def _build(self, programs):
        """Builds the programs and the module."""
        self._run(["ninja", "-C", self.folder, *[p.target for p in programs], _MODULE])

    def prepare(self, seconds):
        """Builds everything unchanged and sees it pass, in each way that has a number of seconds."""
        self._build(self.programs)
        for program in self.programs:
            before = _seconds_of_children()
            for quick, limit in seconds.items():
                if not program.passes(quick, limit):
                    raise RuntimeError(f"{program.target} fails without any change")
            program.seconds = _seconds_of_children() - before
        self.programs.sort(key=lambda p: p.seconds)  # the quickest are to notice first
        self._objects = {path: self._hash(path) for path in self.folder.rglob("*.o")}

    def same_code(self, path):
        """Whether the compiler makes the same of the changed file, and of all that include it. The programs
        of its room are built."""
        if not self._same_objects(self.folder / "src"): return False
        if path.endswith(".cc"): return True
        self._build(self.programs)
        return self._same_objects(self.folder)

    def _same_objects(self, folder):
        return all(self._hash(path) == known for path, known in self._objects.items()
                   if path.is_relative_to(folder))

    @staticmethod
    def _hash(path):
        return hashlib.sha256(path.read_bytes()).digest()
