"""The large images: the main window's glass, its silhouette, the marks, the panels and the icon."""

import math

from shapes import (RED, RED_DARK, RED_DEEP, WHITE, chevron, cut_rectangle, emblem, gradient, group, number, path,
                    points, radial, ring, svg, word)

WIDTH, HEIGHT = 1020, 680
CENTRE = 510

# Where the dialog puts its widgets; the drawing serves them.
SELECTOR = (360, 85, 300, 50)
BODY_RIGHT = 990
HEADER_BOTTOM = 158

# The silhouette, clockwise from the cut corner at the top left: header with a raised tab in the middle, the rail of
# the three buttons (19 pixels wide from x 996, y 62 to 141) at the right, the cut corner at the bottom right, a foot.
# It fills the window nearly to its borders: the gauge's glow, which the window clips, ends with the glass.
SILHOUETTE = [
    (2, 46), (32, 16), (372, 16), (382, 6), (638, 6), (648, 16), (964, 16), (BODY_RIGHT, 42), (1008, 42), (1018, 52),
    (1018, 152), (1008, 162), (BODY_RIGHT, 162), (BODY_RIGHT, 620), (942, 668), (650, 668), (640, 678), (380, 678),
    (370, 668), (16, 668), (2, 654),
]


def inset(corners, distance):
    """The closed polygon moved inwards by `distance` along its edges; the corners run clockwise on screen."""
    moved = []
    for i, (x, y) in enumerate(corners):
        (px, py), (nx, ny) = corners[i - 1], corners[(i + 1) % len(corners)]
        before, after = math.atan2(y - py, x - px), math.atan2(ny - y, nx - x)
        half = (after - before) / 2
        reach = distance / math.cos(half)
        normal = before + half + math.pi / 2
        moved.append((x + reach * math.cos(normal), y + reach * math.sin(normal)))
    return moved


def hexagons(width, height, radius):
    """Path data of a honeycomb over the picture: three edges a cell, the neighbours draw the rest."""
    parts = []
    step_x, step_y = radius * math.sqrt(3), radius * 1.5
    for row in range(int(height / step_y) + 2):
        for column in range(int(width / step_x) + 2):
            cx = column * step_x + (step_x / 2 if row % 2 else 0)
            cy = row * step_y
            corner = [(cx + radius * math.cos(math.radians(a)), cy + radius * math.sin(math.radians(a)))
                      for a in (150, 90, 30, -30)]
            parts.append(points(corner, closed=False))
    return " ".join(parts)


def ticks(x, y, count, step, long_every, short, long, vertical):
    """Path data of a ruler."""
    parts = []
    for i in range(count):
        length = long if i % long_every == 0 else short
        parts.append(f"M{x},{number(y + i * step)} h{length}" if vertical else f"M{number(x + i * step)},{y} v{-length}")
    return " ".join(parts)


def hatch(x, y, count, step, height):
    """Slanted bars, as on a warning edge."""
    return " ".join(points([(x + i * step, y), (x + i * step + step * 0.5, y),
                            (x + i * step + step * 0.5 - height * 0.6, y + height), (x + i * step - height * 0.6, y + height)])
                    for i in range(count))


def window_glass():
    left, top, width, height = SELECTOR
    defs = (
        gradient("glass", [(0, "#2a0b13", 0.90), (0.22, "#12080c", 0.885), (0.6, "#0a080a", 0.88), (1, "#1c070d", 0.90)])
        + gradient("edge", [(0, RED, 1), (0.3, RED, 0.55), (0.7, RED, 0.5), (1, RED, 1)], x2=1, y2=1)
        + gradient("sheen", [(0, "#fff", 0.10), (0.5, "#fff", 0.03), (1, "#fff", 0)])
        + gradient("slot", [(0, "#000", 0.62), (1, "#22070d", 0.55)])
        + gradient("rail", [(0, RED_DEEP, 0.34), (0.5, RED_DARK, 0.20), (1, RED_DEEP, 0.34)])
        + radial("warm", [(0, RED_DEEP, 0.20), (1, RED_DEEP, 0)], CENTRE, 0, 520, 0.42)
        + radial("floor", [(0, RED_DEEP, 0.16), (1, RED_DEEP, 0)], CENTRE, 690, 620, 0.25)
        + radial("calm", [(0, "#000", 1), (0.62, "#000", 0.9), (1, "#fff", 1)], CENTRE, 410, 560, 0.72)
        + f'<clipPath id="shape"><path d="{points(SILHOUETTE)}"/></clipPath>'
        + f'<mask id="quiet"><rect width="{WIDTH}" height="{HEIGHT}" fill="url(#calm)"/></mask>'
    )
    body = path(points(SILHOUETTE), fill="url(#glass)")

    surface = path(hexagons(WIDTH, HEIGHT, 15), stroke="#ff3a5c", stroke_opacity=0.17, stroke_width=0.8, mask="url(#quiet)")
    surface += f'<rect width="{WIDTH}" height="{HEIGHT}" fill="url(#warm)"/>'
    surface += f'<rect width="{WIDTH}" height="{HEIGHT}" fill="url(#floor)"/>'
    scan_lines = " ".join(f"M0,{y}.5 H{WIDTH}" for y in range(0, HEIGHT, 3))
    surface += path(scan_lines, stroke="#fff", stroke_opacity=0.012)
    surface += path(points([(0, 0), (430, 0), (250, 160), (0, 160)]), fill="url(#sheen)")
    surface += path(points([(460, 0), (500, 0), (320, 160), (280, 160)]), fill="url(#sheen)")
    body += group(surface, clip_path="url(#shape)")

    body += header(left, top, width, height)
    body += rail()
    body += rulers()
    body += edges()
    return svg(WIDTH, HEIGHT, body, defs)


