"""Tables and figures for people."""


def table(rows):
    """The rows, lists of equally many cells, as aligned lines."""
    widths = [max(map(len, column)) for column in zip(*rows)]
    return "".join(
        "  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip() + "\n"
        for row in rows)


def milliseconds(seconds):
    return f"{seconds * 1e3:.3f} ms"


def megabytes(size):
    return f"{size / 1e6:.1f} MB"
