#!/usr/bin/env python3
"""Hostile inputs for the keyset tool, made afresh at every run: truncations, bit flips,
hostile binary trailers, offset tables and sharing, deep nesting, entity tricks, raw NULs and
surrogates, values of the wrong kind, configurations beyond the limits and paths that are no
regular files. Every case must end in exit status 0, 1 or 2 with a message (3 where convert could
not write), never a signal, a hang, a sanitizer report or a torn output file.

Usage: hostile_inputs.py TOOL SAMPLE_KEYSET [--sanitized]
"""
import os
import random
import resource
import struct
import subprocess
import sys
import tempfile

TIME_LIMIT = 60            # seconds per run; a hang is a failure
MEMORY_LIMIT = 3 << 30     # address space for an unsanitized run (reading stays under 2 GiB)


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT))


class Suite:
    def __init__(self, tool, sanitized, folder):
        self.tool = tool
        self.sanitized = sanitized
        self.folder = folder
        self.passed = 0
        self.failures = []
        self.count = 0

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, data):
        path = self.path(name)
        with open(path, "wb") as f:
            f.write(data)
        return path

    def run(self, name, arguments, allowed=(0, 1, 2)):
        env = dict(os.environ)
        if self.sanitized:
            # The sanitizers reserve far more address space than a limit would allow; they keep
            # their own bound on what is really used instead.
            env["ASAN_OPTIONS"] = "detect_leaks=1:hard_rss_limit_mb=2048:allocator_may_return_null=1"
            env["UBSAN_OPTIONS"] = "print_stacktrace=1:halt_on_error=1"
        try:
            done = subprocess.run([self.tool] + arguments, capture_output=True, env=env,
                                  timeout=TIME_LIMIT,
                                  preexec_fn=None if self.sanitized else limit_memory)
        except subprocess.TimeoutExpired:
            self.failures.append(f"{name}: no answer within {TIME_LIMIT} s")
            return None
        err = done.stderr.decode("utf-8", "replace")
        if done.returncode < 0:
            self.failures.append(f"{name}: killed by signal {-done.returncode}\n{err[-2000:]}")
        elif done.returncode not in allowed:
            self.failures.append(f"{name}: exit {done.returncode}\n{err[-2000:]}")
        elif "Sanitizer" in err or "runtime error:" in err:
            self.failures.append(f"{name}: sanitizer report\n{err[-3000:]}")
        elif done.returncode in (2, 3) and not err.strip():
            self.failures.append(f"{name}: exit {done.returncode} without a message")
        else:
            self.passed += 1
            return done
        return None

    def check(self, name, data):
        """Reads the bytes as every command does; convert must leave its output whole or as it was."""
        self.count += 1
        path = self.write(f"case{self.count}", data)
        self.run(name + " (check)", ["check", path])
        out = self.path(f"out{self.count}")
        with open(out, "wb") as f:
            f.write(b"previous")
        done = self.run(name + " (convert)", ["convert", path, out, "--binary"], (0, 2, 3))
        if done is not None and done.returncode != 0:
            with open(out, "rb") as f:
                if f.read() != b"previous":
                    self.failures.append(f"{name}: convert failed but changed its output")
        elif done is not None:
            self.run(name + " (what convert wrote reads back)", ["check", out])
        os.remove(path)
        os.remove(out)


def binary_plist(objects, top=None, ref_size=1, offset_size=2):
    """A binary property list of the given encoded objects, offsets computed."""
    body = b"bplist00"
    offsets = []
    for o in objects:
        offsets.append(len(body))
        body += o
    table = len(body)
    for off in offsets:
        body += off.to_bytes(offset_size, "big")
    top = len(objects) - 1 if top is None else top
    body += bytes(6) + bytes([offset_size, ref_size]) + struct.pack(">QQQ", len(objects), top, table)
    return body


