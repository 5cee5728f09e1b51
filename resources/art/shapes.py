"""What all images share: the palette, the cut corner, the letters of the word mark and the emblem."""

import math

RED = "#fc0a35"        # edges, lit parts
RED_DEEP = "#ec0928"   # fills, the gauge's own red
RED_DARK = "#7d0a1c"   # the lower end of lit gradients
INK = "#0b080a"        # the glass itself
WHITE = "#f4f0f1"
GREY = "#8d8488"


def svg(width, height, body, defs=""):
    """A whole picture of `width` by `height` pixels."""
    return (f'<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" '
            f'width="{width}" height="{height}" viewBox="0 0 {width} {height}">\n'
            f'<defs>{defs}</defs>\n{body}\n</svg>\n')


def number(value):
    return f"{value:.3f}".rstrip("0").rstrip(".")


def points(corners, closed=True):
    """Path data through the corners."""
    return "M" + " L".join(f"{number(x)},{number(y)}" for x, y in corners) + (" Z" if closed else "")


def path(data, **attributes):
    """A path element; `stroke_width=2` is written stroke-width="2", without a fill unless one is given."""
    attributes.setdefault("fill", "none")
    listed = " ".join(f'{key.replace("_", "-")}="{value}"' for key, value in attributes.items())
    return f'<path d="{data}" {listed}/>'


def group(body, **attributes):
    listed = " ".join(f'{key.replace("_", "-")}="{value}"' for key, value in attributes.items())
    return f"<g {listed}>{body}</g>"


def gradient(name, stops, x1=0, y1=0, x2=0, y2=1):
    """Linear gradient in parts of the painted shape; each stop is (offset, colour, opacity)."""
    return (f'<linearGradient id="{name}" x1="{x1}" y1="{y1}" x2="{x2}" y2="{y2}">'
            + "".join(f'<stop offset="{o}" stop-color="{c}" stop-opacity="{a}"/>' for o, c, a in stops)
            + "</linearGradient>")


def radial(name, stops, cx, cy, r, squash=1.0):
    """Radial gradient in pixels; `squash` flattens it."""
    transform = f'gradientTransform="translate({cx},{cy}) scale(1,{squash}) translate({-cx},{-cy})"'
    return (f'<radialGradient id="{name}" gradientUnits="userSpaceOnUse" cx="{cx}" cy="{cy}" r="{r}" {transform}>'
            + "".join(f'<stop offset="{o}" stop-color="{c}" stop-opacity="{a}"/>' for o, c, a in stops)
            + "</radialGradient>")


def cut_rectangle(x, y, width, height, top_left=0, top_right=0, bottom_right=0, bottom_left=0):
    """Corners of a rectangle with cut corners, clockwise."""
    right, bottom = x + width, y + height
    corners = [(x, y + top_left), (x + top_left, y), (right - top_right, y), (right, y + top_right),
               (right, bottom - bottom_right), (right - bottom_right, bottom),
               (x + bottom_left, bottom), (x, bottom - bottom_left)]
    return [c for i, c in enumerate(corners) if c != corners[i - 1]]


# Strokes of the letters of the word mark and of the LCD's switch in a box of 24 by 20; two corners are cut like the
# window's.
LETTERS = {
    "O": "M4,0 H24 V16 L20,20 H0 V4 Z",
    "V": "M0,0 L12,20 L24,0",
    "R": "M0,20 V0 H20 L24,4 V8.5 L20.5,12 H0 M13.5,12 L24,20",
    "Y": "M0,0 L12,11 L24,0 M12,11 V20",
    "N": "M0,20 V0 L24,20 V0",
    "D": "M0,0 H20 L24,4 V16 L20,20 H0 Z",
    "E": "M24,0 H0 V20 H24 M0,10 H20",
    "C": "M24,0 H4 L0,4 V16 L4,20 H24",
    "K": "M0,0 V20 M24,0 L5,10 L24,20",
    "I": "M0,0 V20",
    "L": "M0,0 V20 H24",
}
LETTER_WIDTH = 24
LETTER_HEIGHT = 20


def word(text, x, y, height, spacing, colour, stroke):
    """`text` with its strokes' outer edge from (x, y) down `height`; `spacing` and `stroke` in units of the box of 24 by 20."""
    scale = (height / (LETTER_HEIGHT + stroke))
    parts, at = [], stroke / 2
    for letter in text:
        if letter == " ":
            at += LETTER_WIDTH * 0.55
            continue
        parts.append(f'<path d="{LETTERS[letter]}" transform="translate({number(at)},{number(stroke / 2)})"/>')
        at += (0 if letter == "I" else LETTER_WIDTH) + stroke + spacing
    body = "".join(parts)
    return (f'<g transform="translate({x},{y}) scale({number(scale)})" fill="none" stroke="{colour}" '
            f'stroke-width="{stroke}" stroke-linejoin="miter" stroke-miterlimit="6">{body}</g>'), \
        (at - spacing - stroke / 2) * scale


def arc(cx, cy, radius, start, end):
    """Path data of an arc; degrees count as on a clock face turned to mathematics: 0 right, 90 up."""
    def at(angle):
        return cx + radius * math.cos(math.radians(angle)), cy - radius * math.sin(math.radians(angle))
    (x1, y1), (x2, y2) = at(start), at(end)
    large = 1 if (end - start) % 360 > 180 else 0
    return f"M{number(x1)},{number(y1)} A{radius},{radius} 0 {large} 0 {number(x2)},{number(y2)}"


def ring(cx, cy, radius, stroke, gap, colour, opacity=1):
    """The gauge's ring: three segments, parted at the top and at both lower sides by `gap` pixels."""
    half = math.degrees(gap / 2 / radius)
    return "".join(path(arc(cx, cy, radius, start + half, start + 120 - half), stroke=colour, stroke_width=stroke,
                        stroke_opacity=opacity) for start in (90, 210, 330))


def chevron(cx, cy, width, height, stroke, colour, opacity=1, fold="#d8c3c8"):
    """A V of `width` by `height` round (cx, cy), folded: the right arm lies in `fold`. `stroke`: an arm's width, level."""
    left, right, top, bottom = cx - width / 2, cx + width / 2, cy - height / 2, cy + height / 2
    notch = top + height * (width / 2 - stroke) / (width / 2 - stroke / 2)
    left_arm = [(left, top), (left + stroke, top), (cx, notch), (cx, bottom), (cx - stroke / 2, bottom)]
    right_arm = [(right, top), (right - stroke, top), (cx, notch), (cx, bottom), (cx + stroke / 2, bottom)]
    return (path(points(left_arm), fill=colour, fill_opacity=opacity)
            + path(points(right_arm), fill=fold, fill_opacity=opacity))


def emblem(cx, cy, size, ring_colour=RED, mark_colour=WHITE, opacity=1):
    """The ring of the gauge with a V inside."""
    return (ring(cx, cy, size * 0.41, size * 0.13, size * 0.075, ring_colour, opacity)
            + chevron(cx, cy + size * 0.02, size * 0.46, size * 0.36, size * 0.125, mark_colour, opacity))
