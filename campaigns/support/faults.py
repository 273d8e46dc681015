"""The faults of a host, each with the states it can meet and the boxes that the operator then has to see.

A fault is a function that is given the scene in the state and does the harm. `meets` maps each state to the boxes
in the order in which they go, or to `gone` where the process has to end.
"""
from dataclasses import dataclass
from typing import Callable

import stage
from scene import BUSY_BOX, CLOCK_READ, INSIDE, LOGIN_FAILED, READING_FAILED, WAIT_BOX, ScriptedHost, TooLate

STATES = {
    "idle": "Nothing is under way.",
    "hidden": "The dialog has been hidden by its own button.",
    "armed": "A button was pressed; its work begins within a tenth of a second.",
    "asking": "The add-in reads `oPBX` of the host object.",
    "logging in": "It is inside `Login`.",
    "reporting the login": "It is inside the `ShowMessage` behind `Login`.",
    "sending": "It is inside `SendRequest`.",
    "reporting acceptance": "It is inside the `ShowMessage` behind `SendRequest`.",
    "waiting": "The host has the request; the dialog is disabled.",
    "asked": "As waiting; a box asks the operator whether to go on waiting.",
    "reading": "Inside `CallBack`, it reads `Count` of the answer.",
    "reporting results": "Inside `CallBack`, it is inside `ShowResults`.",
    "logging out": "Inside `CallBack`, it is inside `LogOut`.",
    "answered": "`CallBack` is done; the answer is shown within a tenth of a second.",
    "showing": "The box with the answer is open.",
    "failed": "The box that tells of a failed login is open.",
}
GONE = "gone"
NOTHING, ANSWER, FAILED, UNREADABLE = [], [CLOCK_READ], [LOGIN_FAILED], [READING_FAILED]

# What becomes of an exchange when the host plays on, and when the call it is inside of fails.
GOES_ON = {"idle": NOTHING, "hidden": NOTHING, "failed": FAILED} | dict.fromkeys(
    ["armed", *INSIDE, "waiting", "asked", "answered", "showing"], ANSWER)
CALL_FAILS = {"asking": FAILED, "logging in": FAILED, "reporting the login": NOTHING, "sending": NOTHING,
              "reporting acceptance": ANSWER, "reading": UNREADABLE, "reporting results": ANSWER, "logging out": ANSWER}
RESULT_IS_BAD = CALL_FAILS | {"reporting the login": ANSWER}  # nobody looks at the result of ShowMessage
OPERATOR_GIVES_UP = CALL_FAILS | dict.fromkeys(["reporting acceptance", "reading"], NOTHING)
STANDS_STILL = OPERATOR_GIVES_UP | dict.fromkeys(["waiting", "asked"], NOTHING)


@dataclass(frozen=True)
class Fault:
    name: str
    words: str
    meets: dict
    act: Callable
    alone: bool = False     # without another client that would keep the process
    dies: bool = False      # or never does anything again


def held(state):
    return INSIDE[state][0]


def require_in_time(scene, state):
    """Where the dialog was armed it still was so when the add-in answered the first call of the fault."""
    if state == "armed":
        told = [event.get("call") or event.get("answered") for event in scene.host.since()]
        first = next(place for place, name in enumerate(told) if str(name).startswith("t"))
        if "oPBX" in told[:first]:
            raise TooLate


# --- the host goes or stands still --------------------------------------------------------------------------

def die(scene, state):
    scene.host.kill()


def stop_briefly(scene, state):
    """While the host stands still, the add-in answers others and shows what it has to show."""
    scene.host.stop()
    if scene.frozen:
        scene.thaw()
    scene.host.skip()
    visible = scene.keeper.visible()
    scene.host.go_on()
    if visible != (state != "hidden"):
        raise AssertionError(f"Visible reads as {visible}")


def stop_until_given_up(scene, state):
    scene.host.skip()
    scene.host.stop()
    scene.take_boxes([WAIT_BOX])
    scene.host.go_on()
    has_login = state not in ("asking", "logging in", "logging out")
    if has_login:
        scene.host.wait_for_call("LogOut")
    scene.assertEqual(scene.host.calls(), ["oPBX", "LogOut"] if has_login else [])


