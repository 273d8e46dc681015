"""A figure: a measurement and its floor."""
import statistics
from dataclasses import dataclass, field


@dataclass
class Figure:
    """The ratio of a measurement to its floor, both in `unit`: the median over the runs, with its quartiles.

    `series` has the time of an item at each size, if the figure is about growth.
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
        """From pairs measured in turn. A floor that isn't measured may be a single number."""
        if not isinstance(floors, list | tuple):
            floors = [floors] * len(measured)
        ratios = [value / floor for value, floor in zip(measured, floors, strict=True)]
        low, ratio, high = statistics.quantiles(ratios, n=4)
        return cls(name, what, unit, statistics.median(measured), statistics.median(floors), ratio, low, high, limit)

    @classmethod
    def of_growth(cls, name, what, unit, times, limit):
        """From the times of all items at each size: an item at the largest size against one at the smallest."""
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
    """The time of an item at each size; empty if no figure is about growth."""
    lines = []
    for figure in figures:
        if figure.series:
            cells = "; ".join(f"{size:,}: {time:.3g} {figure.unit}" for size, time in figure.series.items())
            lines.append(f"| {figure.name} | {cells} |")
    return "\n".join(["| Name | One item at each size |", "|---|---|", *lines]) if lines else ""
