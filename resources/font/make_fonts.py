#!/usr/bin/python3
"""Makes the program's fonts from free faces: subset, renamed, with the metrics that the widgets need.

Needs Debian's python3-fonttools and python3-brotli, and these sources:

  file of ours         family          source face                 where it comes from
  kuhei.TTF            Ovryn Hei       Noto Sans CJK SC            package fonts-noto-cjk
  SpaceAge.ttf         Ovryn Wide      Michroma                    npm package @fontsource/michroma
  DS-Digital.TTF       Ovryn Segment   DSEG14 Classic Bold         package fonts-dseg
  OvrynSans.ttf        Ovryn Sans      Liberation Sans             package fonts-liberation2
  OvrynSans-Bold.ttf   Ovryn Sans      Liberation Sans Bold        package fonts-liberation2

Usage: make_fonts.py [--michroma FILE.woff2] [name of ours ...]
Without names all are made; SpaceAge.ttf is left as it is where its source isn't given.
"""

import argparse
import pathlib

from fontTools import subset
from fontTools.misc.transform import Transform
from fontTools.pens.cu2quPen import Cu2QuPen
from fontTools.pens.transformPen import TransformPen
from fontTools.pens.ttGlyphPen import TTGlyphPen
from fontTools.ttLib import TTFont, newTable

HERE = pathlib.Path(__file__).resolve().parent
VERSION = "Version 1.000"

# Seconds since 1904: the same bytes come out of every run.
FIXED_TIME = 3786912000

ASCII = range(0x20, 0x7F)
LATIN_1 = range(0xA0, 0x100)
PUNCTUATION = map(ord, "–—‘’“”•…‰€™−≤≥")
GREEK_IN_UNITS = map(ord, "Ωμ")
CHINESE_PUNCTUATION = map(ord, "、。《》「」【】〜！（），：；？～￥％＋－／")

LATIN_TEXT = sorted({*ASCII, *LATIN_1, *PUNCTUATION, *GREEK_IN_UNITS})


def hei_characters():
    """The Latin text and every character of the Chinese texts: those in characters.txt, and the update log's."""
    sources = (HERE / "characters.txt", HERE.parent / "updateLog" / "chinese.txt")
    listed = "".join(source.read_text(encoding="utf-8") for source in sources)
    return sorted({*LATIN_TEXT, *CHINESE_PUNCTUATION, *(ord(c) for c in listed if not c.isspace())})


def cut_down(font, characters):
    """Keeps the characters given; drops layout rules, since every text is drawn letter by letter or plain."""
    options = subset.Options()
    options.layout_features = ["kern"]
    options.name_IDs = [0, 13, 14]
    options.name_languages = ["*"]
    options.notdef_outline = True
    options.glyph_names = False
    options.hinting = True
    options.drop_tables += ["VORG", "vhea", "vmtx", "BASE", "DSIG", "FFTM", "GDEF", "PCLT"]
    subsetter = subset.Subsetter(options)
    subsetter.populate(unicodes=characters)
    subsetter.subset(font)


def rename(font, family, style):
    """Neutral names: the licences reserve the names of some sources."""
    table = font["name"]
    copyright_text = table.getDebugName(0)
    table.names = []
    postscript = f"{family}-{style}".replace(" ", "")
    texts = {
        0: copyright_text,
        1: family,
        2: style,
        3: f"{VERSION};{postscript}",
        4: family if style == "Regular" else f"{family} {style}",
        5: VERSION,
        6: postscript,
        13: "This Font Software is licensed under the SIL Open Font License, Version 1.1.",
        14: "https://openfontlicense.org",
    }
    for name_id, text in texts.items():
        if text:
            table.setName(text, name_id, 3, 1, 0x409)


def set_vertical_metrics(font, ascent, descent):
    """Line box above and below the base line, in parts of the em; the same figures for every platform."""
    em = font["head"].unitsPerEm
    above, below = round(ascent * em), round(descent * em)
    font["hhea"].ascent, font["hhea"].descent, font["hhea"].lineGap = above, -below, 0
    os2 = font["OS/2"]
    os2.sTypoAscender, os2.sTypoDescender, os2.sTypoLineGap = above, -below, 0
    os2.usWinAscent, os2.usWinDescent = above, below