def stop_for_ever(scene, state):
    scene.host.stop()
    if state == "idle":
        stage.driver.raise_window(stage.dialog_title())
        stage.driver.press("F1")


# --- one call goes wrong ------------------------------------------------------------------------------------

def answering(**reply):
    def act(scene, state):
        scene.host.tell("answer", member=held(state), **reply)
    return act


# Each call has its own limits here; later one limit covers them all.
BEFORE_WAITING = ("asking", "logging in", "reporting the login", "sending")


def stay_busy(scene, state):
    scene.host.tell("script", member=held(state), kind="busy", always=True)
    scene.host.tell("answer", member=held(state), kind="busy")
    scene.take_boxes([BUSY_BOX if state in BEFORE_WAITING else WAIT_BOX])
    scene.host.tell("unscript")


# --- answers at the wrong time ------------------------------------------------------------------------------

def answer_now(scene, state):
    if state == "answered":
        return answer_while_the_box_opens(scene)
    if state == "sending":
        scene.host.tell("answering", value=False)
    answer(scene)
    if state in INSIDE or state == "armed":
        scene.host.answer_to(scene.tokens[0])
    if state == "armed" and scene.host.has(call="Login"):
        raise TooLate
    if state in ("reading", "reporting results", "logging out"):
        scene.box_text(CLOCK_READ)
    return None


def answer_while_the_box_opens(scene):
    """The box of the first answer opens while the second is read."""
    scene.host.tell("hold", member="Count")
    answer(scene)
    scene.box_text(CLOCK_READ)
    scene.host.tell("answer", member="Count", kind="good")


def answer(scene, login=None):
    scene.tokens, scene.answered = [scene.host.token()], True
    scene.host.tell("callback", token=scene.tokens[0], login=login)


def request_answered_at_once(scene, state):
    """Nothing forbids it: the host has returned from SendRequest before it calls."""
    scene.host.tell("answering", value=True, delay=0)
    scene.press_lookup()


def answer_after_giving_up(scene, state):
    scene.take_boxes([WAIT_BOX])
    login = scene.host.wait_for_call("LogOut")["arguments"][1]
    scene.enter("waiting")
    scene.host.skip()
    scene.host.ask("callback", login=login)
    scene.assertEqual(scene.host.calls(), ["ShowResults", "ShowMessage", "ShowCode"])
    scene.assertNotEqual(scene.pointer(), scene.usual_pointer)


# --- references ---------------------------------------------------------------------------------------------

GONE_OBJECT = 462


def targets(scene, state):
    """What the host can use in a state: the record is lent for the length of SendRequest."""
    return ["dialog", "record"] if state == "sending" else ["dialog"]


def release_too_often(scene, state):
    """Gives back twice what it holds of the add-in's objects, and once more; it still can use them."""
    host = scene.host
    failed = host.count("layer", "Release", 3)
    if failed != [0, GONE_OBJECT, GONE_OBJECT]:
        raise AssertionError(f"releasing the layer gave {failed}")
    require_in_time(scene, state)
    for name in targets(scene, state):
        failed = host.count(name, "Retain", 1) + host.count(name, "Release", 1)
        if failed != [0, 0]:
            raise AssertionError(f"the {name} could not be retained and released: {failed}")
    if "record" in targets(scene, state):
        failed = host.count("record", "Release", 2)
        if failed != [5, 5]:
            raise AssertionError(f"releasing a record that isn't held gave {failed}")
    scene.layer_is_gone = True


def hold_for_ever(scene, state):
    for name in targets(scene, state):
        scene.host.count(name, "Retain", 3)
    require_in_time(scene, state)


def release_last(scene, state):
    """The last reference to the add-in; it still saves the window's place with the host."""
    scene.host.tell("count", token="last", target="layer", method="Release")
    scene.host.wait_for_call("REGComData")


# --- members and other clients ------------------------------------------------------------------------------

