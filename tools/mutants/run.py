"""Makes small changes to src/ at random, one at a time, and tells which of them no test notices."""
import argparse
import collections
import pathlib
import random
import sys
import time

from build import Build
from changes import changes_of
from tree import Tree

_ROOT = pathlib.Path(__file__).resolve().parents[2]
_FOLDER = _ROOT / "build-mutants"
_LIST = pathlib.Path(__file__).with_name("without_effect.txt")
# Of CPU time for a test program, quick or not, in the order in which they are run.
_SECONDS = {True: 20, False: 120}
_SANITIZED_SECONDS = {True: 60}


def listed_keys():
    """The keys of the changes judged to be without effect."""
    lines = [line for line in _LIST.read_text().splitlines() if line and line[0] != "#"]
    return {line.rsplit(" | ", 1)[0] for line in lines}


def keys_of(change):
    """By what a change may be listed: itself, or as every change to its line."""
    return {change.key(), f"{change.path} | {change.text} | *"}


def in_random_order(changes, seed):
    """One change of every place that has any."""
    places = collections.defaultdict(list)
    for change in changes:
        places[change.path, change.offset].append(change)
    generator = random.Random(seed)
    chosen = [generator.choice(alike) for alike in places.values()]
    generator.shuffle(chosen)
    return chosen


class Judge:
    """Tries changes one at a time: first with the plain build, then, for those that survive, with the
    sanitized one, which takes longer."""

    def __init__(self, tree, rooms):
        self._tree = tree
        self._rooms = rooms
        self._plain = Build(tree, _FOLDER / "plain", rooms, sanitize=False)
        self._plain.prepare(_SECONDS)
        self._sanitized = None

    def plain_verdict(self, change):
        return self._changed(change, self._try_plain)

    def sanitized_verdict(self, change):
        if self._sanitized is None:
            self._sanitized = Build(self._tree, _FOLDER / "sanitized", self._rooms, sanitize=True)
            self._sanitized.prepare(_SANITIZED_SECONDS)
        return self._changed(change, self._try_sanitized)

    def _changed(self, change, attempt):
        source = self._tree.read(change.path)
        self._tree.write(change.path, change.apply(source))
        try:
            return attempt(change.path, self._tree.rooms_of(change.path))
        finally:
            self._tree.write(change.path, source)

    def _try_plain(self, path, rooms):
        own = self._plain.of_rooms(rooms)
        elements = [p for p in self._plain.of_elements() if p not in own]
        if not self._plain.compiles(own): return "does not compile"
        if self._plain.same_code(path): return "same code"
        if not _all_pass(own, _SECONDS): return "noticed"
        if not self._plain.compiles(elements): return "does not compile"
        return "survived" if _all_pass(elements, _SECONDS) else "noticed"

    def _try_sanitized(self, _, rooms):
        own = self._sanitized.of_rooms(rooms)
        programs = own + [p for p in self._sanitized.of_elements() if p not in own]
        if not self._sanitized.compiles(programs): return "does not compile"
        return "survived" if _all_pass(programs, _SANITIZED_SECONDS) else "noticed by a sanitizer"


def _all_pass(programs, seconds):
    """Whether they pass in each way, quick or not, that has a number of seconds."""
    return all(p.passes(quick, limit) for quick, limit in seconds.items() for p in programs)


def try_all(changes, count, listed, judge):
    """Verdicts of the first so many changes that compile."""
    verdicts = {}
    with open(_FOLDER / "verdicts.txt", "w", buffering=1) as log:
        for change in changes:
            if len(verdicts) == count: break
            verdict = "listed" if listed & keys_of(change) else judge.plain_verdict(change)
            log.write(f"{verdict}: {change.path}:{change.line}: {change.key()}\n")
            if verdict != "does not compile": verdicts[change] = verdict
        for change in [c for c, verdict in verdicts.items() if verdict == "survived"]:
            verdicts[change] = judge.sanitized_verdict(change)
            log.write(f"at last {verdicts[change]}: {change.path}:{change.line}: {change.key()}\n")
    return verdicts


def main():
    parser = argparse.ArgumentParser(prog="tools/check --mutants", description=__doc__)
    parser.add_argument("count", nargs="?", type=int, default=100)
    parser.add_argument("seed", nargs="?", type=int, default=int(time.time()))
    parser.add_argument("room", nargs="?", default="*", help="of src/; all of them unless told")
    arguments = parser.parse_args()
    tree = Tree(_ROOT, _FOLDER / "tree")
    changes = [c for path in tree.sources(arguments.room) for c in changes_of(path, tree.read(path))]
    listed = listed_keys()
    if arguments.room == "*":
        for key in sorted(listed.difference(*map(keys_of, changes))):
            print(f"no such change any more: {key}")
    print(f"{arguments.count} changes from seed {arguments.seed}", flush=True)
    judge = Judge(tree, {room for path in {c.path for c in changes} for room in tree.rooms_of(path)})
    verdicts = try_all(in_random_order(changes, arguments.seed), arguments.count, listed, judge)
    for change, verdict in verdicts.items():
        if verdict == "survived": print(f"{change.path}:{change.line}: {change.key()}")
    counts = collections.Counter(verdicts.values())
    print(", ".join(f"{n} {v}" for v, n in sorted(counts.items())))
    noticed = counts["noticed"] + counts["noticed by a sanitizer"]
    matter = noticed + counts["survived"]
    print(f"{noticed} of {matter} that matter are noticed: {100 * noticed / max(matter, 1):.1f} %")
    sys.exit(0 if noticed >= 0.99 * matter else 1)


if __name__ == "__main__":
    main()
