#!/usr/bin/env python3
"""Runs the command as a user would, by the tables in tests/commands/.

Usage: command_test.py PROGRAM SAMPLE_DIRECTORY [EMULATOR]

A table is a text of cases. Each case has a directory of its own, which holds the sample as "sample" and where its
steps run one after the other:

    == TITLE                 begins a case; "== [linux] TITLE" and "== [windows] TITLE" are for that system alone
    file NAME                writes a file from the lines "| TEXT" that follow
    copy FROM TO             copies a file or a directory
    move FROM TO             gives a file another name
    edit NAME PATTERN TEXT   replaces what the regular expression finds (over all lines, as ISO 8859-1)
    same A B                 two files have the same bytes
    absent NAME              there is no such file
    $ ARGUMENTS              runs the command: with the lines "< TEXT" as its standard input; it must print the lines
                             "> TEXT" and, as errors, "! TEXT", and have the exit status "= NUMBER" (0 if not given);
                             "@ FILE NUMBER": it opens the file so many times (looked at on Linux alone)
    cat NAME                 a file must hold the lines "> TEXT"

">~ TEXT" and "!~ TEXT" are regular expressions for one line, "> ..." and "! ..." any number of lines. In arguments and
texts \\r, \\t, \\n, \\\\ and \\xNN stand for their bytes, {x*100} for a hundred x, and \\c at the end of a line for no line feed.
"""

import ctypes
import os
import re
import shlex
import shutil
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

ESCAPES = {"r": b"\r", "t": b"\t", "n": b"\n", "\\": b"\\"}
TIME_LIMIT = 120  # seconds; a command that hangs is a fault, one that is slow is not


def decoded(text):
    def one(match):
        code = match[1].decode()
        return ESCAPES.get(code) or bytes([int(code[1:], 16)])

    text = re.sub(rb"\\(x[0-9a-fA-F]{2}|[rtn\\])", one, text.encode())
    return re.sub(rb"\{(.)\*(\d+)\}", lambda match: match[1] * int(match[2]), text)


def joined(lines):
    return b"".join(decoded(line[:-2]) if line.endswith("\\c") else decoded(line) + b"\n" for line in lines)


def pattern_of(lines):
    """One regular expression for the expected lines, each with its mark ("" or "~")."""
    patterns = []
    for mark, line in lines:
        if mark:
            patterns.append(line.encode() + rb"\n")
        elif line == "...":
            patterns.append(rb"(?:.*\n)*?")
        else:
            patterns.append(re.escape(joined([line])))
    return b"".join(patterns)


class Openings:
    """Counts how often files are opened while it lives, by inotify."""

    OPEN, CLOSE = 0x20, 0x10  # IN_OPEN, IN_CLOSE_NOWRITE: both, since equal events that follow each other are made one
    EVENT = struct.Struct("iIII")

    def __init__(self, files):
        libc = ctypes.CDLL(None, use_errno=True)
        self.queue = libc.inotify_init1(os.O_NONBLOCK) if files else None
        self.watches = [libc.inotify_add_watch(self.queue, os.fsencode(file), self.OPEN | self.CLOSE) for file in files]

    def counts(self):
        if self.queue is None:
            return []
        opened = []
        with open(self.queue, "rb", buffering=0) as queue:
            while events := queue.read(1 << 16):
                opened += [watch for watch, kind, *_ in self.EVENT.iter_unpack(events) if kind & self.OPEN]
        return [opened.count(watch) for watch in self.watches]


