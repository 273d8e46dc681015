"""Every fault of a host in every state of a request: what becomes of the dialog, the process and its references.

A cell is one fault in one state; --only STATE/FAULT takes one again, STATE or /FAULT all of these, and a list of them,
with commas, these in a row.
Behind each cell the operator has seen the boxes that the table of faults tells and no other, the next lookup shows
the answer to this very request, no reference is left on either side, or the process is gone with a good status.
"""
import argparse
import random
import sys
import time
import traceback
from dataclasses import dataclass
from pathlib import Path

import campaign

sys.path.insert(0, str(Path(__file__).parent / "support"))
from faults import ANSWER, FAILED, FAULTS, GONE, NOTHING, STATES, UNREADABLE, TooLate  # noqa: E402
from scene import BUSY_BOX, INSIDE, WAIT_BOX, Scene, take_stage  # noqa: E402
from side_by_side import work_off  # noqa: E402

SHARED = 6  # cells that one process of the add-in goes through
SAMPLE = 80
WORKERS = 5  # most of the time they wait for limits of the add-in
BY_NAME = {fault.name: fault for fault in FAULTS}
SLOW = ("stops for long", "never wakes", "stays busy")  # these too
ATTEMPTS = 5  # at a state that lasts for a tenth of a second
FAULTS_PAGE = campaign.BUILD / "campaigns/states/faults.md"  # becomes that of the manuals by campaigns/run --record


@dataclass
class Result:
    state: str
    fault: str
    words: str
    seconds: float
    trouble: str = ""
    cells: str = ""  # this one behind those that the same process has gone through


# --- one cell -------------------------------------------------------------------------------------------------

def play(scene, state, fault):
    """One cell, in a scene whose curtain is up. Returns the boxes that were seen, or that the process is gone."""
    scene.begin_cell()
    expected = fault.meets[state]
    scene.enter(state)
    if expected == NOTHING and state in INSIDE:
        scene.host.tell("answering", value=False)  # a request that counts as refused gets no answer
    fault.act(scene, state)
    if scene.frozen:
        scene.thaw()
    if expected == GONE:
        scene.wait_for(scene.is_gone, "the add-in to end")
        return GONE
    if not fault.dies:
        scene.play_on(state)
    if expected == NOTHING and state == "reporting the login" and scene.host_goes_on(fault.dies):
        scene.host.wait_for_call("SendRequest")  # sent all the same; the host must not answer it yet
    if expected == NOTHING and state in INSIDE and scene.other:
        scene.other.wait_for_call("LogOut")  # before the first host is back
    scene.take_boxes(expected)
    if scene.operator_was_asked():
        scene.wait_for_pointer()
    if fault.alone:
        scene.host.count("layer", "Release", 1)
        scene.wait_for(scene.is_gone, "the add-in to end")
    else:
        scene.look_over(state, fault.dies)
    return scene.seen


OUTCOMES = {
    (): "The request ends without a box.",
    tuple(ANSWER): "The answer is shown.",
    tuple(ANSWER * 2): "Both answers are shown, one after the other.",
    tuple(FAILED): "A box tells that the login failed.",
    tuple(ANSWER + FAILED): "The answer is shown, beside the box that is open.",
    tuple(UNREADABLE): "A box tells that reading failed.",
    (WAIT_BOX,): "The operator is asked once, and gives up.",
    (BUSY_BOX,): "The operator is asked once, and gives up.",
}


def words(state, fault, boxes):
    if boxes == GONE:
        return "The process ends."
    if boxes == NOTHING and state in ("idle", "hidden"):
        outcome = "Nothing is seen."
    elif len(boxes) > 1 and boxes[0] in (WAIT_BOX, BUSY_BOX):
        outcome = f"{OUTCOMES[tuple(boxes[:1])]} {OUTCOMES[tuple(boxes[1:])]}"
    else:
        outcome = OUTCOMES[tuple(boxes)]
    return outcome + " Then the process ends." if fault.alone else outcome


def play_in_time(scene, state, fault):
    for _ in range(ATTEMPTS):
        try:
            return play(scene, state, fault)
        except TooLate:
            scene.close_curtain()
            scene.raise_curtain(fault.alone)
    raise AssertionError(f"the fault came too late, {ATTEMPTS} times")


# --- the cells of one task ------------------------------------------------------------------------------------

def work(arrangement, driver, cells):
    """Goes through the cells with one process after another, as few as can be."""
    take_stage(arrangement, driver)
    scene, results, behind = None, [], []
    for number, (state, name) in enumerate(cells):
        fault, began = BY_NAME[name], time.monotonic()
        boxes, trouble = fault.meets[state], ""
        try:
            if scene is None:
                scene, behind = Scene(), []
                scene.raise_curtain(fault.alone)
            behind.append(f"{state}/{name}")
            boxes = play_in_time(scene, state, fault)
            if fault.alone or boxes == GONE or number == len(cells) - 1:
                scene.close_curtain()
                scene = None
        except Exception as error:  # pylint: disable=broad-except
            traceback.print_exc()
            first = str(error).partition("\n")[0]
            trouble = f"{type(error).__name__}: {first} {photograph(arrangement, driver, state, name)}"
            sweep(scene)
            scene = None
        seconds = time.monotonic() - began
        results.append(Result(state, name, words(state, fault, boxes), seconds, trouble, ",".join(behind)))
    return results


