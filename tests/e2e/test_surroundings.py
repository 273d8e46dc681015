"""What the dialog has around it: help, its place on the screen, backgrounds, and hosts that are slow or busy."""
import unittest

import stage
from controls import DialogTest
from stage import ADD_IN, CLOCK_READ, CLOSE, LOGIN_FAILED, LOOKUP, SWITCHDESK, UPDATE, WAIT_BOX, dialog_title
from stage import open_stage as setUpModule  # noqa: F401

HELP_PAGE = "Help \u2013 The clock of a PBX"
BUSY_BOX = "Horalink \u2013 Busy"


class Help(DialogTest):
    def setUp(self):
        super().setUp()
        self.open_dialog()

    def test_controls_without_a_menu(self):
        for name, place in ((CLOSE, (0.5, 0.5)), (UPDATE, (0.5, 0.5)), ("lblBevel 2", (0.5, 0.5))):
            stage.driver.click(self.node(name), place, button=3)
        stage.driver.click(self.calendar(), button=3)
        # A menu would have taken the key.
        stage.driver.press("F1")
        self.host.wait_for_line("DisplayHelp(")
        self.assertEqual(self.boxes(), [])

    def test_f1_shows_the_opening_page_at_the_host(self):
        stage.driver.press("F1")
        self.host.wait_for_line('DisplayHelp("Horalink.hlp") -> Nothing')
        page = stage.driver.window(SWITCHDESK, HELP_PAGE)
        self.assertTrue(any(node.get_name().startswith("This window reads the clock") for node in stage.driver.nodes(page)))
        self.picture("help-page")
        stage.driver.raise_window(HELP_PAGE)
        stage.driver.press("Escape")
        self.wait_for(lambda: HELP_PAGE not in stage.driver.titles(SWITCHDESK), "the page to go")
        self.assert_usable()

    def test_help_file_that_is_missing(self):
        next(stage.arrangement.root.glob("ADDINS/HELP/*")).unlink()
        stage.driver.press("F1")
        self.host.wait_for_line("DisplayHelp(")
        self.assertNotIn(HELP_PAGE, stage.driver.titles(SWITCHDESK))
        self.assert_usable()


class Place(DialogTest):
    def place(self):
        return stage.driver.place(self.dialog())

    def close_add_in(self):
        window = f"Switchdesk \u2013 {stage.EXCHANGE}"
        stage.driver.raise_window(window)
        stage.driver.click(stage.driver.find(SWITCHDESK, "Close add-in", "push button", window=window))
        self.host.wait_for_line("# add-in has left")
        self.wait_until_gone()

    def test_position_is_kept_over_two_starts(self):
        self.open_dialog()
        first = self.place()
        stage.driver.move_window(dialog_title(), 90, 70)
        moved = self.wait_for(lambda: self.place() != first and self.place(), "the dialog to move")
        self.close_add_in()
        self.assertRegex("\n".join(self.host.lines()), r'REGComData\("Horalink", "MOVE", "[\d.]+,[\d.]+"\)')
        for again in range(2):
            stage.driver.click(stage.driver.find(SWITCHDESK, "Open clock add-in", "push button"))
            self.dialog()
            self.wait_for(lambda: self.place() == moved, f"the dialog to come back to {moved}")
            self.picture(f"place-{again + 1}")
            self.close_add_in()
            self.host.skip()

    def test_background_is_chosen_and_kept(self):
        self.open_dialog()
        self.assertIn("# SetBackGround(0) returned", self.host.all_lines())
        before = self.ground()
        stage.driver.raise_window(f"Switchdesk \u2013 {stage.EXCHANGE}")
        stage.driver.press("alt+v", "b")
        stage.driver.find(SWITCHDESK, "Sand")
        self.picture("background-menu")
        stage.driver.press("Down", "Down", "Return")
        self.host.wait_for_line("# SetBackGround(2) returned")
        stage.driver.raise_window(dialog_title())
        self.wait_for(lambda: self.ground() != before, "another background")
        sand = self.ground()
        self.picture("background")
        self.close_add_in()
        stage.arrangement.end(self.host.process)
        self.open_dialog()
        self.assertIn("# SetBackGround(2) returned", self.host.all_lines())
        self.wait_for(lambda: self.ground() == sand, "the background to be as it was chosen")

    def ground(self):
        """The colour of the dialog in a corner that only its background fills."""
        left, top, *_ = self.place()
        return stage.driver.colour(left + 12, top + 12)

    def test_window_closed_by_the_operator_tells_the_host(self):
        self.open_dialog()
        stage.driver.press("alt+F4")
        self.host.wait_for_line("UnloadChild(1) -> Nothing")
        self.host.wait_for_line("# add-in has left")
        self.wait_until_gone()
        stage.driver.click(stage.driver.find(SWITCHDESK, "Open clock add-in", "push button"))
        self.dialog()
        self.assert_usable()


class SlowHosts(DialogTest):
    def test_busy_call_comes_again(self):
        self.open_dialog("--busy=3")
        self.look_up()
        logins = [line for line in self.host.lines() if line.startswith("Login(")]
        self.assertEqual([line.rpartition(" -> ")[2] for line in logins], ["busy"] * 3 + ['"L1"'])

    def test_busy_box(self):
        self.open_dialog("--busy=60")
        self.press(LOOKUP)
        self.assertIn("is busy", self.box_text(BUSY_BOX))
        self.picture("busy")
        self.close_box(BUSY_BOX, "Cancel")
        self.assertIn("could not be reached", self.close_box(LOGIN_FAILED))
        self.host.skip()
        self.press(LOOKUP)
        # The box comes up for a host that stays busy; this one takes the call before.
        self.close_box(CLOCK_READ)
        self.assertIn("Login(\"Main Office\", <object>) -> busy", self.host.lines())

    def test_answer_that_comes_late(self):
        self.open_dialog("--answer=late:1500")
        self.press(LOOKUP)
        self.host.wait_for_line("ShowMessage(", 2)
        stage.driver.click(self.node(UPDATE, "push button"))
        self.assertEqual(self.boxes(), [])
        self.close_box(CLOCK_READ)
        self.assertEqual(sum(line.startswith("SendRequest(") for line in self.host.lines()), 1)

    def test_call_back_from_inside_the_send(self):
        """The answer is shown; the request taken behind it waits for another one until it is given up."""
        self.open_dialog("--callback-during=send", "--logins=1")
        self.press(LOOKUP)
        self.close_box(CLOCK_READ)
        self.assertIn("# SendRequest(<object>) is under way", self.host.lines())
        self.close_box(WAIT_BOX, "Cancel")
        self.assert_usable()


if __name__ == "__main__":
    unittest.main()
