"""A life in which everything goes as it should: the dialog is open, requests are pressed and answered."""
import contextlib
import os
from pathlib import Path

from contract import METHOD, NOTHING, PUT
from life import Lost
from peers import HOST
from stage import EXCHANGE
from walk import Walk

SUCCESS, MESSAGE_STANDS = 0, 99  # codes of an answer; behind the second comes no box
TICK = os.sysconf("SC_CLK_TCK")


class PlainLife(Walk):
    @contextlib.contextmanager
    def lived(self, what):
        """What keeps it from going on is a fault, with a picture of the screen; the process ends in any case."""
        try:
            yield self
        except (Lost, TimeoutError, ConnectionError) as lost:
            self.report.fault(f"{what}: {lost}{self.how_it_ended()}")
            self.operator.driver.picture(self.arrangement.folder / f"{what.replace(' ', '-')}.png")
        finally:
            self.close()

    def open(self, environment=None, under=()):
        self.start(environment, under)
        layer = self.layers[0]
        self.tell(self.anchor, layer, "RegisterPBX", METHOD,
                  [("s", EXCHANGE), ("(so)", (self.host.name, HOST)), ("n", 1)], "RegisterPBX")
        self.tell(self.anchor, layer, "Visible", PUT, [("b", True)], "Visible")
        self.settle()

    def request(self, behind_click=lambda: None):
        """A click where the pointer is, up to the wait for the answer, which begins behind the second message."""
        told = self.host.calls["ShowMessage"] + 2
        self.operator.driver.click_here()
        behind_click()
        self.wait(lambda: self.host.calls["ShowMessage"] >= told, "a request")
        self.settle()

    def answer(self, code):
        """To the request, or to none."""
        path = self.host.response(code=code)
        self.tell(self.host, self.dialog, "CallBack", METHOD, [("(so)", (self.host.name, path))], "CallBack",
                  arguments=[NOTHING])
        self.settle()
        del self.host.answers[path]

    def give_back(self, path, keep=0):
        while self.host.held[path] > keep:
            self.release(self.host, path)
        self.settle()

    def end_request(self, code):
        """The answer, and what the host has kept for it: all but the dialog once."""
        self.answer(code)
        self.give_back(self.host.record[1])
        self.give_back(self.dialog.path, keep=1)
        self.records.clear()

    def release_all(self):
        for path in list(self.host.held):
            self.give_back(path)
        self.release(self.anchor, self.layers[0].path)
        self.settle()
        self.wait_for_end()

    def processor_time(self):
        """Seconds."""
        stat = Path(f"/proc/{self.process.pid}/stat").read_text(encoding="utf-8").rpartition(")")[2].split()
        return (int(stat[11]) + int(stat[12])) / TICK
