"""The pointer, as the screen shows it."""
import ctypes


class _Image(ctypes.Structure):
    """XFixesCursorImage."""
    _fields_ = [("x", ctypes.c_short), ("y", ctypes.c_short), ("width", ctypes.c_ushort), ("height", ctypes.c_ushort),
                ("xhot", ctypes.c_ushort), ("yhot", ctypes.c_ushort), ("serial", ctypes.c_ulong),
                ("pixels", ctypes.POINTER(ctypes.c_ulong)), ("atom", ctypes.c_ulong), ("name", ctypes.c_char_p)]


def picture():
    """Its points, one after the other."""
    x11, fixes = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXfixes.so.3")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    fixes.XFixesGetCursorImage.restype = ctypes.POINTER(_Image)
    display = ctypes.c_void_p(x11.XOpenDisplay(None))
    found = fixes.XFixesGetCursorImage(display)
    points = found[0].pixels[:found[0].width * found[0].height]
    x11.XFree(found)
    x11.XCloseDisplay(display)
    return points
