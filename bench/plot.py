"""The figures as a picture: a bar for each ratio, its spread as a line, its limit as a mark."""
from html import escape

ROW, LEFT, WIDTH, TOP = 30, 300, 420, 36


def plot(figures):
    largest = max([2.0] + [max(figure.ratio, figure.high, figure.limit) for figure in figures])

    def x(ratio):
        return LEFT + WIDTH * ratio / largest

    height = TOP + ROW * len(figures) + 12
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{LEFT + WIDTH + 80}" height="{height}" '
             'font-family="sans-serif" font-size="13">',
             f'<rect width="100%" height="100%" fill="white"/>',
             f'<line x1="{x(1):.1f}" y1="{TOP - 10}" x2="{x(1):.1f}" y2="{height - 8}" stroke="#999"/>',
             f'<text x="{x(1):.1f}" y="{TOP - 16}" text-anchor="middle" fill="#555">floor = 1</text>']
    for row, figure in enumerate(figures):
        y = TOP + ROW * row
        colour = "#4a7dac" if figure.holds else "#b5482f"
        middle = y + 9
        parts += [
            f'<text x="{LEFT - 10}" y="{y + 14}" text-anchor="end">{escape(figure.what)}</text>',
            f'<rect x="{LEFT}" y="{y}" width="{x(figure.ratio) - LEFT:.1f}" height="18" fill="{colour}"/>',
            f'<line x1="{x(figure.low):.1f}" y1="{middle}" x2="{x(figure.high):.1f}" y2="{middle}" stroke="black"/>',
            f'<line x1="{x(figure.limit):.1f}" y1="{y - 4}" x2="{x(figure.limit):.1f}" y2="{y + 22}" '
            'stroke="#b5482f" stroke-dasharray="3 2"/>',
            f'<text x="{x(max(figure.ratio, figure.high)) + 6:.1f}" y="{y + 14}">{figure.ratio:.2f}</text>',
        ]
    return "\n".join([*parts, "</svg>", ""])