def header(left, top, width, height):
    """Emblem and word mark, the selector's slot, and the rule under the header that runs into it."""
    body = emblem(81, 60, 44)
    mark_left = 111
    ovryn, ovryn_width = word("OVRYN", mark_left, 43, 21, 8, WHITE, 4.2)
    deck, deck_width = word("DECK II", mark_left, 70, 9, 12, "#ff5571", 3.6)
    body += ovryn + deck
    body += path(f"M{number(mark_left + deck_width + 8)},74.5 H{number(mark_left + ovryn_width)}", stroke=RED,
                 stroke_opacity=0.7)

    slot = cut_rectangle(left - 8, top - 4, width + 16, height + 8, 12, 12, 12, 12)
    body += path(points(slot), fill="url(#slot)", stroke=RED, stroke_opacity=0.38)
    right, bottom = left + width + 8, top + height + 4
    x, y = left - 8, top - 4
    brackets = (f"M{x},{y + 24} V{y + 12} L{x + 12},{y} H{x + 40} M{right - 40},{y} H{right - 12} L{right},{y + 12} V{y + 24} "
                f"M{right},{bottom - 24} V{bottom - 12} L{right - 12},{bottom} H{right - 40} "
                f"M{x + 40},{bottom} H{x + 12} L{x},{bottom - 12} V{bottom - 24}")
    body += path(brackets, stroke=RED, stroke_width=2)
    for side, sign in ((x, -1), (right, 1)):
        for i, opacity in enumerate((0.9, 0.5)):
            at = side + sign * (8 + i * 8)
            body += path(points([(at, 103), (at + sign * 4, 103), (at + sign * 4, 117), (at, 117)]), fill=RED,
                         fill_opacity=opacity)

    # The rule climbs into the cut corners of the slot.
    climb = HEADER_BOTTOM - bottom
    body += path(f"M16,{HEADER_BOTTOM}.5 H{x + 12.5 - climb} l{climb},{-climb}", stroke=RED, stroke_opacity=0.6)
    body += path(f"M{BODY_RIGHT - 12},{HEADER_BOTTOM}.5 H{right - 12.5 + climb} l{-climb},{-climb}", stroke=RED,
                 stroke_opacity=0.6)
    body += path(f"M16,{HEADER_BOTTOM + 1} h72 M{BODY_RIGHT - 12},{HEADER_BOTTOM + 1} h-72", stroke=RED, stroke_width=3)
    # The tab of the middle mark.
    body += path("M382,22 V54.5 L392,64.5 H628 L638,54.5 V22", stroke=RED, stroke_opacity=0.30)
    return body


def rail():
    """Ground of the three buttons at the right edge."""
    outline = [(BODY_RIGHT + 3, 50), (1006, 47), (1013, 54), (1013, 150), (1006, 157), (BODY_RIGHT + 3, 154)]
    body = path(points(outline), fill="url(#rail)")
    for y in (86.5, 116.5):
        body += path(f"M999,{y} H1012", stroke=RED, stroke_opacity=0.4)
    return body


def rulers():
    """Quiet scales along the edges, where no widget stands."""
    body = path(ticks(10, 200, 41, 10, 5, 4, 9, vertical=True), stroke=RED, stroke_opacity=0.35)
    body += path(ticks(44, 661, 31, 10, 5, 4, 8, vertical=False), stroke=RED, stroke_opacity=0.35)
    body += path(hatch(888, 652, 5, 9, 9), fill=RED, fill_opacity=0.55)
    for x, y in ((30, 184), (BODY_RIGHT - 28, 184), (30, 640)):
        body += path(f"M{x - 5},{y}.5 h11 M{x}.5,{y - 5} v11", stroke=WHITE, stroke_opacity=0.28)
    return body


def edges():
    """Red edge line, a hairline inside it, and bars on the cut corners."""
    body = path(points(inset(SILHOUETTE, 1)), stroke="#000", stroke_width=2, stroke_opacity=0.6)
    body += path(points(inset(SILHOUETTE, 1.5)), stroke="url(#edge)", stroke_width=1.4)
    body += path(points(inset(SILHOUETTE, 5)), stroke=RED, stroke_width=0.7, stroke_opacity=0.28)
    body += path("M4,47.5 L33.5,18 H120", stroke=RED, stroke_width=3.4)
    body += path(f"M{BODY_RIGHT - 2},618.5 L940.5,666 H854", stroke=RED, stroke_width=3.4)
    return body


