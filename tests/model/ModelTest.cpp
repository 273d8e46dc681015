// The add-in against the model: whatever happens in whatever order, what must hold holds.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "model/Answer.h"
#include "model/World.h"

namespace {

using namespace model;

TEST(ModelTest, HoldsInEveryOrder) {
    rc::detail::checkGTest([] {
        const auto steps = *rc::gen::container<std::vector<Step>>(rc::gen::elementOf(AllSteps()));
        const Outcome outcome = Play(steps);
        if (!outcome.trouble.empty()) RC_FAIL(outcome.trouble + "\n" + outcome.log);
    });
}

// Found once, and shrunk; or seldom brought by chance.
TEST(ModelTest, HoldsInOrdersOfItsOwn) {
    using enum Act;
    using enum AnswerKind;
    using enum LoginKind;
    const std::vector<Step> orders[] = {
        // An answer that arrives while the window goes.
        {{Click, 1},
         {Hold, UnloadChild},
         {Pass, 1},
         {CallBack, Of(Set, Nobodys)},
         {Close},
         {CallBack, Of(Set, Nobodys)},
         {Pass, 1}},
        // A click just before the last object goes.
        {{Hold, REGComData}, {Click, 1}, {Release}, {Pass, 3}},
        // A login that is refused after it was given up.
        {{model::Act::Reply, Login * replies + int(model::Reply::Busy)},
         {Hang, Login},
         {Click, 2},
         {Pass, 1}},
        // A login that is granted after it was given up, and after others took over.
        {{CreateOther}, {GetStuck}, {Hang, Login}, {Click, 2}, {Pass, 1}, {Register, 1}, {Wake}},
        {{CreateOther}, {GetStuck}, {Hang, Login}, {Click, 2}, {Pass, 1}, {RegisterOther}, {Wake}},
        // A month without a day, and the date of today after it.
        {{Toggle, 1}, {TurnTo, 0}, {Toggle, 1}, {Pass, 2}},
    };
    for (const std::vector<Step>& order : orders) {
        const Outcome outcome = Play(order);
        EXPECT_EQ(outcome.trouble, "") << outcome.log;
    }
}

}  // namespace
