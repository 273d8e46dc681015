"""A figure: what was measured, beside its floor."""
import statistics
from dataclasses import dataclass, field


@dataclass
class Figure:
    """A ratio of what was measured to its floor; both in `unit`, with quartiles of what was measured against the floor.

    `series` has what an item takes at each size, where the figure tells of growth.
    """
    name: str
    what: str
    unit: str
    measured: float
    floor: float
    ratio: float
    low: float
    high: float
    limit: float
    series: dict[int, float] = field(default_factory=dict)

    @classmethod
    def of(cls, name, what, unit, measured, floors, limit):
        """From measurements that were made in turn; a floor that is no measurement may be one number."""
        floor = statistics.median(floors) if isinstance(floors, list | tuple) else floors
        low, _, high = (quartile / floor for quartile in statistics.quantiles(measured, n=4))
        middle = statistics.median(measured)
        return cls(name, what, unit, middle, floor, middle / floor, low, high, limit)

    @classmethod
    def of_growth(cls, name, what, unit, times, limit):
        """From what so many items took at each size: an item at the largest size against one at the smallest."""
        items = {size: [time / size for time in taken] for size, taken in sorted(times.items())}
        figure = cls.of(name, what, unit, items[max(items)], items[min(items)], limit)
        figure.series = {size: statistics.median(taken) for size, taken in items.items()}
        return figure

    @property
    def holds(self):
        return self.ratio <= self.limit


def number(value):
    return f"{value:,.0f}" if value >= 1000 else f"{value:.4g}"


def table(figures):
    lines = ["| Name | What | Measured | Floor | Ratio | Quartiles | At most |", "|---|---|---:|---:|---:|---:|---:|"]
    for figure in figures:
        mark = "" if figure.holds else " (!)"
        lines.append(f"| {figure.name} | {figure.what} | {number(figure.measured)} {figure.unit} | "
                     f"{number(figure.floor)} {figure.unit} | {figure.ratio:.2f}{mark} | "
                     f"{figure.low:.2f}–{figure.high:.2f} | {figure.limit} |")
    return "\n".join(lines)


def growth_table(figures):
    """What an item takes at each size; nothing where no figure tells of growth."""
    lines = []
    for figure in figures:
        if figure.series:
            cells = "; ".join(f"{size:,}: {time:.3g} {figure.unit}" for size, time in figure.series.items())
            lines.append(f"| {figure.name} | {cells} |")
    return "\n".join(["| Name | One item at each size |", "|---|---|", *lines]) if lines else ""
