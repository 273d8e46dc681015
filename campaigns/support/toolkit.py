"""What the toolkit says on standard error without there being a fault."""

HARMLESS = (
    # Of a window that is hidden and shown again before the display has told that it is hidden.
    "setNetWmStateOnUnmappedWindow() called on mapped window",
    # Of an assistive program, as the driver is one, that asks for what has just gone.
    "Qt AtSpiAdaptor: Accessible invalid",
)


def without_harmless(text):
    return "".join(line for line in text.splitlines(keepends=True) if not any(each in line for each in HARMLESS))
