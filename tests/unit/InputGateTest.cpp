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
    Verdict Carry(Verdict verdict, const char* what) {
        if (verdict == Verdict::Accepted) Note(what)();
        return verdict;
    }
    Verdict Press(int key, const char* what) { return Carry(input->Press(key, Note(what)), what); }
    Verdict Repeat(int key, const char* what) { return Carry(input->Repeat(key, Note(what)), what); }
    Verdict Release(int key, const char* what) { return Carry(input->Release(key, Note(what)), what); }
    void ExpectAfterTheHold(const char* expected) {
        EXPECT_EQ(log, "");
        hold.reset();
        EXPECT_EQ(log, "") << "carried out from inside the drop";
        computer.timers.Pass(0);
        EXPECT_EQ(log, expected);
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

TEST_F(InputGateTest, WhatIsRefusedIsLostWhateverComesLater) {
    for (const bool holds : {false, true}) {
        if (holds) hold = gate.Hold();
        form.Enabled = false;
        EXPECT_EQ(Press(1, "press"), Verdict::Refused);
        input->Act(box, Note("act"));
        input->Close();
        EXPECT_FALSE(form.IsCloseWaiting());
        form.Enabled = true;
        EXPECT_EQ(Repeat(1, "repeat"), Verdict::Refused);
        EXPECT_EQ(Release(1, "release"), Verdict::Refused);
        box.Enabled = false;
        input->Act(box, Note("act"));
        box.Enabled = true;
    }
    ExpectAfterTheHold("");
    EXPECT_EQ(Press(1, "press"), Verdict::Accepted);
}

TEST_F(InputGateTest, WhatIsAcceptedWaitsForTheLastCallAndKeepsItsOrder) {
    hold = gate.Hold();
    HandleRef second = gate.Hold();
    EXPECT_EQ(Press(1, "press"), Verdict::Waits);
    EXPECT_EQ(Release(1, "release"), Verdict::Waits);
    input->Act(box, Note("act"));
    second.reset();
    computer.timers.Pass(0);
    EXPECT_FALSE(input->TakesNow());
    hold.reset();
    input->Act(box, Note("new"));
    hold = gate.Hold();
    ExpectAfterTheHold("press release act new ");
}

TEST_F(InputGateTest, WhatWaitsIsJudgedAgain) {
    const std::pair<const char*, std::function<void()>> meanwhile[] = {
        {"disabled", [this] { form.Enabled = false; }},
        {"covered", [this] { isCovered = true; }},
        {"hidden", [this] { form.Hide(); }},
        {"loaded again", [this] { form.Unload(), form.Show(), log.clear(), input.reset(); }},
    };
    for (const auto& [what, happens] : meanwhile) {
        SCOPED_TRACE(what);
        form.Enabled = true;
        isCovered = false;
        form.Show();
        hold = gate.Hold();
        EXPECT_EQ(Press(1, "press"), Verdict::Waits);
        EXPECT_EQ(Release(1, "release"), Verdict::Waits);
        input->Close();
        EXPECT_TRUE(form.IsCloseWaiting());
        happens();
        EXPECT_EQ(form.IsCloseWaiting(), input != nullptr) << "a form that went has nothing to close";
        ExpectAfterTheHold("");
        EXPECT_FALSE(form.IsCloseWaiting());
    }
}

TEST_F(InputGateTest, CloseWaitsAsLongAsItIsToBeSeen) {
    form.Unloading = [this](bool& cancel) {
        cancel = log.empty();
        EXPECT_EQ(form.IsCloseWaiting(), cancel) << "the second one waits";
        log += "close ";
    };
    hold = gate.Hold();
    input->Close();
    input->Close();
    form.Enabled = false;
    input->Close();
    form.Enabled = true;
    EXPECT_TRUE(form.IsCloseWaiting());
    ExpectAfterTheHold("close close unloaded ");
    form.Show();
    input->Close();
    EXPECT_EQ(log, "close close unloaded close unloaded ");
}

TEST_F(InputGateTest, WhatAPieceStartsCountsForTheNext) {
    hold = gate.Hold();
    input->Act(box, [this] {
        input->Act(box, Note("part"));
        hold = gate.Hold();
        input->Act(box, Note("later"));
    });
    input->Act(box, Note("next"));
    hold.reset();
    computer.timers.Pass(0);
    EXPECT_EQ(log, "part ");
    log.clear();
    ExpectAfterTheHold("next later ");
}

// The window learns that the button is up, though the form takes no clicks any more.
TEST_F(InputGateTest, ReleaseFollowsAPressThatWasTaken) {
    EXPECT_EQ(Press(1, "press"), Verdict::Accepted);
    form.Enabled = false;
    EXPECT_EQ(Release(1, "release"), Verdict::Accepted);
    EXPECT_EQ(Release(1, "release"), Verdict::Refused) << "a release without a press";
}

}  // namespace