CALL, READ, WRITE, SET = 1, 2, 4, 8
NOBODY = {"reference": ["", "/"]}
NOWHERE = {"reference": [":1.999999", "/Gone"]}
MEMBERS = [
    ("dialog", "IncrementCount", CALL, []), ("dialog", "DecrementCount", CALL, []),
    ("dialog", "PBXName", WRITE, [""]), ("dialog", "PBXName", WRITE, ["Main Office"]),
    ("dialog", "FrmMove", CALL, [{"own": "/Host"}]), ("dialog", "FrmPositionSave", CALL, []),
    ("dialog", "Parent", SET, [NOBODY]), ("dialog", "Parent", SET, [{"own": "/Host"}]),
    ("dialog", "ID", WRITE, [7]), ("dialog", "ID", WRITE, ["seven"]), ("dialog", "CheckLoadError", READ, []),
    ("dialog", "BackGround", CALL, [1]), ("dialog", "TurnFlow", CALL, [True]), ("dialog", "TurnFlow", CALL, []),
    ("dialog", "NoSuchMember", CALL, []), ("dialog", "CallBack", CALL, []), ("dialog", "PBXName", 3, ["Main Office"]),
    ("layer", "RegisterPBX", CALL, ["Main Office", {"own": "/Host"}, 1]),
    ("layer", "RegisterPBX", CALL, ["Main Office"]), ("layer", "SetBackGround", CALL, [1]),
    ("layer", "Visible", WRITE, [False]), ("layer", "Visible", WRITE, [True]), ("layer", "Visible", READ, []),
]
RECORD_MEMBERS = [
    ("record", "Count", READ, []), ("record", "AddToList", CALL, ["02", "3"]), ("record", "Clear", CALL, []),
    ("record", "CMD", READ, [9]), ("record", "Tag", WRITE, [{"own": "/Host"}]), ("record", "Release", CALL, []),
]
# Answers that are none: each fails to be read, which ends the request that is under way.
NO_ANSWERS = [NOBODY, "text", NOWHERE, {"known": "dialog"}, {"own": "/Nowhere"}]


def call_every_member(scene, state):
    """Each has to be answered, with whatever."""
    calls = MEMBERS + (RECORD_MEMBERS if state == "sending" else [])
    for target, member, kind, arguments in calls:
        if state == "armed" and arguments in ([NOBODY], [""]):
            continue  # whether the tick comes before that is undone is a matter of luck
        scene.host.ask("invoke", target=target, member=member, kind=kind, arguments=arguments)
    require_in_time(scene, state)


def deliver_no_answers(scene, state):
    for answer in NO_ANSWERS:
        scene.host.ask("invoke", target="dialog", member="CallBack", kind=CALL, arguments=[answer])
    require_in_time(scene, state)


def take_over(scene, state):
    """Another host registers itself with the one dialog. The first plays on as if it had not."""
    scene.other = ScriptedHost(scene, "Warehouse").open()


