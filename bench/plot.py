"""The figures as a picture: a bar for each ratio, its spread as a line, its limit as a mark."""
from html import escape

ROW, BAR, LEFT, WIDTH, TOP = 30, 18, 350, 420, 36
COMMON = 2  # most limits are smaller
GOOD, BAD, FAINT = "#4a7dac", "#b5482f", "#999"


def rectangle(left, top, width, height, colour):
    return f'<rect x="{left:.1f}" y="{top}" width="{width:.1f}" height="{height}" fill="{colour}"/>'


def line(left, top, right, bottom, colour, style=""):
    return f'<line x1="{left:.1f}" y1="{top}" x2="{right:.1f}" y2="{bottom}" stroke="{colour}"{style}/>'


def text(left, base, content, anchor="start"):
    return f'<text x="{left:.1f}" y="{base}" text-anchor="{anchor}">{escape(content)}</text>'


def row(figure, top, x):
    middle = top + BAR // 2
    return [
        text(LEFT - 10, top + 14, figure.what, "end"),
        rectangle(LEFT, top, x(figure.ratio) - LEFT, BAR, GOOD if figure.holds else BAD),
        line(x(figure.low), middle, x(figure.high), middle, "black"),
        line(x(figure.limit), top - 4, x(figure.limit), top + 22, BAD, ' stroke-dasharray="3 2"'),
        text(x(max(figure.ratio, figure.high, figure.limit)) + 6, top + 14, f"{figure.ratio:.2f}"),
    ]


def plot(figures):
    """Cuts off ratios far beyond the common limits, which would squeeze all others."""
    largest = max((figure.limit for figure in figures if figure.limit <= COMMON), default=COMMON) * 1.5

    def x(ratio):
        return LEFT + WIDTH * min(ratio, largest) / largest

    height = TOP + ROW * len(figures) + 12
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{LEFT + WIDTH + 80}" height="{height}" '
             'font-family="sans-serif" font-size="13">',
             '<rect width="100%" height="100%" fill="white"/>',
             line(x(1), TOP - 10, x(1), height - 8, FAINT),
             text(x(1), TOP - 16, "floor = 1", "middle")]
    for number, figure in enumerate(figures):
        parts += row(figure, TOP + ROW * number, x)
    return "\n".join([*parts, "</svg>", ""])