def silhouette():
    return svg(WIDTH, HEIGHT, path(points(inset(SILHOUETTE, 2)), fill="#fff"))


def centre_logo():
    """Word mark with wings. The dialog draws it ten pixels right of the middle, so it stands ten left in its picture."""
    middle, height = 110, 17
    _, width = word("OVRYN", 0, 0, height, 13, WHITE, 4.2)
    start = middle - width / 2
    mark, _ = word("OVRYN", number(start), 9, height, 13, WHITE, 4.2)
    body = mark
    for side, sign in ((start - 14, -1), (start + width + 14, 1)):
        for i, opacity in enumerate((1, 0.6, 0.3)):
            at = side + sign * i * 9
            body += path(points([(at, 9), (at + sign * 5, 9), (at - sign * 2, 26), (at - sign * 7, 26)]), fill=RED,
                         fill_opacity=opacity)
    return svg(240, 36, body)


def sliding_logo():
    """The emblem as a watermark: it comes to rest behind pages whose glass is thin."""
    body = ring(100, 100, 92, 1.2, 22, RED, 0.40)
    body += ring(100, 100, 70, 20, 12, RED_DEEP, 0.17)
    body += ring(100, 100, 80, 1, 12, RED, 0.35) + ring(100, 100, 60, 1, 12, RED, 0.35)
    body += chevron(100, 102, 72, 58, 19, WHITE, 0.16, fold="#e0b9c2")
    return svg(200, 200, body)


def icon():
    defs = (gradient("tile", [(0, "#3a0d17", 1), (0.55, "#140a0d", 1), (1, "#070506", 1)])
            + gradient("lit", [(0, "#ff3d60", 1), (1, "#f30c33", 1)]))
    tile = cut_rectangle(2, 2, 252, 252, top_left=60, bottom_right=60)
    body = path(points(tile), fill="url(#tile)", stroke=RED, stroke_width=4, stroke_opacity=0.5)
    body += ring(128, 128, 97, 33, 26, "url(#lit)")
    body += chevron(128, 133, 116, 92, 33, "#fff", fold="#e3d2d6")
    return svg(256, 256, body, defs)


def panel(width, height, cut, head, opacity):
    """Glass of a panel: cut corners at the top left and the bottom right, a red edge, a header of `head` pixels or none."""
    outline = cut_rectangle(1, 1, width - 2, height - 2, top_left=cut, bottom_right=cut)
    defs = (gradient("glass", [(0, "#260a11", opacity), (0.3, "#110a0d", opacity), (1, "#0b0709", opacity)])
            + gradient("edge", [(0, RED, 1), (0.5, RED, 0.55), (1, RED, 1)], x2=1, y2=1)
            + gradient("head", [(0, RED_DEEP, 0.42), (1, RED_DARK, 0.10)], x2=1, y2=0)
            + radial("fade", [(0, "#000", 1), (0.5, "#000", 1), (1, "#fff", 1)], width / 2, height / 2, width * 0.62,
                     height / width)
            + f'<clipPath id="shape"><path d="{points(outline)}"/></clipPath>'
            + f'<mask id="quiet"><rect width="{width}" height="{height}" fill="url(#fade)"/></mask>')
    body = path(points(outline), fill="url(#glass)")
    inside = ""
    if head:
        inside += f'<rect width="{width}" height="{head}" fill="url(#head)"/>'
        inside += path(f"M0,{head}.5 H{width}", stroke=RED, stroke_opacity=0.45)
    inside += path(hexagons(width, height, 12), stroke="#ff3a5c", stroke_opacity=0.14, stroke_width=0.7, mask="url(#quiet)")
    body += group(inside, clip_path="url(#shape)")
    body += path(points(inset(outline, 0.5)), stroke="url(#edge)", stroke_width=1.3)
    body += path(points([(1, cut + 1), (cut + 1, 1), (cut + width * 0.18, 1)], closed=False), stroke=RED, stroke_width=4)
    body += path(points([(width - 1, height - cut - 1), (width - cut - 1, height - 1), (width * 0.82 - cut, height - 1)],
                        closed=False), stroke=RED, stroke_width=4)
    body += path(hatch(width - cut - 42, height - 14, 4, 7, 6), fill=RED, fill_opacity=0.5)
    return svg(width, height, body, defs)


def images():
    """Every large image by its path under resources/images."""
    return {
        "BKImage": window_glass(),
        "maskBKImage": silhouette(),
        "centerLogo": centre_logo(),
        "logo": sliding_logo(),
        "icon": icon(),
        "SettingBKImage": panel(470, 440, 26, 46, 0.985),
        "messageBox/msgbkground": panel(420, 200, 16, 0, 0.97),
    }