ONE_CALL = "The call that the add-in is inside of"
FAULTS = [
    Fault("goes on", "No fault, for comparison.", GOES_ON, lambda scene, state: None),
    Fault("dies", "The host's process is killed while another client holds the add-in; a new host then opens it.",
          GOES_ON | dict.fromkeys(["armed", "asking", "logging in"], FAILED) |
          dict.fromkeys(["reporting the login", "sending", "reporting acceptance", "waiting", "asked", "reading"], NOTHING), die,
          dies=True),
    Fault("dies alone", "The host's process is killed, and nobody else holds the add-in.",
          dict.fromkeys(STATES, GONE), die, alone=True, dies=True),
    Fault("stops briefly", "The host's process stands still, and goes on.", GOES_ON, stop_briefly),
    Fault("stops for long", "The host's process stands still until the operator gives up waiting, and then goes on; "
          "what it was asked it answers then.", STANDS_STILL, stop_until_given_up),
    Fault("never wakes", "The host's process stands still for ever, and another host then opens the add-in. Where the "
          "dialog is idle the operator asks for the help.",
          GOES_ON | {"idle": [WAIT_BOX], "armed": [WAIT_BOX, *FAILED]} |
          {state: [WAIT_BOX, *boxes] for state, boxes in STANDS_STILL.items()}, stop_for_ever, dies=True),
    Fault("refuses with BUSY", "The call gives \u201cBUSY\u201d.", {"logging in": NOTHING, "sending": NOTHING},
          answering(kind="text", text="BUSY")),
    Fault("refuses with ERROR", "The call gives \u201cERROR\u201d.", {"logging in": NOTHING, "sending": NOTHING},
          answering(kind="text", text="ERROR")),
    Fault("refuses with nothing", "The call gives the empty text.", {"logging in": NOTHING, "sending": NOTHING},
          answering(kind="text")),
    Fault("is busy once", f"{ONE_CALL} is refused as busy the first time.",
          {state: ANSWER for state in INSIDE}, answering(kind="busy")),
    Fault("stays busy", f"{ONE_CALL} is refused as busy each time, until the operator gives up.", OPERATOR_GIVES_UP,
          stay_busy),
    Fault("raises", f"{ONE_CALL} fails with a run-time error.", CALL_FAILS, answering(kind="raise", number=1004)),
    Fault("lacks the member", f"{ONE_CALL} is answered as if there were no such member.", CALL_FAILS,
          answering(kind="lack")),
    Fault("gives a text", f"{ONE_CALL} gives a text where an object or a number is wanted.",
          {"asking": FAILED, "reading": UNREADABLE}, answering(kind="text", text="no object")),
    Fault("gives an object", f"{ONE_CALL} gives an object where a text or a number is wanted.",
          {state: boxes for state, boxes in RESULT_IS_BAD.items() if state != "asking"}, answering(kind="object")),
    Fault("gives a strange type", f"{ONE_CALL} gives a type that no value of the contract has.", CALL_FAILS,
          answering(kind="strange")),
    Fault("answers emptily", f"{ONE_CALL} is answered by a message without a body.", CALL_FAILS,
          answering(kind="empty")),
    Fault("answers with a bare text", f"{ONE_CALL} is answered by a message with another signature.", CALL_FAILS,
          answering(kind="bare")),
    Fault("gives back too much", f"{ONE_CALL} gives back more arguments than were passed.", CALL_FAILS,
          answering(kind="surplus")),
    Fault("answers at once", "The next request is answered at once: `CallBack` follows right behind the answer to "
          "`SendRequest`.", {"idle": ANSWER},
          request_answered_at_once),
    Fault("answers now", "The host calls `CallBack` with a good answer, and otherwise goes on.",
          GOES_ON | {"idle": ANSWER, "hidden": ANSWER, "failed": [CLOCK_READ, LOGIN_FAILED]} |
          dict.fromkeys(["armed", "reading", "reporting results", "logging out", "answered", "showing"], ANSWER * 2),
          answer_now),
    Fault("answers for another login", "The host calls `CallBack` with a `LoginID` that it never gave.",
          {"waiting": ANSWER}, lambda scene, state: answer(scene, login="L0")),
    Fault("answers after giving up", "The operator gives up waiting and presses again. The host then calls `CallBack` "
          "under the login that was given up, and later under that of the new request.",
          {"asked": ANSWER}, answer_after_giving_up),
    Fault("releases too often", "The host gives back its reference to the add-in, and twice more, and references to "
          "the record that it never had.", GOES_ON, release_too_often),
    Fault("lets go", "The host gives back the last reference to the add-in and answers on.",
          dict.fromkeys(STATES, GONE), release_last, alone=True),
    Fault("holds for ever", "The host retains dialog and record and never releases them; then it gives back its "
          "reference to the add-in.", GOES_ON, hold_for_ever, alone=True),
    Fault("calls every member", "The host calls every member of all objects of the add-in, with good and bad "
          "arguments.", GOES_ON, call_every_member),
    Fault("answers with nonsense", "The host calls `CallBack` with nothing, a text, and objects that aren't there.",
          GOES_ON, deliver_no_answers),
    Fault("is replaced", "Another host registers itself with the same dialog, and refuses requests under logins "
          "that it never gave.",
          GOES_ON | dict.fromkeys(["asking", "logging in", "reporting the login"], NOTHING), take_over),
]
