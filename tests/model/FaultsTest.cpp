// What becomes of a request when its host fails it, in each state: the tables of docs/faults.md.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

#include "model/Answer.h"
#include "model/World.h"

namespace {

using namespace model;
using enum Act;
using Steps = std::vector<Step>;
using States = std::vector<std::string>;

const Step lookUp{Click, 2}, tick{Pass, 1}, limit{Pass, 3};
const Step answer{CallBack, Of(AnswerKind::Read, LoginKind::Current)};

struct State {
    const char *name, *what;
    Steps way;  // the last Hold keeps the add-in inside the call that the state is about
};
const State states[] = {
    {"idle", "Nothing is under way.", {}},
    {"hidden", "The operator has hidden the dialog by its own button.", {{Click, 0}, tick}},
    {"armed", "A button was pressed; its work begins within a tenth of a second.", {lookUp}},
    {"asking", "The add-in reads `oPBX` of the host object.", {{Hold, oPBX}, lookUp, tick}},
    {"logging in", "It is inside `Login`.", {{Hold, Login}, lookUp, tick}},
    {"reporting the login",
     "It is inside the `ShowMessage` that follows `Login`.",
     {{Hold, ShowMessage}, lookUp, tick}},
    {"sending", "It is inside `SendRequest`.", {{Hold, SendRequest}, lookUp, tick}},
    {"reporting acceptance",
     "It is inside the `ShowMessage` that follows `SendRequest`.",
     {{Reply, ShowMessage* replies}, {Hold, ShowMessage}, {Hold, ShowMessage}, lookUp, tick, {GoOn}}},
    {"waiting", "The host has the request; the dialog is disabled.", {lookUp, tick}},
    {"asked", "As waiting; a box asks the operator whether to go on waiting.", {lookUp, tick, limit}},
    {"reading", "Inside `CallBack`, it reads `Count` of the answer.", {lookUp, tick, {Hold, Count}, answer}},
    {"reporting results",
     "Inside `CallBack`, it is inside `ShowResults`.",
     {lookUp, tick, {Hold, ShowResults}, answer}},
    {"logging out", "Inside `CallBack`, it is inside `LogOut`.", {lookUp, tick, {Hold, LogOut}, answer}},
    {"answered",
     "`CallBack` is done; the answer is shown within a tenth of a second.",
     {lookUp, tick, answer}},
    {"showing", "The box with the answer is open.", {lookUp, tick, answer, tick}},
    {"failed",
     "The box about the failed login is open.",
     {{Reply, Login* replies + int(model::Reply::Raises)}, lookUp, tick}},
};

const States results = {"logging in", "sending"},
             calls = {"asking",     "logging in",           "reporting the login",
                      "sending",    "reporting acceptance", "reporting results",
                      "logging out"};
States And(States all, std::initializer_list<const char*> more) {
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

struct Fault {
    const char *name, *what;
    Steps steps;                  // after the way to the state
    States in = {};               // every state where it is empty
    std::optional<Act> act = {};  // in place of the Hold
    model::Reply reply = {};      // where that is Reply
};
const Fault faults[] = {
    {"goes on", "No fault, for comparison.", {}},
    {"dies", "The host's process ends while another client holds the add-in.", {{Die, 1}}},
    {"dies alone", "The host's process ends, and nobody else holds the add-in.", {{Die, 0}}},
    {"hangs",
     "The call that the add-in is inside of isn't answered until the operator gives up; then it is.",
     {},
     And(calls, {"reading"}),
     Hang},
    {"doesn't answer",
     "`CallBack` doesn't come, and the operator gives up.",
     {limit, {GiveUp}},
     {"waiting", "asked"}},
    {"refuses with BUSY", "The call gives “BUSY”.", {}, results, Reply, model::Reply::Busy},
    {"refuses with ERROR", "The call gives “ERROR”.", {}, results, Reply, model::Reply::Error},
    {"refuses with nothing", "The call gives the empty text.", {}, results, Reply, model::Reply::Empty},
    {"is busy once", "The bus says busy the first time.", {}, calls, Reply, model::Reply::RefusedAsBusy},
    {"raises", "The call fails with a run-time error.", {}, calls, Reply, model::Reply::Raises},
    {"gives another type",
     "The call gives a number in place of an object, or an object in place of a text.",
     {},
     And(results, {"asking"}),
     Reply,
     model::Reply::Object},
    {"answers at once", "`CallBack` comes before `SendRequest` has ended.", {}, {"sending"}, AnswerEarly},
    {"answers now",
     "`CallBack` brings a good answer under a login that the host never gave.",
     {{CallBack, Of(AnswerKind::Read, LoginKind::Nobodys)}}},
    {"answers with holes",
     "`CallBack` brings an answer that has no `Count`.",
     {{CallBack, Of(AnswerKind::NoCount, LoginKind::Current)}},
     {"waiting", "asked"}},
    {"answers with nothing",
     "`CallBack` brings no object.",
     {{CallBack, Of(AnswerKind::Nothing, LoginKind::Nobodys)}}},
    {"answers after giving up",
     "The operator gives up and presses again; `CallBack` brings the first answer, and then the second.",
     {{GiveUp}, lookUp, tick, {CallBack, Of(AnswerKind::Read, LoginKind::GivenUp)}},
     {"asked"}},
    {"lets go", "The host gives back its last object of the add-in.", {{Release, 0}}},
    {"registers again", "The host registers another exchange with the same dialog.", {{Register, 1}}},
};

bool Applies(const Fault& fault, const State& state) {
    return fault.in.empty() || std::find(fault.in.begin(), fault.in.end(), state.name) != fault.in.end();
}

// After a lookup that went well; in the end all goes its way.
Steps OrderOf(const Fault& fault, const State& state) {
    Steps order{lookUp, tick, answer, tick, {CloseBox}};
    order.insert(order.end(), state.way.begin(), state.way.end());
    const auto hold =
        std::find_if(order.rbegin(), order.rend(), [](const Step& each) { return each.act == Hold; });
    if (fault.act) *hold = {*fault.act, *fault.act == Reply ? hold->n * replies + int(fault.reply) : hold->n};
    order.insert(order.end(), fault.steps.begin(), fault.steps.end());
    return order;
}

// In words, what the operator has seen by the end.
std::string OutcomeOf(const Fault& fault, const State& state) {
    const auto [trouble, all] = Play(OrderOf(fault, state));
    EXPECT_EQ(trouble, "") << fault.name << " " << state.name << "\n" << all;
    std::string log = all;
    // Without the lookups at the beginning and at the end.
    log = log.substr(log.find("close the box"), log.find("a last lookup") - log.find("close the box"));
    const auto count = [&](const std::string& words) {
        int found = 0;
        for (std::size_t at = 0; (at = log.find(words, at)) != std::string::npos; ++at) ++found;
        return found;
    };
    if (log.find("the process ends") < log.find("in the end")) return "The process ends.";
    std::string outcome;
    if (count("  gives up")) outcome += "The operator is asked, and gives up. ";
    if (count("box: login failed")) outcome += "A box says that the login failed. ";
    if (count("box: not read")) outcome += "A box says that reading failed. ";
    if (const int answers = count("box: clock"))
        outcome += answers > 1 ? "Both answers are shown. " : "The answer is shown. ";
    if (outcome.empty()) return count("click 2") ? "The request ends without a box." : "Nothing is seen.";
    return outcome.substr(0, outcome.size() - 1);
}

void Row(std::ostream& page, std::initializer_list<std::string> cells) {
    page << "|";
    for (const std::string& cell : cells) page << " " << cell << " |";
    page << "\n";
}

void Outcomes(std::ostream& page, const Fault& fault) {
    std::vector<std::pair<std::string, States>> rows;  // the states of each outcome
    for (const State& state : states) {
        if (!Applies(fault, state)) continue;
        const std::string outcome = OutcomeOf(fault, state);
        auto row =
            std::find_if(rows.begin(), rows.end(), [&](const auto& each) { return each.first == outcome; });
        if (row == rows.end()) row = rows.insert(rows.end(), {outcome, {}});
        row->second.push_back(state.name);
    }
    for (const auto& [outcome, in] : rows) {
        std::string names;
        for (const std::string& name : in) names += (names.empty() ? "" : ", ") + name;
        Row(page, {fault.name, in.size() == std::size(states) ? "every state" : names, outcome});
    }
}

std::string Tables() {
    std::ostringstream page;
    page << "## The states\n\n| State | What goes on |\n|---|---|\n";
    for (const State& state : states) Row(page, {state.name, state.what});
    page << "\n## The faults\n\n| Fault | What it is |\n|---|---|\n";
    for (const Fault& fault : faults) Row(page, {fault.name, fault.what});
    page << "\n## What comes of them\n\n| Fault | In the states | What comes of it |\n|---|---|---|\n";
    for (const Fault& fault : faults) Outcomes(page, fault);
    return page.str();
}

TEST(FaultsTest, ComeOutAsTheDocumentationSays) {
    std::ifstream file(FAULTS_PAGE);
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    const std::string kept = page.substr(0, page.find("## The states"));
    const std::string expected = kept + Tables();
    if (std::getenv("RECORD")) std::ofstream(FAULTS_PAGE) << expected;
    EXPECT_EQ(page, expected) << "tests/model/run --faults writes docs/faults.md anew";
}

}  // namespace