class Case:
    def __init__(self, title, where):
        self.title = title
        self.where = where
        self.steps = []  # [(line number, word, rest, {mark: [...]})]

    def run(self, command, work, windows):
        for number, word, rest, lines in self.steps:
            fault = getattr(self, f"do_{word}")(rest, lines, command, work, windows)
            if fault:
                return f"{self.where}:{number}: {word} {rest}\n{fault}"
        return None

    def do_file(self, rest, lines, _command, work, _windows):
        (work / rest).write_bytes(joined([text for _, text in lines["|"]]))

    def do_copy(self, rest, _lines, _command, work, _windows):
        source, target = (work / name for name in shlex.split(rest))
        shutil.copytree(source, target) if source.is_dir() else shutil.copy(source, target)

    def do_move(self, rest, _lines, _command, work, _windows):
        shutil.move(*(work / name for name in shlex.split(rest)))

    def do_edit(self, rest, _lines, _command, work, _windows):
        name, pattern, text = shlex.split(rest)
        assert (work / name).resolve().is_relative_to(work.resolve()), f"{name} is not the test's own"
        before = (work / name).read_bytes()
        after = re.sub(pattern.encode("latin-1"), decoded(text), before, flags=re.MULTILINE)
        (work / name).write_bytes(after)
        return None if after != before else "nothing was found"

    def do_same(self, rest, _lines, _command, work, _windows):
        first, second = ((work / name).read_bytes() for name in shlex.split(rest))
        return None if first == second else "they differ"

    def do_absent(self, rest, _lines, _command, work, _windows):
        return "it exists" if (work / rest).exists() else None

    def do_cat(self, rest, lines, _command, work, _windows):
        return self.compare("contents", lines[">"], (work / rest).read_bytes())

    def do_run(self, rest, lines, command, work, windows):
        arguments = [decoded(part).decode() for part in shlex.split(rest)]
        # Files and not pipes: what an emulator leaves running would hold those open.
        with tempfile.TemporaryFile() as stdout, tempfile.TemporaryFile() as stderr, tempfile.TemporaryFile() as stdin:
            stdin.write(joined([text for _, text in lines["<"]]))
            stdin.seek(0)
            counted = [text.rsplit(" ", 1) for _, text in lines["@"] if sys.platform == "linux" and not windows]
            openings = Openings([work / name for name, _ in counted])
            done = subprocess.run([*command, *arguments], cwd=work, stdin=stdin, stdout=stdout, stderr=stderr,
                                  timeout=TIME_LIMIT, check=False)
            for stream in (stdout, stderr):
                stream.seek(0)
            out, err = stdout.read(), stderr.read()
            faults = [f"{name} was opened {count} times, not {wanted}\n"
                      for (name, wanted), count in zip(counted, openings.counts()) if count != int(wanted)]
        if windows:
            err = err.replace(b"\r\n", b"\n")
            keeps_line_ends = arguments[0] == "transform" or ("-" in arguments and arguments[0] != "complete")
            if not keeps_line_ends:
                out = out.replace(b"\r\n", b"\n")
        wanted = int(lines["="][0][1]) if lines["="] else 0
        status = None if done.returncode == wanted else f"exit status {done.returncode}, not {wanted}\n"
        faults += [status, self.compare("output", lines[">"], out), self.compare("errors", lines["!"], err)]
        return "".join(fault for fault in faults if fault)

    @staticmethod
    def compare(what, lines, got):
        if re.fullmatch(pattern_of(lines), got):
            return None
        wanted = "\n".join(f"  {mark}{text}" for mark, text in lines)
        return f"{what}:\n{got.decode(errors='backslashreplace')}wanted:\n{wanted}\n"


def read_cases(path):
    cases = []
    for number, line in enumerate(path.read_text(encoding="utf-8").split("\n"), 1):
        if not line or line.startswith("#"):
            continue
        word, _, rest = line.partition(" ")
        mark = "~" if word.endswith("~") else ""
        if word == "==":
            cases.append(Case(rest, path.name))
        elif word == "$" or hasattr(Case, f"do_{word}"):
            step = (number, "run" if word == "$" else word, rest, {key: [] for key in "|<>!=@"})
            cases[-1].steps.append(step)
        elif word.removesuffix("~") in step[3]:
            step[3][word.removesuffix("~")].append((mark, rest))
        else:
            sys.exit(f"{path.name}:{number}: what is this?")
    return cases


def main():
    program, sample, *emulator = sys.argv[1:]
    windows = program.endswith(".exe")
    command = [*emulator, Path(program).resolve()]
    other = "[linux]" if windows else "[windows]"
    tables = sorted((Path(__file__).parent / "commands").glob("*.txt"))
    cases = [case for path in tables for case in read_cases(path) if not case.title.startswith(other)]
    failures = 0
    for case in cases:
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "sample").symlink_to(Path(sample).resolve())
            fault = case.run(command, Path(folder), windows)
        if fault:
            failures += 1
            print(f"{case.title}\n{fault}")
    print(f"{len(cases) - failures} cases passed, {failures} failed")
    return 1 if failures or not cases else 0


if __name__ == "__main__":
    sys.exit(main())
