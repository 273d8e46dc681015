// Plays each row of the last table of docs/faults.md: what becomes of a request when its host fails it.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "model/World.h"

namespace {

using namespace model;

// The way to each state of the page, whose last "hold" keeps the add-in inside the call that the state is
// about.
const std::string answer = "call back read, current login", tick = "pass 100 ms", limit = "pass 20 s";
const std::vector<std::pair<std::string, Steps>> states = {
    {"idle", {}},
    {"hidden", {"click 0", tick}},
    {"armed", {"click 2"}},
    {"asking", {"hold oPBX", "click 2", tick}},
    {"logging in", {"hold Login", "click 2", tick}},
    {"reporting the login", {"hold ShowMessage", "click 2", tick}},
    {"sending", {"hold SendRequest", "click 2", tick}},
    {"reporting acceptance",
     {"reply to ShowMessage well", "hold ShowMessage", "hold ShowMessage", "click 2", tick, "go on"}},
    {"waiting", {"click 2", tick}},
    {"asked", {"click 2", tick, limit}},
    {"reading", {"click 2", tick, "hold Count", answer}},
    {"reporting results", {"click 2", tick, "hold ShowResults", answer}},
    {"logging out", {"click 2", tick, "hold LogOut", answer}},
    {"answered", {"click 2", tick, answer}},
    {"showing", {"click 2", tick, answer, tick}},
    {"failed", {"reply to Login by an error", "click 2", tick}},
};

// The faults of the page: what comes in place of the last "hold", and after the way to the state.
struct Fault {
    std::string name, inside = "hold $1";
    Steps steps = {};
};
const Fault faults[] = {
    {"goes on"},
    {.name = "dies", .steps = {"die while another is there"}},
    {.name = "dies alone", .steps = {"die alone"}},
    {"hangs", "hang in $1"},
    {.name = "doesn't answer", .steps = {limit, "give up"}},
    {"refuses with BUSY", "reply to $1 BUSY"},
    {"refuses with ERROR", "reply to $1 ERROR"},
    {"refuses with nothing", "reply to $1 nothing"},
    {"is busy once", "reply to $1 busy just now"},
    {"raises", "reply to $1 by an error"},
    {"gives another type", "reply to $1 by an object"},
    {"answers at once", "answer inside $1"},
    {.name = "answers now", .steps = {"call back read, nobody's login"}},
    {.name = "answers with holes", .steps = {"call back without Count, current login"}},
    {.name = "answers with nothing", .steps = {"call back with nothing, nobody's login"}},
    {.name = "answers after giving up",
     .steps = {"give up", "click 2", tick, "call back read, login given up"}},
    {.name = "lets go", .steps = {"release the oldest"}},
    {.name = "registers again", .steps = {"register 1"}},
};

// After a lookup that went well; in the end all goes its way.
Steps OrderOf(const Fault& fault, const Steps& way) {
    Steps order{"click 2", tick, answer, tick, "close the box"};
    order.insert(order.end(), way.begin(), way.end());
    const std::regex held("hold (.*)");
    const auto last = std::find_if(order.rbegin(), order.rend(),
                                   [&](const std::string& step) { return std::regex_match(step, held); });
    if (last != order.rend()) *last = std::regex_replace(*last, held, fault.inside);
    order.insert(order.end(), fault.steps.begin(), fault.steps.end());
    return order;
}

// In words, what the operator has seen by the end.
std::string OutcomeOf(const Fault& fault, const Steps& way) {
    const auto [trouble, all] = Play(OrderOf(fault, way));
    EXPECT_EQ(trouble, "") << fault.name << "\n" << all;
    // Without the lookups at the beginning and at the end.
    const auto begin = all.find("close the box");
    const std::string log = all.substr(begin, all.find("a last lookup") - begin);
    const auto count = [&](const char* words) {
        const std::regex sought(words);
        return std::distance(std::sregex_iterator(log.begin(), log.end(), sought), std::sregex_iterator());
    };
    if (log.find("the process ends") < log.find("in the end")) return "The process ends.";
    std::string outcome;
    if (count("  gives up")) outcome += " The operator is asked, and gives up.";
    if (count("box: login failed")) outcome += " A box says that the login failed.";
    if (count("box: not read")) outcome += " A box says that reading failed.";
    if (const auto answers = count("box: clock"))
        outcome += answers > 1 ? " Both answers are shown." : " The answer is shown.";
    if (outcome.empty()) return count("click 2") ? "The request ends without a box." : "Nothing is seen.";
    return outcome.substr(1);
}

TEST(FaultsTest, ComeOutAsTheDocumentationSays) {
    std::ifstream file(FAULTS_PAGE);
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    const std::regex comma(", "), row("\\| ([a-z][^|]+) \\| ([^|]+) \\| ([^|]+) \\|\n");
    std::set<std::string> named;
    for (std::sregex_iterator each(page.begin(), page.end(), row), end; each != end; ++each) {
        const std::string name = (*each)[1], all = (*each)[2];
        const auto fault = std::ranges::find(faults, *named.insert(name).first, &Fault::name);
        ASSERT_NE(fault, std::end(faults)) << name;
        std::set<std::string> in(std::sregex_token_iterator(all.begin(), all.end(), comma, -1), {});
        for (const auto& [state, way] : states)
            if (in.erase(state) > 0 || in.contains("every state")) {
                EXPECT_EQ(OutcomeOf(*fault, way), (*each)[3].str()) << name << " while " << state;
            }
        in.erase("every state");
        EXPECT_TRUE(in.empty()) << "no such state: " << *in.begin();
    }
    EXPECT_EQ(named.size(), std::size(faults));
    for (const auto& [state, way] : states) EXPECT_NE(page.find("\n| " + state + " | "), page.npos) << state;
}

}  // namespace
