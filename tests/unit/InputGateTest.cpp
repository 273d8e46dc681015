#include <gtest/gtest.h>

#include "platform/headless/Headless.h"

using namespace platform;
using namespace platform::forms;

namespace {

struct InputGateTest : testing::Test {
    InputGateTest() {
        form.Unloaded = [this] { log += "unloaded "; };
        form.Show();
    }
    FormInput::CarryOut Note(const std::string& what) {
        return [this, what] { log += what + " "; };
    }
    // As a view does it: what is accepted is carried out at once.
    void Judge(Verdict verdict, const char* what) {
        Note(verdict == Verdict::Accepted ? what : verdict == Verdict::Refused ? "refused" : "waits")();
    }
    void Press(Control* target = nullptr) { Judge(input->Press(1, Note("press"), target), "press"); }
    void Repeat() { Judge(input->Repeat(1, Note("repeat")), "repeat"); }
    void Release() { Judge(input->Release(1, Note("release")), "release"); }
    void Act(const char* what) { input->Act(box, Note(what)); }
    std::string Log() { return std::exchange(log, ""); }
    // What is carried out when the hold is dropped, a turn later.
    std::string AfterTheHold() {
        hold.reset();
        EXPECT_EQ(log, "") << "carried out from inside the drop";
        computer.timers.Pass(0);
        return Log();
    }

    headless::Headless computer;
    Form form{u"form", computer.timers, computer.toolkit};
    CheckBox& box = form.Add<CheckBox>(u"box");
    InputGate gate{computer.timers};
    bool isCovered = false;
    std::unique_ptr<FormInput> input = std::make_unique<FormInput>(form, gate, [this] { return isCovered; });
    HandleRef hold;
    std::string log;
};

TEST_F(InputGateTest, WhatIsRefusedIsLostAndAReleaseSharesTheFateOfItsPress) {
    for (const bool holds : {false, true}) {
        if (holds) hold = gate.Hold();
        form.Enabled = false;
        Press(), Act("act"), input->Close();
        EXPECT_FALSE(form.IsCloseWaiting());
        form.Enabled = true;
        Repeat(), Release();
        box.Enabled = false;
        Act("act"), Press(&box);
        box.Enabled = true;
        Release();
        EXPECT_EQ(Log(), "refused refused refused refused refused ");
    }
    EXPECT_EQ(AfterTheHold(), "");
    Press(), Repeat(), Release(), Repeat();
    EXPECT_EQ(Log(), "press repeat release repeat ");
    Press();
    form.Enabled = false;
    Release(), Release();
    EXPECT_EQ(Log(), "press release refused ") << "the window has to know that the button is up";
    form.Enabled = true;
    Press();
    isCovered = true;
    Release();
    EXPECT_EQ(Log(), "press refused ");
}

TEST_F(InputGateTest, WhatIsAcceptedWaitsForTheLastCallAndKeepsItsOrder) {
    hold = gate.Hold();
    HandleRef second = gate.Hold();
    Press(), Release(), Act("act");
    EXPECT_EQ(Log(), "waits waits ");
    second.reset();
    computer.timers.Pass(0);
    EXPECT_FALSE(input->TakesNow());
    hold.reset();
    input->Act(box, [this] {
        Act("part");
        hold = gate.Hold();
        Act("later");
    });
    EXPECT_FALSE(input->TakesNow()) << "some still wait";
    Act("next");
    hold = gate.Hold();
    EXPECT_EQ(AfterTheHold(), "press release act part ") << "and then a call is out again";
    EXPECT_EQ(AfterTheHold(), "next later ");
    EXPECT_TRUE(input->TakesNow());
}

}  // namespace
