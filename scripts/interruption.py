"""Lets a program of several processes end cleanly at Ctrl+C, a closed terminal or a `kill`, and report that."""
import signal
import sys

SIGNALS = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)
INTERRUPTED = 130  # the status that a shell gives for Ctrl+C


def run(main):
    """Runs `main` and returns its status. The first signal raises KeyboardInterrupt inside it; later ones are ignored,
    so that they don't stop the cleanup."""
    def interrupt(*_):
        ignore()
        raise KeyboardInterrupt

    for each in SIGNALS:
        signal.signal(each, interrupt)
    try:
        return main()
    except KeyboardInterrupt:
        print("interrupted", file=sys.stderr)
        return INTERRUPTED


def ignore():
    """Sets a handler that does nothing: started programs would inherit SIG_IGN."""
    for each in SIGNALS:
        signal.signal(each, lambda *_: None)
