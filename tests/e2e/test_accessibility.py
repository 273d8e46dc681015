"""What assistive programs hear of the dialog, and that it is worked by keys alone; in another language than English."""
from datetime import date

import testbed
from driver import Atspi, GLib, Role
from testbed import ADD_IN, EXCHANGE, EndToEndTest
from testbed import set_up as setUpModule  # noqa: F401
from texts import Texts

TIME = [(Role.TEXT, "txtTime", 3), (Role.SPIN_BUTTON, "updTime", -1)] + [(Role.TEXT, "txtTime", i) for i in (2, 1, 0)]
BOXES = [(Role.CHECK_BOX, "chkTrack", -1), (Role.CHECK_BOX, "chkTrackDate", -1)]
# In the order of the keys; the calendar, which has no name of its own, comes last.
CONTROLS = [(Role.PUSH_BUTTON, "cmdButton", index) for index in (0, 1, 2)] + TIME + BOXES
LOOKUP, SPIN, MINUTE, TRACK = CONTROLS[2], TIME[1], TIME[3], BOXES[0]
LANGUAGE, DAY = "ja", "{0.year}年{0.month}月{0.day}日"


class Accessibility(EndToEndTest):
    def node(self, control):
        return testbed.driver.find(ADD_IN, self.name(control), control[0], window=self.texts.title(EXCHANGE))

    def name(self, control):
        return self.texts.control(*control[1:])

    def focused(self):
        return next((node.get_name() for node in testbed.driver.nodes(self.window)
                     if node.get_state_set().contains(Atspi.StateType.FOCUSED)), None)

    def press_tab(self):
        before = self.focused()
        testbed.driver.press("Tab")
        return self.wait_for(lambda: self.focused() != before and self.focused(), "the focus to go on")

    def press_at(self, control, key):
        name = self.name(control)
        self.wait_for(lambda: self.focused() == name or self.press_tab() == name, f"a key to lead to '{name}'")
        testbed.driver.press(key)

    def press_and_hear(self, key, role, name):
        def look():
            while GLib.MainContext.default().iteration(False):
                pass
            return self.heard[-1:] == [(role, name)]
        testbed.driver.press(key)
        self.wait_for(look, f"to hear of '{name}'")

    def test_dialog(self):
        self.heard = []
        listener = Atspi.EventListener.new(lambda event: self.heard.append(
            (event.source.get_role(), event.source.get_name())) if event.detail1 else None)
        listener.register("object:state-changed:focused")
        self.addCleanup(listener.deregister, "object:state-changed:focused")
        testbed.sandbox.language = LANGUAGE
        testbed.sandbox.speak()
        testbed.sandbox.install()
        self.texts = Texts(testbed.sandbox)
        self.start([testbed.sandbox.add_in, EXCHANGE])
        self.window = testbed.driver.window(ADD_IN, self.texts.title(EXCHANGE))
        self.wait_for(self.focused, "the dialog to have the keyboard")
        self.check_what_is_read_out()
        stops = [self.focused()] + [self.press_tab() for _ in range(len(CONTROLS) + 1)]
        names = [self.name(control) for control in CONTROLS]
        self.assertEqual(stops[:len(names)] + stops[-1:], names + names[:1], "the calendar comes after them")
        self.work_by_keys()
        self.ask_what_this_is()

    def check_what_is_read_out(self):
        nodes = list(testbed.driver.nodes(self.window))
        self.assertEqual(self.window.get_role(), Role.DIALOG)
        self.assertTrue(all(node.get_name() for node in nodes))
        self.assertFalse({node.get_role() for node in nodes} & {Role.UNKNOWN, Role.INVALID, Role.FILLER})
        self.assertTrue(any(node.get_name().startswith(DAY.format(date.today())) for node in nodes))
        for control in CONTROLS:
            self.assertEqual(self.node(control).get_description(), self.name(control))
            self.assertIs(self.node(control).get_state_set().contains(Atspi.StateType.CHECKED), control in BOXES)

    def work_by_keys(self):
        minute, spin = self.node(MINUTE), self.node(SPIN)

        def held():
            return {int(testbed.driver.value(minute)), int(Atspi.Value.get_current_value(spin))}
        self.press_at(TRACK, "space")
        self.press_at(MINUTE, "Home")
        (before,) = self.wait_for(lambda: len(both := held()) == 1 and both, "the value of the minute")
        testbed.driver.press("Up")
        self.wait_for(lambda: held() == {(before + 1) % 60}, "a step")
        self.press_at(LOOKUP, "space")
        button = testbed.driver.button(testbed.driver.box(ADD_IN, besides=[self.window.get_name()]))
        self.wait_for(lambda: testbed.driver.is_focused(button), "the default button to have the keyboard")
        testbed.driver.press("Return")
        self.wait_for(lambda: self.focused() == self.name(LOOKUP), "the keyboard to come back")

    def ask_what_this_is(self):
        item, box = (Role.MENU_ITEM, self.texts.caption("itmWhatsThis")), (Role.CHECK_BOX, self.name(TRACK))
        self.press_at(TRACK, "Shift_L")
        self.press_and_hear("Menu", *item)
        testbed.driver.find(ADD_IN, item[1], item[0])
        self.press_and_hear("Escape", *box)
        self.press_and_hear("shift+F10", *item)
        testbed.driver.press("Return")
        topic = testbed.driver.box(ADD_IN, besides=[self.window.get_name()])
        self.assertTrue(topic.get_description())
        self.press_and_hear("Shift_L", Role.DIALOG, topic.get_name())
        self.press_and_hear("Escape", *box)
