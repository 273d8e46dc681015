"""Works through many small tasks on several displays at once, each with a bus and an installation of its own."""
import multiprocessing
import os
import signal

import interruption
from arrangement import Arrangement
from driver import Driver

WORKERS = 2


def work_off(build, folder, tasks, work, workers=WORKERS):
    """Yields what `work(arrangement, driver, task)` gives for each task, in the order in which they end."""
    context = multiprocessing.get_context("fork")
    waiting, done = context.Queue(), context.Queue()
    for task in tasks:
        waiting.put(task)
    processes = [context.Process(target=_serve, args=[build, folder / str(number), waiting, done, work], daemon=True)
                 for number in range(workers)]
    for process in processes:
        waiting.put(None)
        process.start()
    left = workers
    while left:
        kind, value = done.get()
        if kind == "failed":
            raise RuntimeError(value)
        left -= kind == "left"
        if kind == "result":
            yield value
    for process in processes:
        process.join()


def _serve(build, folder, waiting, done, work):
    arrangement = Arrangement(build, folder, own_display=True)

    def end(*_):
        """At once and whatever goes on, also inside a library that would pass over an exception."""
        for process in arrangement.processes:
            arrangement.ask_to_end(process)
        os._exit(1)

    # Ctrl+C comes to all processes of a terminal, but it is the parent that ends its workers, when it ends itself.
    interruption.ignore()
    signal.signal(signal.SIGTERM, end)
    try:
        arrangement.lay_out()
        # The add-in is started by the campaign; one that the bus started by itself would hide its end.
        for service in (folder / "services").glob("Horalink*"):
            service.unlink()
        with arrangement:
            driver = Driver(arrangement)
            while (task := waiting.get()) is not None:
                arrangement.install()
                done.put(("result", work(arrangement, driver, task)))
        done.put(("left", None))
    except Exception as error:  # pylint: disable=broad-except
        done.put(("failed", repr(error)))
        raise
