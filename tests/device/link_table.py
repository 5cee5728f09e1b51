#!/usr/bin/env python3
"""Works out the points of link_table.csv: how power and temperature limits follow each other.

Both directions are straight lines on either side of the defaults. The device computes them in 32-bit floats,
one rounding a step, so every step here is rounded through `struct` as well. The table holds the results as
the bits of the float and as the integer that a page shows.

    link_table.py            writes the table beside this script
    link_table.py --check    fails when the table beside this script differs
"""

import os
import struct
import sys

# policy limits: power in thousandths of a percent, temperature in 1/256 of a degree
CARDS = [
    # name,        pmin,  pdef,   pmax,   tmin,     tdef,     tmax
    ("usual",      50000, 100000, 120000, 60 * 256, 83 * 256, 90 * 256),
    ("wide",       10000, 100000, 150000, 30 * 256, 80 * 256, 95 * 256),
    ("broken",     33333, 87654,  123457, 15431,    20999,    23311),
    ("no top",     50000, 100000, 100000, 65 * 256, 84 * 256, 91 * 256),
    ("cold start", 25000, 75000,  125000, -10 * 256, 70 * 256, 88 * 256),
]

PERCENTS = [10, 20.5, 25, 30, 33.333, 40, 49.999, 50, 50.001, 55, 60, 62.5, 66.6, 70, 75, 77.7, 80, 87.654, 90,
            95.5, 99, 99.999, 100, 100.001, 101, 104.9, 105, 110, 112.3, 115, 119.999, 120, 120.001, 123.457,
            125, 130, 149.9, 150]

DEGREES = [-20, 0, 30, 45.5, 59, 60, 61, 64.25, 70, 75, 79.9, 80, 82, 83, 83.0625, 84, 85.5, 88, 89, 90, 91, 95, 120]
CURRENT_PERCENTS = [60, 100, 100.5, 118]


def f32(value):
    """The nearest 32-bit float."""
    return struct.unpack("<f", struct.pack("<f", value))[0]


def bits(value):
    return "%08X" % struct.unpack("<I", struct.pack("<f", value))[0]


def degrees_of(raw):
    return f32(f32(raw) * f32(0.00390625))


def power_to_temperature(card, percent):
    _, pmin, pdef, pmax, tmin_raw, tdef_raw, tmax_raw = card
    percent = f32(percent)
    wanted = percent * 1000.0  # in double precision
    if wanted > pmax or wanted < pmin:
        return None
    tmin, tdef, tmax = degrees_of(tmin_raw), degrees_of(tdef_raw), degrees_of(tmax_raw)
    pmin, pdef, pmax = f32(pmin), f32(pdef), f32(pmax)
    scaled = f32(percent * 1000.0)
    if wanted > pdef:
        part = f32(f32(scaled - pdef) / f32(pmax - pdef))
        return min(tmax, f32(tdef + f32(part * f32(tmax - tdef))))
    part = f32(f32(pdef - scaled) / f32(pdef - pmin))
    return max(tmin, f32(tdef - f32(part * f32(tdef - tmin))))


def temperature_to_power(card, degrees, current_percent):
    _, pmin, pdef, pmax, tmin_raw, tdef_raw, tmax_raw = card
    degrees = f32(degrees)
    above = f32(current_percent) * 1000.0 > pdef
    tmin, tdef, tmax = degrees_of(tmin_raw), degrees_of(tdef_raw), degrees_of(tmax_raw)
    pmin, pdef, pmax = f32(pmin), f32(pdef), f32(pmax)
    if above:
        part = f32(f32(degrees - tdef) / f32(tmax - tdef))
        x = f32(pdef + f32(part * f32(pmax - pdef)))
        return min(f32(pmax / 1000.0), f32(x / 1000.0))
    part = f32(f32(tdef - degrees) / f32(tdef - tmin))
    x = f32(pdef - f32(part * f32(pdef - pmin)))
    return max(f32(pmin / 1000.0), f32(x / 1000.0))


def rows():
    yield "direction,card,pmin,pdef,pmax,tmin,tdef,tmax,input,current,result,shown"
    for card in CARDS:
        head = ",".join(str(value) for value in card)
        for percent in PERCENTS:
            result = power_to_temperature(card, percent)
            yield "temperature,%s,%s,0,%s" % (head, bits(f32(percent)), told(result))
        for current in CURRENT_PERCENTS:
            for degrees in DEGREES:
                result = temperature_to_power(card, degrees, current)
                yield "power,%s,%s,%s,%s" % (head, bits(f32(degrees)), bits(f32(current)), told(result))


def told(result):
    return "refused,0" if result is None else "%s,%d" % (bits(result), int(result))


def main():
    path = os.path.join(os.path.dirname(os.path.abspath(__file__)), "link_table.csv")
    text = "\n".join(rows()) + "\n"
    if "--check" in sys.argv[1:]:
        with open(path, encoding="ascii") as table:
            sys.exit(0 if table.read() == text else "link_table.csv is not what this script works out")
    with open(path, "w", encoding="ascii") as table:
        table.write(text)


main()
