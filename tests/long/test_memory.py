"""A whole life under valgrind: nothing is read that was never written, used after its end, or lost."""
from pathlib import Path

from end_to_end import open_own_stage as setUpModule  # noqa: F401

import stage
from life import LOOKUP, UPDATE, Life


class Memory(stage.EndToEndTest):
    def test_valgrind_finds_nothing(self):
        report = stage.arrangement.folder / "valgrind.txt"
        life = Life(presses=(LOOKUP, UPDATE), patience=10, prefix=[
            "valgrind", "--leak-check=full", "--errors-for-leak-kinds=definite", "--num-callers=30", f"--log-file={report}",
            f"--suppressions={Path(__file__).with_name('memcheck.supp')}"])
        self.assertEqual((life.ill, life.status, len(life.boxes)), ("", 0, 2))
        self.assertIn("ERROR SUMMARY: 0 errors", report.read_text())
