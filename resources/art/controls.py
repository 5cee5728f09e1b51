"""The small images: buttons, check boxes, switches, sliders, icons."""

from shapes import (GREY, INK, RED, RED_DARK, RED_DEEP, WHITE, cut_rectangle, gradient, path, points, svg, word)

STATES = {
    # suffix     line     its opacity   ground      its opacity
    "":        (WHITE,    0.92,         INK,        0.0),
    "_hover":  ("#fff",   1.0,          RED_DEEP,   0.55),
    "_press":  ("#fff",   0.9,          RED_DARK,   0.95),
}


def tool_button(size, icon, state, framed=False):
    """Icon of `size` on a ground with cut corners; at rest only a framed one shows its outline."""
    line, line_opacity, ground, ground_opacity = STATES[state]
    outline, outline_opacity = (RED, 0.9) if state else (line, 0.75 if framed else 0.0)
    body = path(points(cut_rectangle(0.5, 0.5, size - 1, size - 1, top_left=4, bottom_right=4)), fill=ground,
                fill_opacity=ground_opacity, stroke=outline, stroke_opacity=outline_opacity)
    return svg(size, size, body + f'<g fill="none" stroke="{line}" stroke-opacity="{line_opacity}" '
                                  f'stroke-width="1.6">{icon}</g>')


HEXAGON = [(9.5, 3), (15.1, 6.25), (15.1, 12.75), (9.5, 16), (3.9, 12.75), (3.9, 6.25)]
TOOL_ICONS = {
    "close": (19, '<path d="M5.5,5.5 L13.5,13.5 M13.5,5.5 L5.5,13.5"/>'),
    "minimize": (19, '<path d="M5,12 H14" stroke-width="2"/>'),
    "setting": (19, f'<path d="{points(HEXAGON)}" stroke-width="1.5"/><circle cx="9.5" cy="9.5" r="2.4" '
                    'stroke-width="1.5"/>'),
    "info": (20, '<path d="M10,9 V15 M10,5 V7" stroke-width="2"/>'),
}


def top_plate(lit, mirrored):
    """Plate of the LED and LCD buttons, 90 by 24: one end cut, the other slanted."""
    outline = [(0.5, 7.5), (7.5, 0.5), (89, 0.5), (79, 23.5), (0.5, 23.5)]
    if lit:
        defs = gradient("g", [(0, RED, 0.85), (1, RED_DARK, 0.85)])
        body = path(points(outline), fill="url(#g)", stroke="#ff5a76", stroke_opacity=0.9)
        body += path("M0.5,22.5 H79", stroke="#ffd0d8", stroke_width=2, stroke_opacity=0.9)
    else:
        defs = gradient("g", [(0, "#3a1018", 0.75), (1, "#120609", 0.75)])
        body = path(points(outline), fill="url(#g)", stroke=RED, stroke_opacity=0.55)
        body += path("M0.5,22.5 H26", stroke=RED, stroke_width=2, stroke_opacity=0.9)
    if mirrored:
        body = f'<g transform="translate(90,0) scale(-1,1)">{body}</g>'
    return svg(90, 24, body, defs)


def performance_switch(state):
    """The switch of 80 by 20. Its caption "On   Off" is written over it, so a plate of glass lies under the word in
    force: the left half for on, the right half for off. Hovering lights the edge."""
    track = points(cut_rectangle(0.5, 0.5, 79, 19, top_left=5, bottom_right=5))
    lit = state == "on"
    plate_x = 2.5 if lit else 40.5
    defs = (gradient("t", [(0, "#2a0d13", 0.85), (1, "#0e0507", 0.85)])
            + gradient("k", [(0, RED, 0.95), (1, RED_DARK, 0.95)] if lit
                       else [(0, "#6a5055", 0.8), (1, "#3c2b2f", 0.8)]))
    body = path(track, fill="url(#t)", stroke="#ff6680" if state == "over" else RED,
                stroke_opacity=0.55 if state == "off" else 1)
    body += path(points(cut_rectangle(plate_x, 2.5, 37, 15, top_left=4, bottom_right=4)), fill="url(#k)")
    return svg(80, 20, body, defs)


