"""Memory looked after by valgrind, over one whole life: a start, a lookup, an update, a background, and the end.

Nothing is read that was never written, nothing is used that is gone, and in the end nothing is lost. What fontconfig and
the libraries below it keep for as long as the process lives is theirs.
"""
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent / "support"))
import campaign  # noqa: E402
from arrangement import Arrangement  # noqa: E402
from contract import METHOD  # noqa: E402
from driver import Driver, Role  # noqa: E402
from peers import Operator  # noqa: E402
from plain_life import SUCCESS, PlainLife  # noqa: E402
from stage import ADD_IN, LOOKUP, UPDATE  # noqa: E402

PATIENCE = 60  # seconds; under valgrind all takes about 30 times as long
SUPPRESSED = Path(__file__).parent / "support/memcheck.supp"


def press(life, button):
    driver = life.operator.driver
    driver.aim(driver.find(ADD_IN, button, Role.PUSH_BUTTON, PATIENCE))
    life.request()
    life.end_request(SUCCESS)
    life.wait(life.operator.close_boxes, "the answer's box", PATIENCE)
    life.wait(lambda: not life.operator.boxes(), "the answer's box to close", PATIENCE)


def live(life, told):
    life.open(under=["valgrind", "--error-exitcode=9", "--leak-check=full", "--errors-for-leak-kinds=definite",
                     f"--suppressions={SUPPRESSED}", "--num-callers=30", f"--log-file={told}"])
    for button in (LOOKUP, UPDATE):
        press(life, button)
    life.tell(life.anchor, life.layers[0], "SetBackGround", METHOD, [("n", 1)], "SetBackGround")
    life.settle()
    life.release_all()


def main():
    parser = campaign.arguments("memcheck", __doc__)
    options = campaign.parse(parser)
    report = campaign.Report("memcheck", options, "What valgrind says")
    with Arrangement(campaign.BUILD, campaign.BUILD / "campaigns/memcheck", own_display=True).lay_out() as arrangement:
        told = arrangement.folder / "valgrind.txt"
        life = PlainLife(arrangement, Operator(Driver(arrangement)), report, options.seed,
                         arrangement.folder / "errors.txt")
        with life.lived("under valgrind"):
            live(life, told)
        summary = ""
        for line in told.read_text(encoding="utf-8").splitlines():
            if "ERROR SUMMARY" in line or "definitely lost" in line:
                report.row(line.partition("==")[2].partition("== ")[2].strip())
                summary = report.rows[-1][0]
        if "ERROR SUMMARY: 0 errors" not in summary:
            report.fault("valgrind doesn't tell of 0 errors in the end")
    return report.finish(summary.removeprefix("ERROR SUMMARY: ").partition(" (")[0])


if __name__ == "__main__":
    sys.exit(campaign.run(main))
