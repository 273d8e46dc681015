// The add-in against the model: whatever happens in whatever order, what must hold holds.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "model/World.h"

namespace {

using namespace model;

TEST(ModelTest, HoldsInEveryOrder) {
    rc::detail::checkGTest([] {
        const Outcome outcome = Play(*rc::gen::container<Steps>(rc::gen::elementOf(AllSteps())));
        if (!outcome.trouble.empty()) RC_FAIL(outcome.trouble + "\n" + outcome.log);
    });
}

// Found once, and shrunk; or seldom brought by chance.
TEST(ModelTest, HoldsInOrdersOfItsOwn) {
    const std::string set = "call back set, nobody's login";
    const Steps orders[] = {
        // An answer that arrives while the window goes.
        {"click 1", "hold UnloadChild", "pass 100 ms", set, "close the window", set, "pass 100 ms"},
        // A click just before the last object goes.
        {"hold REGComData", "click 1", "release the oldest", "pass 20 s"},
        // A login that is refused after it was given up.
        {"reply to Login BUSY", "hang in Login", "click 2", "pass 100 ms"},
        // A login that is granted after it was given up, and after others took over.
        {"create for another", "get stuck", "hang in Login", "click 2", "pass 100 ms", "register 1", "wake"},
        {"create for another", "get stuck", "hang in Login", "click 2", "pass 100 ms", "register by another",
         "wake"},
        // A wait that an answer to an earlier request interrupts can still be given up.
        {"click 2", "pass 100 ms", "pass 20 s", "give up", "click 2", "pass 100 ms",
         "call back read, login given up", "pass 20 s", "give up"},
        // A host that dies before it names an answer's login.
        {"hold LoginID", "click 1", "pass 20 s", "call back without ExtraData, nobody's login",
         "call back with ErrCode 99, current login", "answer inside ShowResults", "hang in ShowMessage",
         "call back with ErrCode Null, current login", "die while another is there"},
        // A click that waits while another one fails because the host has died.
        {"create for another", "hang in ShowMessage", "click 1", "pass 100 ms", "click 1", "hold CMD",
         "call back with ErrCode 7, login given up", "die alone", "click 0", "pass 1 s"},
        // A host that dies before the logins of two answers are read, one of which the operator gives up.
        {"answer inside ShowMessage", "click 1", "hang in ShowResults", "hold ShowResults", "pass 100 ms",
         "call back with a read-only Message, login given up", "call back without Count, nobody's login",
         "hang in ShowMessage", "call back refused, nobody's login", "die while another is there"},
        // A month without a day, and the date of today after it.
        {"toggle 1", "turn to month 0", "click 1", "toggle 1", "pass 1 s"},
        // The ends of the years.
        {"toggle 1", "turn to month 2", "close the box", "choose day 0", "turn to month 5", "choose day 0",
         "turn to month 3", "close the box", "choose day 0", "turn to month 4"},
    };
    for (const Steps& order : orders) {
        const Outcome outcome = Play(order);
        EXPECT_EQ(outcome.trouble, "") << outcome.log;
    }
}

}  // namespace