def lcd_switch(lit, hovered):
    """The switch of 92 by 26 on the LCD page: a small screen, bright while the LCD is on, and a track with its plate.
    It says what it switches in no language but its letters."""
    edge = "#ff8095" if hovered else RED
    screen = points(cut_rectangle(0.5, 1.5, 41, 23, top_left=5, bottom_right=5))
    track = points(cut_rectangle(48.5, 4.5, 43, 17, top_left=5, bottom_right=5))
    plate = points(cut_rectangle(72.5 if lit else 50.5, 6.5, 17, 13, top_left=4, bottom_right=4))
    if lit:
        defs = (gradient("s", [(0, RED, 0.6), (1, RED_DARK, 0.6)])
                + gradient("t", [(0, RED_DEEP, 0.75), (1, RED_DARK, 0.75)])
                + gradient("k", [(0, "#ffffff", 1), (1, "#ffc9d2", 1)]))
    else:
        defs = (gradient("s", [(0, "#1a0b0f", 0.7), (1, "#0a0405", 0.7)])
                + gradient("t", [(0, "#2a0d13", 0.85), (1, "#0e0507", 0.85)])
                + gradient("k", [(0, "#7a6065", 1), (1, "#44343a", 1)]))
    body = path(screen, fill="url(#s)", stroke=edge, stroke_opacity=1 if lit or hovered else 0.55)
    body += word("LCD", 5.6, 9, 8, 4, "#fff" if lit else GREY, 4.6)[0]
    body += path(track, fill="url(#t)", stroke=edge, stroke_opacity=1 if lit or hovered else 0.55)
    body += path(plate, fill="url(#k)")
    return svg(92, 26, body, defs)


def check_box(size, checked, hovered):
    cut = round(size * 0.22)
    body = path(points(cut_rectangle(0.5, 0.5, size - 1, size - 1, top_left=cut, bottom_right=cut)),
                fill=RED_DEEP if checked else "#000", fill_opacity=0.9 if checked else 0.45,
                stroke="#ff8095" if hovered else RED, stroke_opacity=1 if hovered or checked else 0.85)
    if hovered and not checked:
        body += path(points(cut_rectangle(3, 3, size - 6, size - 6, top_left=cut - 1, bottom_right=cut - 1)),
                     fill=RED_DEEP, fill_opacity=0.4)
    if checked:
        s = size / 18
        body += path(points([(4.2 * s, 9 * s), (7.8 * s, 12.8 * s), (14 * s, 5.2 * s)], closed=False), stroke="#fff",
                     stroke_width=2.4 * s)
    return svg(size, size, body)


def view_icon(kind, hovered):
    """What the monitor page's check box switches to: rows or graphs."""
    colour, opacity = ("#fff", 1) if hovered else (WHITE, 0.8)
    body = path(points(cut_rectangle(0.5, 0.5, 23, 23, top_left=5, bottom_right=5)), fill=RED_DEEP if hovered else INK,
                fill_opacity=0.55 if hovered else 0.5, stroke=RED, stroke_opacity=1 if hovered else 0.6)
    if kind == "rows":
        for y, end in ((7, 18), (12, 15), (17, 18)):
            body += path(f"M5.5,{y} H8", stroke=RED if not hovered else "#fff", stroke_width=2)
            body += path(f"M10,{y} H{end}", stroke=colour, stroke_opacity=opacity, stroke_width=2)
    else:
        body += path("M5.5,5.5 V18.5 H19", stroke=RED if not hovered else "#fff", stroke_width=1)
        body += path("M7,15 L10.5,10.5 L13.5,13 L18,6.5", stroke=colour, stroke_opacity=opacity, stroke_width=1.8)
    return svg(24, 24, body)


def arrow_down(hovered):
    return svg(12, 8, path("M1.5,1.5 L6,6 L10.5,1.5", stroke=RED if hovered else WHITE, stroke_width=2))


def spin_arrow(up, enabled):
    """For the small buttons of a number box."""
    colour, opacity = (WHITE, 1) if enabled else (GREY, 0.6)
    way = "M1.2,3.8 L4,1.2 L6.8,3.8" if up else "M1.2,1.2 L4,3.8 L6.8,1.2"
    return svg(8, 5, path(way, stroke=colour, stroke_opacity=opacity, stroke_width=1.4))


