"""What a host and an operator do at awkward moments, seen by a host that shares no code with the programs."""
import unittest

from end_to_end import OwnHostTest
from end_to_end import open_stage as setUpModule  # noqa: F401

import stage
from host import BUSY, LIMIT, OPENED, asked, good, logged_out, result
from stage import ADD_IN, CLOSE, GIVE_UP, LOGIN_FAILED, LOOKUP, WAIT_BOX, dialog_title


class Moments(OwnHostTest):
    def begin(self):
        super().begin()
        self.host = self.join()

    def assert_asked(self, layer, calls):
        self.wait_for(lambda: len(self.host.asked_by(layer)) >= len(calls), f"{len(calls)} calls")
        self.assertEqual(self.host.asked_by(layer), calls)

    def test_creation_behind_a_release_gets_a_fresh_process(self):
        """With a host that answers REGComData at once or late, and a creation that waits for the answer or doesn't."""
        layers = [result(self.host.create())]
        for late, waits in [(0, True)] * 30 + [(300, True)] * 30 + [(300, False)] * 10:
            self.assertIs(self.host.register(layers[-1]), False)
            self.host.behaviours["REGComData"] = lambda answer, late=late: self.host.later(answer, late)
            released = self.host.send(layers[-1], "Object", "Release")
            if waits:
                result(released)
            layer = result(self.host.create())
            if not waits and layer[0] == BUSY:
                layer = result(self.host.create())
            layers.append(layer)
        self.assertEqual(len({owner for owner, _ in layers}), len(layers))
        for layer in layers[:-1]:
            self.assert_asked(layer, OPENED + ["REGComData"])

    def test_login_that_is_granted_when_it_was_given_up(self):
        layer = self.host.open()
        self.dialog()
        answers = []  # kept, while the host serves other calls
        self.host.behaviours["Login"] = answers.append
        self.press(LOOKUP)
        self.close_box(WAIT_BOX, GIVE_UP, LIMIT)
        self.close_box(LOGIN_FAILED)
        # The dialog works while the host still waits.
        self.press(CLOSE)
        self.wait_for(lambda: not stage.driver.titles(ADD_IN), "the dialog to hide, and no box")
        calls = OPENED + asked("L1")[:2]
        self.assert_asked(layer, calls)
        self.host.later(answers.pop())
        self.assert_asked(layer, calls + logged_out("L1"))
        self.host.show(layer)
        stage.driver.raise_window(dialog_title())
        self.look_up()
        self.assert_asked(layer, calls + logged_out("L1") + good("L2"))


if __name__ == "__main__":
    unittest.main()
