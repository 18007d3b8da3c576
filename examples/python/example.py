#!/usr/bin/env python3
"""Carries points from DHDN to ETRS89 in the two ways that the library offers.

    LD_LIBRARY_PATH=... python3 example.py data/sample          (Windows: copy lagestatus.dll beside this file)
"""

import ctypes
import os
import sys

NAME_SIZE, ELLIPSOID_SIZE, KIND_SIZE, RESULT_SIZE, PARAMETER_COUNT, MAX_ENTRIES = 100, 11, 14, 4, 36, 100

# A text is an array of 16-bit units; ctypes' own wide characters have 32 bits on Linux.
Text = ctypes.POINTER(ctypes.c_uint16)
Doubles = ctypes.POINTER(ctypes.c_double)
Ints = ctypes.POINTER(ctypes.c_int)
Int, Double = ctypes.c_int, ctypes.c_double

if os.name == "nt":
    library = ctypes.CDLL(os.path.join(os.path.dirname(os.path.abspath(__file__)), "lagestatus.dll"))
else:
    library = ctypes.CDLL("liblagestatus.so.0")

for name, result, *arguments in (
    ("test_dll", Int, Double, Double, Double, Doubles),
    ("trans_dll", Int, Double, Double, Double, Int, Int, Text, ctypes.c_char_p, Doubles, Text, Ints, Text, Text, Text,
     Text, Text),
    ("transla_dll", Int, Text, Text, Int, Int, Text, Text, Text, Doubles),
    ("translz_dll", Int, Text, Text, Int, Int, Text, Text, Text, Ints, Doubles),
    ("translD_dll", Int, Text, Ints, Ints, Ints, Ints, Text),
    ("transr_dll", Int, Doubles, Text, Text, Doubles, Text, Doubles, Text, Doubles, Int, Int, Int, Text),
    ("transfm_dll", None, Int, Text, Text),
):
    getattr(library, name).restype = result
    getattr(library, name).argtypes = arguments


def buffer(size):
    return (ctypes.c_uint16 * size)()


def text(string):
    """A zero-terminated text for the library."""
    data = string.encode("utf-16-le") + b"\0\0"
    return (ctypes.c_uint16 * (len(data) // 2)).from_buffer_copy(data)


def path(name):
    """A path for the library, one byte a unit: in Windows-1252, elsewhere as the system has it."""
    data = name.encode("cp1252") if os.name == "nt" else os.fsencode(name)
    return (ctypes.c_uint16 * (len(data) + 1))(*data)


def string(units):
    """What a buffer of the library holds."""
    return bytes(units).decode("utf-16-le").split("\0", 1)[0]


def message(status, file_name):
    name = text(file_name)
    units = buffer(129 + 91 + len(name))
    library.transfm_dll(status, name, units)
    return string(units)


def check(status, file_name):
    if status != 0:
        sys.exit(f"status {status}: {message(status, file_name)}")


def main(directory):
    name, name2 = buffer(NAME_SIZE), buffer(NAME_SIZE)
    ellipsoid, ellipsoid2 = buffer(ELLIPSOID_SIZE), buffer(ELLIPSOID_SIZE)
    kind, kind2 = buffer(KIND_SIZE), buffer(KIND_SIZE)
    source, target = (Double * PARAMETER_COUNT)(), (Double * PARAMETER_COUNT)()
    result, auxiliary, zone = (Double * RESULT_SIZE)(), (Int * 2)(), Int()
    data = path(directory)

    assert library.test_dll(1.0, 2.0, 3.0, result) == 0 and result[3] == 3.0, "the library is not bound as it should be"

    # One call that reads everything it needs.
    check(library.trans_dll(52.5, 13.4, 100.0, 101, 201, data, b"e", result, name, auxiliary, ellipsoid, kind, name2,
                            ellipsoid2, kind2), directory)
    print(f"{string(name)} -> {string(name2)}: {result[0]:.9f} {result[1]:.9f} {result[2]:.4f}")

    # Many points between two systems: their descriptions are read once and kept.
    check(library.transla_dll(data, text("dhdn-geographisch"), 0, 101, name, ellipsoid, kind, source),
          "dhdn-geographisch.tra")
    check(library.translz_dll(data, text("etrs89-geozentrisch"), 0, 202, name2, ellipsoid2, kind2, ctypes.byref(zone),
                              target), "etrs89-geozentrisch.tra")
    for latitude in (52.5, 51.5, 50.5):
        point = (Double * 3)(latitude, 13.4, 100.0)
        check(library.transr_dll(point, kind, kind2, result, ellipsoid, source, ellipsoid2, target, zone, 0, 0, data),
              "hoehe.ini")
        print(f"{point[0]:.1f} {point[1]:.1f} -> {result[0]:.4f} {result[1]:.4f} {result[2]:.4f}")

    # What a failure looks like.
    print(f"status 12: {message(12, 'mein-system.tra')}")


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else ".")