def photograph(arrangement, driver, state, name):
    path = campaign.BUILD / "campaigns/states" / f"{state}-{name}.png".replace(" ", "-")
    try:
        driver.picture(path)
    except Exception as error:  # pylint: disable=broad-except
        return f"(no picture: {error})"
    return f"(the screen: {path})"


def sweep(scene):
    """What a failed cell left must not disturb the next one."""
    try:
        scene.leave_nothing_behind()
    except Exception:  # pylint: disable=broad-except
        traceback.print_exc()


# --- the page of faults ---------------------------------------------------------------------------------------

PAGE = """# Faults of a host

What becomes of the add-in when its host misbehaves, in every state of a request. `./campaigns/run states` brings the
add-in into each state with a host that does at each moment what it is told, does the harm, and sees all come as it
should. Unless the process ends, the next lookup has then shown the answer to this very request in the right order of
calls, the add-in has given back every reference to the host's objects and kept none of its own records, and its
process has ended with a good status when its last client went. A fault is listed with the states in which it can
occur: a call can only fail while it is under way.

- Each request here is a lookup that comes after a lookup. An answer that can't be read shows the box of the last `Tag`
  that was read: after an update it is an update's box, and as the first answer there is none.
- Once the operator has given up, the dialog is enabled with the usual pointer, and each further call of that request
  fails at once (462). `LogOut` is sent without waiting for its answer: a host that goes on gets `oPBX` and `LogOut`,
  and no other call of that request.
- An answer under a login that was given up is still reported to the host (`ShowResults`, `ShowMessage`, `ShowCode`). It
  opens no box, ends no other wait, and isn't logged out again.
- If answers arrive while an answer's box is open, the last successful one is shown after that box. An answer that
  arrives before the add-in waits for it is shown when the request ends, unless another one arrives first.

## The states

{states}

## The faults

{faults}

## What comes of them

{outcomes}
"""


def table(head, rows):
    return "\n".join(["| " + " | ".join(head) + " |", "|" + "---|" * len(head),
                      *("| " + " | ".join(row) + " |" for row in rows)])


def outcome_rows(results):
    seen = {(result.fault, result.state): result.words for result in results}
    for fault in FAULTS:
        grouped = {}
        for state in STATES:
            if state in fault.meets:
                grouped.setdefault(seen[fault.name, state], []).append(state)
        # The rule stands last, behind its exceptions.
        for outcome, states in sorted(grouped.items(), key=lambda group: len(group[1])):
            yield fault.name, named(states, fault), outcome


def named(states, fault):
    if len(states) == len(STATES):
        return "every state"
    is_rule = len(fault.meets) == len(STATES) and len(states) > len(STATES) / 2
    return "every other state" if is_rule else ", ".join(states)


def write_page(results):
    FAULTS_PAGE.write_text(PAGE.format(
        states=table(("State", "What goes on"), STATES.items()),
        faults=table(("Fault", "What it is"), ((fault.name, fault.words) for fault in FAULTS)),
        outcomes=table(("Fault", "In the states", "What comes of it"), outcome_rows(results))), encoding="utf-8")


# --- all of them ----------------------------------------------------------------------------------------------

def all_cells():
    return [(state, fault.name) for state in STATES for fault in FAULTS if state in fault.meets]


def cells_named(text):
    """What --only tells."""
    found = []
    for one in text.split(","):
        state, _, fault = one.partition("/")
        cells = [cell for cell in all_cells() if state in ("", cell[0]) and fault in ("", cell[1])]
        if not cells:
            raise argparse.ArgumentTypeError(f"there is no cell '{one}'")
        found += cells
    return found


def chosen(options):
    cells, rng = all_cells(), random.Random(options.seed)
    if options.only:
        return options.only
    if not options.short:
        return rng.sample(cells, len(cells))
    # What waits for the limits of the add-in takes too long for a sample.
    return rng.sample([cell for cell in cells if not is_slow(cell)], SAMPLE)


def is_slow(cell):
    return cell[0] == "asked" or cell[1] in SLOW


def tasks_of(cells):
    """Cells go through one process together. One that ends it, or opens a box of the wait, has it for itself: of
    windows that come and go the accessibility bus doesn't always tell the later ones."""
    alone = [[cell] for cell in cells if is_slow(cell) or BY_NAME[cell[1]].alone]
    shared = [cell for cell in cells if [cell] not in alone]
    tasks = [shared[at:at + SHARED] for at in range(0, len(shared), SHARED)] + alone
    return sorted(tasks, key=lambda task: not is_slow(task[0]))


def main():
    parser = campaign.arguments("states", __doc__)
    parser.add_argument("--only", metavar="STATE/FAULT,...", type=cells_named, help="these cells, in a row")
    options = campaign.parse(parser)
    folder = campaign.BUILD / "campaigns/states"
    folder.mkdir(parents=True, exist_ok=True)
    report = campaign.Report("states", options, "State", "Fault", "What comes of it", "Seconds")
    results = []
    for done in work_off(campaign.BUILD, folder, tasks_of(chosen(options)), work, WORKERS):
        for result in done:
            results.append(result)
            report.row(result.state, result.fault, result.trouble and "FAULT" or result.words, f"{result.seconds:.1f}")
            if result.trouble:
                report.fault(f"--only '{result.cells}': {result.trouble}")
    if not options.is_part:
        FAULTS_PAGE.unlink(missing_ok=True)
        if not report.faults:
            write_page(results)
    return report.finish(f"{len(results)} cells")


if __name__ == "__main__":
    sys.exit(campaign.run(main))