def set_weight(font, weight):
    """Weight class with the style bits that go with it."""
    bold = weight >= 700
    font["OS/2"].usWeightClass = weight
    font["OS/2"].fsSelection = 0x20 if bold else 0x40
    font["head"].macStyle = 1 if bold else 0


def quadratic_outlines(font):
    """Rewrites cubic (CFF) outlines as TrueType ones, to a tolerance of a thousandth of the em."""
    tolerance = font["head"].unitsPerEm / 1000
    glyph_set = font.getGlyphSet()
    order = font.getGlyphOrder()
    outlines = {}
    for name in order:
        pen = TTGlyphPen(None)
        glyph_set[name].draw(Cu2QuPen(pen, tolerance, reverse_direction=True))
        outlines[name] = pen.glyph()
    del font["CFF "]
    font["loca"] = newTable("loca")
    font["glyf"] = glyf = newTable("glyf")
    glyf.glyphOrder = order
    glyf.glyphs = outlines
    font["maxp"].tableVersion = 0x00010000
    for field in ("maxZones", "maxTwilightPoints", "maxStorage", "maxFunctionDefs", "maxInstructionDefs",
                  "maxStackElements", "maxSizeOfInstructions", "maxComponentElements"):
        setattr(font["maxp"], field, 1 if field == "maxZones" else 0)
    font["post"].formatType = 3.0
    font.sfntVersion = "\x00\x01\x00\x00"


def transformed(font, glyph_name, transform):
    pen = TTGlyphPen(None)
    font.getGlyphSet()[glyph_name].draw(TransformPen(pen, transform))
    return pen.glyph()


def drop_hints(font):
    """Hints fit the outlines that they were made for, no scaled ones."""
    for tag in ("fpgm", "prep", "cvt ", "gasp", "hdmx", "LTSH", "VDMX"):
        if tag in font:
            del font[tag]


def save(font, file_name, family, style, weight):
    rename(font, family, style)
    set_weight(font, weight)
    font.recalcTimestamp = False
    font["head"].created = font["head"].modified = FIXED_TIME
    font.flavor = None
    path = HERE / file_name
    font.save(path)
    print(f"{file_name}: {len(font.getBestCmap())} characters, {path.stat().st_size} bytes")


def make_hei(_arguments):
    font = TTFont("/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc", fontNumber=2)
    cut_down(font, hei_characters())
    quadratic_outlines(font)
    set_vertical_metrics(font, 0.98, 0.24)
    save(font, "kuhei.TTF", "Ovryn Hei", "Regular", 400)


def make_wide(arguments):
    if not arguments.michroma:
        print("SpaceAge.ttf: left as it is, no --michroma given")
        return
    font = TTFont(arguments.michroma)
    cut_down(font, LATIN_TEXT)
    # Captions of three quarters of a button's height have to lie inside the button.
    set_vertical_metrics(font, 0.94, 0.24)
    save(font, "SpaceAge.ttf", "Ovryn Wide", "Regular", 400)


# Letters of the units, drawn as polygons in a cell of 620 by 820: the source's fourteen segments give an M that looks
# like a B, a B that looks like a D, a capital z and an incomplete %. Clockwise outlines; a hole runs the other way.
SEGMENT_CELL = 620
SEGMENT_LETTERS = {
    "M": [
        [(75, 0), (75, 397), (115, 425), (155, 397), (155, 0)],
        [(75, 453), (75, 820), (155, 740), (155, 453), (115, 428)],
        [(465, 0), (465, 397), (505, 425), (545, 397), (545, 0)],
        [(465, 453), (465, 740), (545, 820), (545, 453), (505, 428)],
        [(98, 820), (190, 820), (302, 545), (302, 310), (260, 310)],
        [(522, 820), (360, 310), (318, 310), (318, 545), (430, 820)],
    ],
    "B": [
        [(75, 0), (75, 820), (155, 820), (155, 0)],
        [(173, 738), (173, 820), (455, 820), (490, 785), (443, 738)],
        [(173, 372), (173, 454), (440, 454), (481, 413), (440, 372)],
        [(173, 0), (173, 82), (443, 82), (490, 35), (455, 0)],
        [(455, 726), (502, 773), (535, 740), (535, 478), (493, 425), (455, 463)],
        [(455, 94), (455, 363), (493, 401), (535, 348), (535, 80), (502, 47)],
    ],
    "z": [
        [(75, 468), (75, 550), (505, 550), (505, 476), (498, 468)],
        [(75, 0), (75, 74), (82, 82), (505, 82), (505, 0)],
        [(87, 96), (375, 454), (493, 454), (205, 96)],
    ],
    "%": [
        [(75, 600), (75, 780), (115, 820), (195, 820), (235, 780), (235, 600), (195, 560), (115, 560)],
        [(130, 622), (180, 622), (180, 758), (130, 758)],
        [(85, 0), (435, 820), (535, 820), (185, 0)],
        [(385, 40), (385, 220), (425, 260), (505, 260), (545, 220), (545, 40), (505, 0), (425, 0)],
        [(440, 62), (490, 62), (490, 198), (440, 198)],
    ],
}
DEGREE_CELL = 340
DEGREE = [
    [(60, 600), (60, 760), (120, 820), (240, 820), (300, 760), (300, 600), (240, 540), (120, 540)],
    [(130, 608), (230, 608), (230, 752), (130, 752)],
]


