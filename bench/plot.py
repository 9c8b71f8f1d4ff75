"""The measured times as an SVG: a panel per reader, time over rows, both on logarithmic axes."""

import math

PANEL_WIDTH, PANEL_HEIGHT = 300, 260
LEFT, TOP, BOTTOM, GAP = 60, 70, 50, 90
COLOURS = {"plugin_seconds": "#1f5fa8", "baseline_seconds": "#c2571a"}
LABELS = {"plugin_seconds": "plug-in", "baseline_seconds": "baseline in C"}


def _text(x, y, text, anchor="middle", size=12, colour="#333"):
    return (f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" font-size="{size}" '
            f'fill="{colour}">{text}</text>')


def _line(x1, y1, x2, y2):
    return (f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" stroke="#ddd"/>')


def _decades(values):
    """Powers of ten around the values; a few rows above one do not open another decade."""
    low, high = math.floor(math.log10(min(values))), math.ceil(math.log10(max(values)) - 0.01)
    return low, max(high, low + 1)


def _label_of_power(power):
    return f"{10 ** power:,}" if power >= 0 else f"{10.0 ** power:g}"


class _Panel:
    def __init__(self, left, x_range, y_range):
        self.left, self.x_range, self.y_range = left, x_range, y_range

    def x(self, value):
        low, high = self.x_range
        return self.left + (math.log10(value) - low) / (high - low) * PANEL_WIDTH

    def y(self, value):
        low, high = self.y_range
        return TOP + PANEL_HEIGHT - (math.log10(value) - low) / (high - low) * PANEL_HEIGHT

    def draw(self, name, points):
        middle = self.left + PANEL_WIDTH / 2
        parts = [_text(middle, TOP - 12, name, size=14),
                 _text(middle, TOP + PANEL_HEIGHT + 38, "rows")]
        for power in range(self.x_range[0], self.x_range[1] + 1):
            x = self.x(10 ** power)
            parts += [_line(x, TOP, x, TOP + PANEL_HEIGHT),
                      _text(x, TOP + PANEL_HEIGHT + 18, _label_of_power(power))]
        for power in range(self.y_range[0], self.y_range[1] + 1):
            y = self.y(10 ** power)
            parts += [_line(self.left, y, self.left + PANEL_WIDTH, y),
                      _text(self.left - 6, y + 4, _label_of_power(power), "end")]
        for key, colour in COLOURS.items():
            places = [(self.x(point["rows"]), self.y(point[key])) for point in points]
            path = " ".join(f"{x:.1f},{y:.1f}" for x, y in places)
            parts.append(f'<polyline points="{path}" fill="none" stroke="{colour}" '
                         'stroke-width="2"/>')
            parts += [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3.5" fill="{colour}"/>'
                      for x, y in places]
        parts += [_text(self.x(point["rows"]) - 8, self.y(point["plugin_seconds"]) - 8,
                        f'{point["ratio"]:.1f}x', "end", colour=COLOURS["plugin_seconds"])
                  for point in points]
        return parts


def svg(measured: list) -> str:
    """`measured`: the paired measurements, all steps of a reader behind one another."""
    names = list(dict.fromkeys(point["reader"] for point in measured))
    x_range = _decades([point["rows"] for point in measured])
    y_range = _decades([point[key] for point in measured for key in COLOURS])
    width = LEFT + len(names) * (PANEL_WIDTH + GAP)
    height = TOP + PANEL_HEIGHT + BOTTOM
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
             f'width="{width}" height="{height}" font-family="sans-serif">',
             f'<rect width="{width}" height="{height}" fill="#fff"/>',
             _text(LEFT, 24, "Seconds over result rows; the figures are plug-in / baseline",
                   "start", 14)]
    for place, (key, colour) in enumerate(COLOURS.items()):
        parts.append(_text(width - GAP, 20 + 18 * place, LABELS[key], "end", 13, colour))
    for place, name in enumerate(names):
        panel = _Panel(LEFT + place * (PANEL_WIDTH + GAP), x_range, y_range)
        parts += panel.draw(name, [point for point in measured if point["reader"] == name])
    return "\n".join(parts) + "\n</svg>\n"
