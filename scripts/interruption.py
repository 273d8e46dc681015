"""How a program of several processes takes Ctrl+C, a closed terminal or a `kill`: it clears away, and says a word."""
import signal
import sys

SIGNALS = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)
INTERRUPTED = 130  # the status that a shell gives for Ctrl+C


def run(main):
    """Gives the status of `main`, inside of which a signal is a KeyboardInterrupt. Those that follow are ignored, so
    that nothing is left of what is being cleared away."""
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
    """By a routine that does nothing: programs that are started would inherit anything else."""
    for each in SIGNALS:
        signal.signal(each, lambda *_: None)