def polygons(outlines):
    pen = TTGlyphPen(None)
    for outline in outlines:
        pen.moveTo(outline[0])
        for point in outline[1:]:
            pen.lineTo(point)
        pen.closePath()
    return pen.glyph()


def make_segment(_arguments):
    """Segment digits that fit the hole of the gauge: "1733 MHz" in a chord 5.7 times as wide as the em."""
    font = TTFont("/usr/share/fonts/truetype/dseg/DSEG14Classic-Bold.ttf")
    cut_down(font, sorted({*ASCII, 0xB0}))
    drop_hints(font)
    across, up = 0.76, 0.82
    # The source's own blank is too narrow: 0.15 em.
    blank = 340

    characters = font.getBestCmap()
    # The plain ring of the letter O: a slash inside the zero reads as an 8 at the size of a gauge.
    for table in font["cmap"].tables:
        table.cmap[ord("0")] = characters[ord("O")]

    glyphs = {name: (transformed(font, name, Transform(across, 0, 0, up, 0, 0)), round(font["hmtx"][name][0] * across))
              for name in font.getGlyphOrder()}
    for letter, outlines in SEGMENT_LETTERS.items():
        glyphs[characters[ord(letter)]] = (polygons(outlines), SEGMENT_CELL)
    glyphs[characters[0xB0]] = (polygons(DEGREE), DEGREE_CELL)
    glyphs[characters[0x20]] = (glyphs[characters[0x20]][0], blank)
    for name, (outline, width) in glyphs.items():
        font["glyf"][name] = outline
        outline.recalcBounds(font["glyf"])
        font["hmtx"][name] = (width, getattr(outline, "xMin", 0))
    font["OS/2"].sCapHeight = round(up * font["head"].unitsPerEm)
    # The middle of a digit is the middle of the line, so that a value centred in its row stands in the centre.
    set_vertical_metrics(font, 0.90, 0.08)
    save(font, "DS-Digital.TTF", "Ovryn Segment", "Bold", 700)


def make_sans(_arguments):
    folder = pathlib.Path("/usr/share/fonts/truetype/liberation2")
    for source, file_name, style, weight in (("LiberationSans-Regular.ttf", "OvrynSans.ttf", "Regular", 400),
                                             ("LiberationSans-Bold.ttf", "OvrynSans-Bold.ttf", "Bold", 700)):
        font = TTFont(folder / source)
        cut_down(font, LATIN_TEXT)
        save(font, file_name, "Ovryn Sans", style, weight)


MAKERS = {
    "kuhei": make_hei,
    "SpaceAge": make_wide,
    "DS-Digital": make_segment,
    "OvrynSans": make_sans,
}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--michroma", help="michroma-latin-400-normal.woff2 of the npm package")
    parser.add_argument("names", nargs="*", metavar="name", help="of " + ", ".join(MAKERS))
    arguments = parser.parse_args()
    unknown = set(arguments.names) - set(MAKERS)
    if unknown:
        parser.error(f"no such font: {', '.join(sorted(unknown))}")
    for name in arguments.names or MAKERS:
        MAKERS[name](arguments)


if __name__ == "__main__":
    main()