TRACK_WIDTH = 263   # of the slider in a row of the adjust page
TRACK_HEIGHT = 11
CAP_WIDTH = 24      # the slider begins 5 pixels inside the cap
CAP_HEIGHT = 19


def slider_cap(enabled):
    """Left end under the slider, from the row's edge on: a socket for the track."""
    colour, opacity = (RED, 0.9) if enabled else (GREY, 0.5)
    outline = cut_rectangle(2.5, 0.5, CAP_WIDTH - 3, CAP_HEIGHT - 1, top_left=5, bottom_left=5)
    body = path(points(outline), fill="#000", fill_opacity=0.45, stroke=colour, stroke_opacity=opacity * 0.7)
    body += path("M7.5,5 V14", stroke=colour, stroke_opacity=opacity, stroke_width=3)
    body += path("M12.5,6 V13", stroke=colour, stroke_opacity=opacity * 0.5, stroke_width=1)
    return svg(CAP_WIDTH, CAP_HEIGHT, body)


def slider_track(kind):
    """The track: a row of slanted cells."""
    fill = {"void": ("#ffffff", 0.10), "disable": ("#ffffff", 0.05), "full": ("url(#g)", 1)}[kind]
    defs = gradient("g", [(0, RED_DARK, 0.9), (0.5, RED_DEEP, 1), (1, "#ff3b5e", 1)], x2=1, y2=0)
    cells, x = [], 1
    while x + 7 <= TRACK_WIDTH:
        cells.append(points([(x + 2, 1), (x + 6.5, 1), (x + 4.5, TRACK_HEIGHT - 1), (x, TRACK_HEIGHT - 1)]))
        x += 6.5
    body = path(" ".join(cells), fill=fill[0], fill_opacity=fill[1])
    body += path(f"M1,{TRACK_HEIGHT - 0.5} H{TRACK_WIDTH - 2}", stroke={"full": "#ff6a84"}.get(kind, "#fff"),
                 stroke_opacity={"full": 0.9, "void": 0.25, "disable": 0.12}[kind])
    return svg(TRACK_WIDTH, TRACK_HEIGHT, body, defs)


def images():
    """Every small image by its path under resources/images."""
    pictures = {}
    for name, (size, icon) in TOOL_ICONS.items():
        for state in STATES:
            pictures[f"buttons/{name}{state}"] = tool_button(size, icon, state, framed=name == "info")
    for name, mirrored in (("first", False), ("second", True)):
        pictures[f"TopButton/{name}_off"] = top_plate(False, mirrored)
        pictures[f"TopButton/{name}_on"] = top_plate(True, mirrored)
    for state in ("off", "on", "over"):
        pictures[f"hightPerformanceSwitch/hps_{state}"] = performance_switch(state)
    for name, lit in (("off", False), ("on", True)):
        pictures[f"lcdSwitch/lcd_{name}"] = lcd_switch(lit, False)
        pictures[f"lcdSwitch/lcd_{name}_hover"] = lcd_switch(lit, True)
    pictures["messageBox/unchecked"] = check_box(18, False, False)
    pictures["messageBox/checked"] = check_box(18, True, False)
    pictures["messageBox/hover_unchecked"] = check_box(18, False, True)
    pictures["messageBox/hover_checked"] = check_box(18, True, True)
    for kind in ("rows", "graphs"):
        pictures[f"monitor/{kind}"] = view_icon(kind, False)
        pictures[f"monitor/{kind}_hover"] = view_icon(kind, True)
    pictures["checkbox/check_off"] = check_box(14, False, False)
    pictures["checkbox/check_on"] = check_box(14, True, False)
    pictures["checkbox/check_hover"] = check_box(14, False, True)
    pictures["combo/arrow_down"] = arrow_down(False)
    pictures["combo/arrow_hover"] = arrow_down(True)
    for suffix, enabled in (("", True), ("_off", False)):
        pictures["spin/arrow_up" + suffix] = spin_arrow(True, enabled)
        pictures["spin/arrow_down" + suffix] = spin_arrow(False, enabled)
    pictures["slider/background_slider"] = slider_cap(True)
    pictures["slider/disable_background_slider"] = slider_cap(False)
    for kind in ("void", "full", "disable"):
        pictures[f"slider/{kind}_slider"] = slider_track(kind)
    return pictures
