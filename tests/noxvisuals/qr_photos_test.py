"""Reads real photographs of QR codes through noxqrdec and compares with what the manifest tells.

usage: qr_photos_test.py FOLDER

Nothing may be logged that the manifest does not know to be in the picture, and most of what its column "quirc"
lists must be: that column comes from one version of the decoder, and versions differ in which hard pictures they
read. Without the folder the test is skipped.
"""
import csv
import json
import os
import re
import subprocess
import sys
import tempfile

SKIPPED = 77
SHARE_READ_AT_LEAST = 0.8
DECODERS = {".png": "pngdec", ".jpeg": "jpegdec"}
# A log line begins with its time; a payload may hold line breaks of its own.
LOG_LINE = re.compile(rb"^\d+:\d\d:\d\d\.\d+ ", re.MULTILINE)
PAYLOAD = re.compile(rb"Got QR Payload: (.*)\n\Z", re.DOTALL)


def payloads_read(path, log):
    """The payloads that the element logs for one picture."""
    decoder = DECODERS[os.path.splitext(path)[1]]
    subprocess.run(
        ["gst-launch-1.0", "-q", "filesrc", "location=" + path, "!", decoder, "!", "videoconvert", "!"]
        + ["video/x-raw,format=I420", "!", "noxqrdec", "!", "fakesink"],
        check=True,
        env={**os.environ, "GST_DEBUG": "noxqrdec:INFO", "GST_DEBUG_FILE": log},
    )
    with open(log, "rb") as file:
        entries = LOG_LINE.split(file.read())
    return [match.group(1) for match in map(PAYLOAD.search, entries) if match]


def payloads_listed(row, column):
    """The payloads of a manifest's column as bytes, up to the first NUL, where the log's C string ends."""
    for text in json.loads(row[column]):
        raw = bytes.fromhex(text[4:]) if text.startswith("hex:") else text.encode()
        yield raw.split(b"\0")[0]


def read_all(folder, rows):
    """For each row what was read, what the decoder is known to read, and all that is in the picture."""
    with tempfile.TemporaryDirectory() as scratch:
        for row in rows:
            read = payloads_read(os.path.join(folder, row["file"]), os.path.join(scratch, "log"))
            expected = list(payloads_listed(row, "quirc"))
            yield row["file"], read, expected, expected + list(payloads_listed(row, "payloads"))


def main(folder):
    manifest = os.path.join(folder, "manifest.tsv")
    if not os.path.exists(manifest):
        print("SKIPPED: no photographs of QR codes beside the project")
        return SKIPPED
    with open(manifest, newline="", encoding="utf-8") as file:
        rows = list(csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE))
    misread = pictures = codes = expected_codes = expected_read = 0
    for name, read, expected, present in read_all(folder, rows):
        pictures += bool(read)
        codes += len(read)
        expected_codes += len(expected)
        expected_read += sum(payload in read for payload in expected)
        for payload in read:
            if payload not in present:
                misread += 1
                print(f"MISREAD {name}: {payload}")
    print(f"{codes} codes read in {pictures} of {len(rows)} pictures; "
          f"{expected_read} of {expected_codes} expected ones, {misread} misread")
    return 0 if misread == 0 and expected_read > SHARE_READ_AT_LEAST * expected_codes else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
