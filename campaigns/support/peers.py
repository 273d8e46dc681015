"""Those that the add-in has to do with on the bus: clients that call it, the host that it calls, and the operator."""
import random
import time
from collections import Counter

from contract import EMPTY
from driver import LIMIT, Role
from gi.repository import GLib
from stage import ADD_IN, GIVE_UP, LOOKUP
from wire import CALL, Peer

OBJECT, FACTORY = "org.velmora.Automation1.Object", "org.velmora.Automation1.Factory"
ERROR, BUSY = "org.velmora.Automation1.Error", "org.velmora.Automation1.Error.Busy"
UNKNOWN_METHOD = "org.freedesktop.DBus.Error.UnknownMethod"
HOST, EXCHANGE, RESPONSE = "/Host", "/Exchange", "/Response/"
DIALOG_TITLE = "PBX Clock ("
CLOSING = 3  # seconds; a box that is still there is looked at later


class Client(Peer):
    """A peer that calls. `held` counts its references by their paths, `pending` has what it waits for."""

    def __init__(self, address, title):
        super().__init__(address)
        self.title, self.held, self.pending = title, Counter(), {}


class Host(Client):
    """The host object, the exchange object and the answers. Honest, it keeps the contract; otherwise it raises, gives
    nonsense or takes its time as it likes."""

    def __init__(self, address, seed, retain):
        super().__init__(address, "host")
        self.random, self.retain = random.Random(seed), retain
        self.honest, self.silent = True, False
        self.kept = Counter()  # what the add-in holds, by path
        self.late, self.calls, self.logins = [], Counter(), 0
        self.dialog = self.record = None
        self.answers = {}

    def response(self, tag="LOOKUP_CLOCK", code=0, items=3):
        """The path of a new answer."""
        path = f"{RESPONSE}{len(self.answers)}"
        self.answers[path] = {"count": ("n", items), "errcode": ("i", code), "tag": ("s", tag), "message": ("s", ""),
                              "loginid": ("s", "KEY")}
        return path

    def serve(self, call):
        if call.type != CALL:
            return
        if call.member in ("Retain", "Release"):
            self.kept[call.path] += 1 if call.member == "Retain" else -1
            self.answer(call)
        elif call.member != "Invoke":
            self.refuse(call, UNKNOWN_METHOD, call.member)
        elif self.silent:
            self.late.append(call)
        else:
            self._invoke(call)

    def catch_up(self):
        """Answers what was left lying."""
        late, self.late = self.late, []
        for call in late:
            self._right(call)

    def _invoke(self, call):
        self.calls[call.body[0]] += 1
        mood = 1 if self.honest else self.random.random()
        if mood < 0.03:
            self.refuse(call, ERROR, "no", self.random.choice((5, 13, 91, 438, 440, 1004, -1, 0)))
        elif mood < 0.05:
            self.refuse(call, UNKNOWN_METHOD, "no such member")
        elif mood < 0.0505:
            self.refuse(call, BUSY, "later")
        elif mood < 0.08:
            result = self.random.choice((("s", "text"), ("i", 70000), ("(so)", (self.name, "/nowhere")), ("as", ["x"]),
                                         ("(so)", ("org.example.Nobody", "/x")), ("d", 1e300), EMPTY))
            self.answer(call, "vav", (result, call.body[2]))
        elif mood < 0.09:
            self.answer(call, "s", ("of another signature",))
        elif mood < 0.10:
            self.answer(call, "vav", (EMPTY, call.body[2] + [("s", "one too many")]))
        elif mood < 0.15:
            self.late.append(call)
        else:
            self._right(call)

    def _right(self, call):
        member, kind, arguments = call.body
        result, member = EMPTY, member.lower()
        if call.path.startswith(RESPONSE):
            result = self._of_answer(self.answers[call.path], member, arguments)
        elif member == "opbx":
            self.kept[EXCHANGE] += 1
            result = "(so)", (self.name, EXCHANGE)
        elif member in ("login", "connecttopbx"):
            self._hold("dialog", arguments[1][1])
            self.logins += 1
            result = "s", "KEY"
        elif member == "sendrequest":
            self._hold("record", arguments[0][1])
            result = "s", "TAKEN"
        self.answer(call, "vav", (result, arguments))

    def _hold(self, what, reference):
        self.retain(self, what, reference)
        setattr(self, what, reference)

    @staticmethod
    def _of_answer(answer, member, arguments):
        if member == "message" and arguments:
            answer["message"] = arguments[-1]
            return EMPTY
        if member in answer:
            return answer[member]
        if member not in ("cmd", "firstdata", "seconddata", "extradata"):
            return EMPTY
        place = arguments[0][1] % 3
        return "s", {"cmd": "02", "firstdata": str(place), "extradata": "OK",
                     "seconddata": ("2031", "11/18 TUE", "13:02:03")[place]}[member]


class Operator:
    """Looks at the screen now and then: presses buttons, and closes every box that has come up."""

    def __init__(self, driver):
        self.driver, self.closed, self.meanwhile = driver, Counter(), lambda: None

    def boxes(self):
        return [title for title in self.driver.titles(ADD_IN) if not title.startswith(DIALOG_TITLE)]

    def close_boxes(self):
        """Presses a button of each box that is open, and gives it time to close: a second click would go to what
        lies below. `meanwhile` keeps the bus served."""
        clicked = 0
        try:
            for box in [each for each in self.driver.windows(ADD_IN) if not each.get_name().startswith(DIALOG_TITLE)]:
                buttons = self.driver.buttons(box)
                if buttons:
                    title = box.get_name()
                    give_up = [node for node in buttons if node.get_name() == GIVE_UP]
                    self.driver.click((give_up or buttons)[0])
                    self.closed[title] += 1
                    clicked += 1
                    self._see_it_close(title)
        except (GLib.Error, TimeoutError, AttributeError):
            pass  # it went away while it was looked at
        return clicked

    def _see_it_close(self, title):
        end = time.monotonic() + CLOSING
        while self.driver.has_window(ADD_IN, title) and time.monotonic() < end:
            self.meanwhile()

    def press(self, button=LOOKUP):
        self.driver.click(self.driver.find(ADD_IN, button, Role.PUSH_BUTTON, seconds=LIMIT))

    def close_window(self):
        title = next(title for title in self.driver.titles(ADD_IN) if title.startswith(DIALOG_TITLE))
        self.driver.raise_window(title)
        self.driver.press("alt+F4")
