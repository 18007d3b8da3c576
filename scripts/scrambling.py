"""The scrambled form of a data file's lines, for the scripts that write the scrambled sample.

The character c at position j of a line is stored as (c + key - 1 - (j mod key)) mod 256. Position 0 is the line's
first character; behind the "#" of a comment the count starts again from 0. Line feeds are stored as they are.
"""

import sys

NEWLINE = 10
RETURN = 13


def scramble_text(text: bytes, key: int, where: str) -> bytes:
    stored = bytes((c + key - 1 - j % key) % 256 for j, c in enumerate(text))
    if NEWLINE in stored:
        sys.exit(f"{where}: a character would be stored as a line feed; choose another key")
    return stored


def scramble_line(line: bytes, key: int, where: str) -> bytes:
    if line[:1].isspace():
        sys.exit(f"{where}: a scrambled line cannot begin with a blank")
    if line.startswith(b"#"):
        return scramble_text(line[:1], key, where) + scramble_text(line[1:], key, where)
    stored = scramble_text(line, key, where)
    if stored[-1:] == bytes([RETURN]):
        sys.exit(f"{where}: the line would end in a carriage return, which a reader drops; choose another key")
    return stored


def scrambled_file(lines: list[bytes], key: int, where: str) -> bytes:
    """A whole file: its key in plain text, then its lines."""
    stored = [scramble_line(line, key, f"{where}:{number}") for number, line in enumerate(lines, 1)]
    return b"\n".join([b"%d" % key, *stored, b""])