def main():
    tool, sample = sys.argv[1], sys.argv[2]
    sanitized = "--sanitized" in sys.argv[3:]
    rng = random.Random(20261123)
    with tempfile.TemporaryDirectory() as folder:
        suite = Suite(tool, sanitized, folder)
        with open(sample, "rb") as f:
            keyset_xml = f.read()
        # The same keyset in the binary form, and a configuration of two keysets.
        binary_path = suite.path("sample.bplist")
        subprocess.run([tool, "convert", sample, binary_path, "--binary"], check=True)
        with open(binary_path, "rb") as f:
            keyset_binary = f.read()
        inner = keyset_xml.split(b"<plist version=\"1.0\">", 1)[1].rsplit(b"</plist>", 1)[0]
        config_xml = (b"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n"
                      b"<dict><key>TVKKeysets</key><array>" + inner + inner + b"</array></dict></plist>\n")

        # Truncations and bit flips of every form; fewer under the sanitizers, which run the tool
        # about ten times slower.
        per_form = 10 if sanitized else 24
        for label, data in (("keyset", keyset_xml), ("binary keyset", keyset_binary),
                            ("configuration", config_xml)):
            for cut in sorted(rng.sample(range(1, len(data)), per_form)):
                suite.check(f"{label} cut at {cut}", data[:cut])
            for n in range(per_form):
                flipped = bytearray(data)
                for _ in range(1 + n % 4):
                    at = rng.randrange(len(flipped))
                    if n % 2:
                        flipped[at] ^= 1 << rng.randrange(8)
                    else:
                        flipped[at] = rng.randrange(256)
                suite.check(f"{label} flip {n}", bytes(flipped))

        # Hostile binary documents.
        suite.check("trailer offsets beyond the file",
                    keyset_binary[:-8] + struct.pack(">Q", 1 << 62))
        suite.check("object count beyond the table",
                    keyset_binary[:-24] + struct.pack(">QQQ", 1 << 40, 0, len(keyset_binary) - 40))
        suite.check("offset table pointing into the trailer",
                    binary_plist([b"\x09"], offset_size=8)[:-8] + struct.pack(">Q", 9))
        suite.check("a list that holds itself", binary_plist([b"\xa1\x00"]))
        suite.check("doubling to 2^40 values",
                    binary_plist([bytes([0xA2, i + 1, i + 1]) for i in range(40)] + [b"\x09"], top=0))
        suite.check("string length beyond the area", binary_plist([b"\x5f\x13" + struct.pack(">Q", 1 << 60)]))
        suite.check("data length beyond the limit",
                    binary_plist([b"\x4f\x13" + struct.pack(">Q", (16 << 20) + 1)]))
        suite.check("nesting 600 deep",
                    binary_plist([bytes([0xA1]) + (i + 1).to_bytes(2, "big") for i in range(600)] + [b"\x09"],
                                 top=0, ref_size=2))
        # A configuration whose keyset list holds 2,000 references to one keyset.
        many = [b"\xd1\x00\x01\x00\x02", b"\x5aTVKKeysets", b"\xaf\x11" + struct.pack(">H", 2000)
                + struct.pack(">H", 3) * 2000, b"\xd0"]
        suite.check("2000 references to one keyset", binary_plist(many, top=0, ref_size=2))

        # Hostile XML documents.
        head = b"<?xml version=\"1.0\"?><plist version=\"1.0\">"
        for name, body in (
                ("nesting 5000 deep", b"<array>" * 5000 + b"</array>" * 5000),
                ("a too long character reference", b"<string>&#99999999999999999999999;</string>"),
                ("a character reference beyond Unicode", b"<string>&#x110000;</string>"),
                ("a reference to NUL", b"<string>&#0;</string>"),
                ("a raw NUL", b"<string>a\x00b</string>"),
                ("an encoded surrogate", b"<string>\xed\xa0\x80</string>"),
                ("a reference to a surrogate", b"<string>&#xD800;</string>"),
                ("an unknown entity", b"<string>&lol9;</string>"),
                ("entities declared in the document",
                 b"<!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;\">]>"
                 b"<string>&b;&b;</string>"),
                ("an unterminated comment", b"<!-- <dict>"),
                ("an unterminated CDATA section", b"<string><![CDATA[abc</string>"),
                ("a key without a value", b"<dict><key>TVKName</key></dict>"),
                ("a huge integer", b"<dict><key>TVKEMode</key><integer>99999999999999999999999</integer></dict>"),
                ("bad base64", b"<dict><key>TVKAppIcon</key><data>!!!!</data></dict>")):
            suite.check(name, head + body + b"</plist>")
        suite.check("a text beyond the limit",
                    head + b"<string>" + b"x" * ((8 << 20) + 1) + b"</string></plist>")

        # Values of the wrong kind wherever the sample has a value.
        kinds = [b"<string>x</string>", b"<integer>-1</integer>", b"<real>1e308</real>", b"<true/>",
                 b"<array/>", b"<dict/>", b"<data>AAAA</data>", b"<date>2001-01-01T00:00:00Z</date>"]
        values = [i for i in range(len(keyset_xml)) if keyset_xml.startswith(b"<string>", i)
                  or keyset_xml.startswith(b"<integer>", i) or keyset_xml.startswith(b"<array", i)
                  or keyset_xml.startswith(b"<dict", i)]
        for n, at in enumerate(rng.sample(values, min(len(values), 16))):
            end = keyset_xml.find(b">", at) + 1
            close = keyset_xml.find(b"</", end)
            close_end = keyset_xml.find(b">", close) + 1 if close >= 0 else end
            if keyset_xml[end - 2:end] == b"/>":
                close_end = end
            suite.check(f"wrong kind {n}", keyset_xml[:at] + kinds[n % len(kinds)] + keyset_xml[close_end:])

        # Beyond the configuration limits.
        suite.check("300 empty keysets",
                    head + b"<dict><key>TVKKeysets</key><array>" + b"<dict/>" * 300 + b"</array></dict></plist>")

        # Paths that are no regular files.
        fifo = suite.path("fifo")
        os.mkfifo(fifo)
        os.mkdir(suite.path("folder"))
        os.symlink("loop-b", suite.path("loop-a"))
        os.symlink("loop-a", suite.path("loop-b"))
        for name in ("fifo", "folder", "loop-a", "missing"):
            suite.run(f"reading {name}", ["check", suite.path(name)])
        suite.run("reading a device", ["check", "/dev/zero"])
        suite.run("reading a size-0 file with content", ["check", "/proc/self/status"])
        suite.run("writing onto a FIFO", ["convert", sample, fifo], (3,))
        if not os.path.exists(fifo) or not stat_is_fifo(fifo):
            suite.failures.append("writing onto a FIFO replaced it")

        for failure in suite.failures:
            print("FAILED", failure)
        print(f"{suite.passed} passed, {len(suite.failures)} failed")
        return 1 if suite.failures else 0


def stat_is_fifo(path):
    import stat
    return stat.S_ISFIFO(os.stat(path).st_mode)


if __name__ == "__main__":
    sys.exit(main())
