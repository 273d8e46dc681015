"""What assistive programs are told of the dialog, and that it is worked by keys alone; in two languages."""
import contextlib
import unittest
from datetime import date

from end_to_end import open_stage as setUpModule  # noqa: F401

import stage
from driver import Atspi, GLib, Role
from stage import ADD_IN, EXCHANGE, EndToEndTest
from texts import Texts

BUTTONS = [(Role.PUSH_BUTTON, "cmdButton", index) for index in (0, 1, 2)]
TIME = [(Role.TEXT, "txtTime", 3), (Role.SPIN_BUTTON, "updTime", -1)] + [(Role.TEXT, "txtTime", index) for index in (2, 1, 0)]
BOXES = [(Role.CHECK_BOX, "chkTrack", -1), (Role.CHECK_BOX, "chkTrackDate", -1)]
STOPS = len(BUTTONS + TIME + BOXES) + 1  # the calendar has no name of its own
DAY = {"en": "{0:%A}, {0.day} {0:%B} {0.year}", "ja": "{0.year}年{0.month}月{0.day}日"}
LANGUAGES = tuple(DAY)
SAYS_NOTHING = (Role.UNKNOWN, Role.INVALID, Role.FILLER)


class Accessibility(EndToEndTest):
    @contextlib.contextmanager
    def opened_in(self, language):
        with self.case(language):
            stage.arrangement.language = language
            stage.arrangement.speak()
            stage.arrangement.install()
            self.texts = Texts(stage.arrangement)
            self.title = self.texts.title(EXCHANGE)
            self.start([stage.arrangement.add_in, EXCHANGE])
            self.window = stage.driver.window(ADD_IN, self.title)
            self.wait_for(lambda: self.focused() is not None, "the dialog to have the keyboard")
            yield

    def node(self, role, name, index):
        return stage.driver.find(ADD_IN, self.texts.control(name, index), role, window=self.title)

    def focused(self):
        return next((node for node in stage.driver.nodes(self.window)
                     if node.get_state_set().contains(Atspi.StateType.FOCUSED)), None)

    def press_tab(self):
        before = self.focused().get_name()
        stage.driver.press("Tab")
        self.wait_for(lambda: self.focused() and self.focused().get_name() != before, "the focus to go on")
        return self.focused()

    def tab_to(self, *control):
        for _ in range(STOPS):
            if self.focused().get_name() == self.texts.control(*control[1:]):
                return
            self.press_tab()
        self.fail(f"no key leads to {control}")

    @staticmethod
    def number(node):
        return int(Atspi.Value.get_current_value(node))

    def test_roles_names_and_values(self):
        for language in LANGUAGES:
            with self.opened_in(language):
                self.assertEqual(self.window.get_role(), Role.DIALOG)
                for node in stage.driver.nodes(self.window):
                    self.assertTrue(node.get_name(), node.get_role_name())
                    self.assertNotIn(node.get_role(), SAYS_NOTHING, node.get_name())
                today = DAY[language].format(date.today())
                self.assertTrue(any(node.get_name().startswith(today) for node in stage.driver.nodes(self.window)))
                for control in BUTTONS + TIME + BOXES:
                    self.assertEqual(self.node(*control).get_description(), self.texts.control(*control[1:]))
                for box in BOXES:
                    self.assertTrue(self.node(*box).get_state_set().contains(Atspi.StateType.CHECKED))

    def test_keys_alone(self):
        for language in LANGUAGES:
            with self.opened_in(language):
                stops = [self.focused().get_name()] + [self.press_tab().get_name() for _ in range(STOPS)]
                named = [self.texts.control(*control[1:]) for control in BUTTONS + TIME + BOXES]
                self.assertEqual(stops[:len(named)], named)
                self.assertEqual(stops[-1], named[0], "only the calendar comes behind them")
                self.tab_to(*BOXES[0])
                stage.driver.press("space")
                minute, spin = self.node(Role.TEXT, "txtTime", 1), self.node(*TIME[1])
                self.tab_to(Role.TEXT, "txtTime", 1)
                self.wait_for(lambda: self.number(spin) == int(stage.driver.value(minute)), "the value of the minute")
                before = self.number(spin)
                stage.driver.press("Up")
                self.wait_for(lambda: self.number(spin) == (before + 1) % 60 == int(stage.driver.value(minute)), "a step")
                self.tab_to(*BUTTONS[2])
                stage.driver.press("space")
                box = stage.driver.box(ADD_IN, besides=[self.title])
                self.assertIn(box.get_role(), (Role.DIALOG, Role.ALERT))
                self.assertRegex("\n".join(stage.driver.texts(box)), r"\d{4}/\d\d/\d\d")
                button = stage.driver.button(box)
                self.wait_for(lambda: stage.driver.is_focused(button), "the default button to have the keyboard")
                stage.driver.press("Return")
                self.wait_for(lambda: stage.driver.titles(ADD_IN) == [self.title], "the box to close")

    def test_pop_ups(self):
        heard = []
        listener = Atspi.EventListener.new(lambda event: heard.append(
            (event.source.get_role(), event.source.get_name())) if event.detail1 else None)
        listener.register("object:state-changed:focused")
        self.addCleanup(listener.deregister, "object:state-changed:focused")

        def hear(role, name):
            def look():
                while GLib.MainContext.default().iteration(False):
                    pass
                return heard[-1:] == [(role, name)]
            self.wait_for(look, f"to hear of '{name}'")

        for language in LANGUAGES:
            with self.opened_in(language):
                self.tab_to(*BOXES[0])
                for key, leave in (("Menu", "Escape"), ("shift+F10", "Return")):
                    stage.driver.press(key)
                    hear(Role.MENU_ITEM, self.texts.caption("itmWhatsThis"))
                    stage.driver.find(ADD_IN, self.texts.caption("itmWhatsThis"), Role.MENU_ITEM)
                    stage.driver.press(leave)
                    if leave == "Escape":
                        hear(Role.CHECK_BOX, self.texts.control(*BOXES[0][1:]))
                topic = stage.driver.box(ADD_IN, besides=[self.title])
                hear(Role.DIALOG, topic.get_name())
                self.assertTrue(topic.get_description())
                stage.driver.press("Escape")
                hear(Role.CHECK_BOX, self.texts.control(*BOXES[0][1:]))


if __name__ == "__main__":
    unittest.main()
