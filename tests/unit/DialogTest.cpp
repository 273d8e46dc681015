#include <gtest/gtest.h>

#include "Fakes.h"

using namespace horalink;
using namespace platform;
using fakes::RecordedObject;
using Calls = std::vector<std::string>;

namespace {

// The dialog on a recorded host that accepts everything.
struct DialogTest : testing::Test {
    DialogTest() {
        data.AddInLanguageDb = computer.language;
        data.MarketCode = u"10001";
        for (int i = 0; i < 7; ++i) data.MessageTable.texts.push_back(u"entry " + DecimalText(i));
        host->answers["oPBX"] = [this](Arguments&) { return Value(exchange); };
        for (const char* member :
             {"ShowMessage", "ShowResults", "ShowCode", "UnloadChild", "TurnOnFlow", "TurnOffFlow"})
            host->answers[member] = [this, member = std::string(member)](Arguments& a) {
                told.push_back(ToUtf8(a.empty() || a.back().IsObject() ? Text() : a.back().ToText()));
                return Value();
            };
        exchange->answers["Login"] = [](Arguments&) { return Value(u"L1"); };
        exchange->answers["SendRequest"] = [this](Arguments& a) {
            request = std::dynamic_pointer_cast<cListRequest>(a[0].ToObject());
            return Value(u"taken");
        };
        exchange->answers["LogOut"] = [this](Arguments& a) {
            loggedOut.push_back(ToUtf8(a[1].ToText()));
            return Value();
        };
        computer.app.waits.pendingTimeout = 20000;
        computer.app.waits.pendingText = u"pending";
    }
    void Open() {
        form().Load();
        dialog->PutParent(host);
        dialog->PutPBXName(u"Main");
        calls.clear();
    }
    forms::Form& form() { return dialog->Window(); }
    bool Enabled(std::size_t button) { return dialog->Controls().cmdButton[button]->Enabled; }
    void Click(std::size_t button) { dialog->Controls().cmdButton[button]->Click(); }
    void PassTick() { computer.scheduler.Pass(Milliseconds(100)); }
    void Request(std::size_t button) {
        Click(button);
        PassTick();
    }
    // An answer of the host's own class, one item each.
    std::shared_ptr<RecordedObject> Response(int errCode, const char16_t* tag,
                                             std::vector<std::array<const char16_t*, 3>> items = {}) {
        auto response = std::make_shared<RecordedObject>(calls);
        auto& answers = response->answers;
        answers["Count"] = [n = items.size()](Arguments&) { return Value(static_cast<std::int16_t>(n)); };
        const char* names[] = {"FirstData", "SecondData", "ExtraData"};
        for (std::size_t k = 0; k < 3; ++k)
            answers[names[k]] = [items, k](Arguments& a) {
                return Value(items[size_t(a[0].ToInteger())][k]);
            };
        answers["CMD"] = [](Arguments&) { return Value(u"02"); };
        answers["ErrCode"] = [errCode](Arguments&) { return Value(errCode); };
        answers["Tag"] = [tag](Arguments&) { return Value(tag); };
        answers["LoginID"] = [](Arguments&) { return Value(u"L1"); };
        answers["Message"] = [this](Arguments&) { return Value(responseMessage); };
        answers["=Message"] = [this](Arguments& a) {
            responseMessage = a[0].ToText();
            return Value();
        };
        for (const auto& [name, answer] : answers) response->quiet.push_back(name);
        return response;
    }
    void Deliver(ObjectRef response) {
        dialog->CallBack(response);
        EXPECT_EQ(response, nullptr) << "the host's variable is emptied";
    }
    std::string LastBox() const {
        return computer.boxes.shown.empty() ? "" : ToUtf8(computer.boxes.shown.back().prompt);
    }
    bool IsIdle() {
        return form().Enabled && computer.screen.pointer == MousePointer::Default &&
               !dialog->Controls().tmrEvent->Enabled;
    }

    fakes::Computer computer;
    ModuleData data;
    Calls calls, told, loggedOut;
    std::shared_ptr<RecordedObject> host = std::make_shared<RecordedObject>(calls);
    std::shared_ptr<RecordedObject> exchange = std::make_shared<RecordedObject>(calls);
    std::shared_ptr<cListRequest> request;
    Text responseMessage;
    std::shared_ptr<dlgAddin> dialog = std::make_shared<dlgAddin>(computer.services, data);
};

TEST_F(DialogTest, TheNameTurnsTheButtonsOnAndOffAndStandsInTheCaption) {
    Open();
    EXPECT_TRUE(Enabled(1) && Enabled(2));
    EXPECT_EQ(form().Caption(), u"entry 4 (Main)");
    dialog->PutPBXName(u"");
    EXPECT_FALSE(Enabled(1) || Enabled(2));
    EXPECT_TRUE(Enabled(0));
    EXPECT_EQ(form().Caption(), u"entry 4 ()");
}

TEST_F(DialogTest, AGoodExchangeInOrder) {
    Open();
    Click(2);
    EXPECT_TRUE(calls.empty()) << "nothing is done inside the click";
    PassTick();
    EXPECT_EQ(calls, (Calls{"oPBX", "Login", "ShowMessage", "oPBX", "SendRequest", "ShowMessage"}));
    EXPECT_FALSE(form().Enabled);
    EXPECT_EQ(computer.screen.pointer, MousePointer::Hourglass);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->LoginID, u"L1");
    EXPECT_EQ(request->PBXName, u"Main");
    calls.clear();
    Deliver(Response(0, u"LOOKUP_CLOCK",
                     {{u"0", u"2026", u""}, {u"1", u"11/18", u""}, {u"2", u"13:02:03", u""}}));
    EXPECT_EQ(calls, (Calls{"ShowResults", "ShowMessage", "ShowCode", "oPBX", "LogOut"}));
    EXPECT_TRUE(form().Enabled);
    EXPECT_TRUE(computer.boxes.shown.empty()) << "shown by the timer, not inside the host's call";
    PassTick();
    EXPECT_EQ(LastBox(), "box 0 2026/11/18 (d4)\r\n13:02:03");
    EXPECT_TRUE(IsIdle());
    EXPECT_EQ(told, (Calls{"entry 3: L1", "entry 3: taken", "", "OK", "0"}));
}

TEST_F(DialogTest, TwoClicksWithinTheTickMakeOneRequestOfTheLaterOne) {
    Open();
    Click(2);
    computer.scheduler.Pass(Milliseconds(50));
    Click(1);
    computer.scheduler.Pass(Milliseconds(500));
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "Login"), 1);
    EXPECT_EQ(request->Tag, u"UPDATE_CLOCK");
}

TEST_F(DialogTest, ARefusedLoginTellsTheHostAndNobodyElse) {
    Open();
    for (const char16_t* refusal : {u"", u"BUSY", u"ERROR"}) {
        exchange->answers["Login"] = [refusal](Arguments&) { return Value(refusal); };
        calls.clear();
        Request(2);
        EXPECT_EQ(calls, (Calls{"oPBX", "Login", "ShowMessage"})) << ToUtf8(refusal);
        EXPECT_TRUE(IsIdle());
    }
    EXPECT_TRUE(computer.boxes.shown.empty());
}

TEST_F(DialogTest, RefusalsAreComparedExactly) {
    Open();
    for (const char16_t* key : {u"busy", u"Error", u"BUSY ", u"   "}) {
        exchange->answers["Login"] = [key](Arguments&) { return Value(key); };
        Request(2);
        EXPECT_EQ(request->LoginID, key);
        Deliver(Response(99, u""));
    }
}

TEST_F(DialogTest, ALoginThatFailsIsToldToBoth) {
    Open();
    Request(2);
    Deliver(Response(99, u""));
    exchange->answers["Login"] = [](Arguments&) -> Value { throw RuntimeError(1004, u"no"); };
    told.clear();
    Request(2);
    EXPECT_EQ(told, (Calls{"entry 3: L1"})) << "the value of the last login";
    ASSERT_EQ(computer.boxes.shown.size(), 1U);
    EXPECT_EQ(LastBox(), "entry 0");
    EXPECT_EQ(computer.boxes.shown[0].buttons, 48);
    EXPECT_EQ(computer.boxes.shown[0].title, u"entry 1");
    EXPECT_TRUE(IsIdle());
    host->answers.erase("ShowMessage");
    Request(2);
    EXPECT_EQ(computer.boxes.shown.size(), 2U) << "also where the host can't be told";
}

TEST_F(DialogTest, ARefusedSendLogsOut) {
    Open();
    const std::vector<std::pair<RecordedObject::Answer, const char*>> cases = {
        {[](Arguments&) { return Value(u"BUSY"); }, "entry 3: BUSY"},
        {[](Arguments&) { return Value(u"ERROR"); }, "entry 3: ERROR"},
        {[](Arguments&) { return Value(u""); }, "entry 3: "},
        {[](Arguments&) -> Value { throw RuntimeError(1004, u"no"); }, "entry 3: "},
        {[](Arguments&) { return Value(Null{}); }, "entry 3: "},
    };
    for (const auto& [answer, text] : cases) {
        exchange->answers["SendRequest"] = answer;
        calls.clear();
        Request(1);
        EXPECT_EQ(calls, (Calls{"oPBX", "Login", "ShowMessage", "oPBX", "SendRequest", "ShowMessage", "oPBX",
                                "LogOut"}));
        EXPECT_EQ(told.back(), text);
        EXPECT_EQ(loggedOut.back(), "L1");
        EXPECT_TRUE(IsIdle());
    }
    EXPECT_TRUE(computer.boxes.shown.empty());
}

TEST_F(DialogTest, AHostThatCannotBeToldOfTheLoginRefuses) {
    Open();
    host->answers.erase("ShowMessage");
    Request(2);
    EXPECT_EQ(loggedOut, (Calls{"L1"}));
    EXPECT_TRUE(IsIdle());
}

TEST_F(DialogTest, OutcomesOfAnAnswer) {
    Open();
    const struct {
        int errCode;
        const char16_t* before;
        const char16_t* after;
        bool shows;
    } cases[] = {
        {0, u"", u"OK", true},   {0, u"fine", u"fine", true},        {99, u"", u"", false},
        {99, u"x", u"x", false}, {7, u"x", u"entry 6 : <7>", false}, {-1, u"", u"entry 6 : <-1>", false},
    };
    for (const auto& c : cases) {
        Request(1);
        responseMessage = c.before;
        const auto shown = computer.boxes.shown.size();
        Deliver(Response(c.errCode, u"UPDATE_CLOCK"));
        PassTick();
        EXPECT_EQ(responseMessage, c.after);
        EXPECT_EQ(told[told.size() - 2], ToUtf8(c.after));
        EXPECT_EQ(told.back(), std::to_string(c.errCode));
        EXPECT_EQ(computer.boxes.shown.size(), shown + (c.shows ? 1 : 0)) << c.errCode;
        EXPECT_TRUE(IsIdle());
    }
}

TEST_F(DialogTest, TheTagAndTheItemsChooseTheBox) {
    Open();
    const struct {
        const char16_t* tag;
        std::vector<std::array<const char16_t*, 3>> items;
        const char* box;
    } cases[] = {
        {u"UPDATE_CLOCK", {}, "box 1 "},
        {u"UPDATE_CLOCK", {{u"0", u"2026", u"WRONG"}}, "box 2 \r\nCM = 02, FD = 0, SD = 2026 WRONG"},
        {u"UPDATE_CLOCK", {{u"0", u"2026", u"LNK_TIMEOUT"}}, "box 2 \r\nCM = 02, FD = 0, SD = 2026 entry 2"},
        {u"LOOKUP_CLOCK", {}, "box 3 "},
        {u"LOOKUP_CLOCK", {{u"0", u"LNK_TIMEOUT", u""}}, "box 3 "},
        {u"lookup_clock", {}, ""},
        {u"", {}, ""},
    };
    for (const auto& c : cases) {
        computer.boxes.shown.clear();
        Request(2);
        Deliver(Response(0, c.tag, c.items));
        PassTick();
        EXPECT_EQ(LastBox(), c.box) << ToUtf8(c.tag);
    }
}

TEST_F(DialogTest, AnswersWithHolesNeverLeaveTheDialogDisabled) {
    Open();
    for (const char* hole :
         {"Count", "CMD", "FirstData", "ExtraData", "ErrCode", "Tag", "LoginID", "Message", "=Message"}) {
        for (const int errCode : {0, 7}) {
            Request(1);
            ASSERT_FALSE(form().Enabled);
            const auto response = Response(errCode, u"UPDATE_CLOCK", {{u"0", u"2026", u"OK"}});
            response->answers.erase(hole);
            Deliver(response);
            EXPECT_EQ(loggedOut.back(), "L1") << hole;
            PassTick();
            EXPECT_TRUE(IsIdle()) << hole;
        }
    }
    Request(1);
    Deliver(nullptr);
    EXPECT_TRUE(form().Enabled);
}

TEST_F(DialogTest, ALogOutThatFailsLeavesTheDialogUsable) {
    Open();
    exchange->answers.erase("LogOut");
    Request(2);
    Deliver(Response(7, u""));
    EXPECT_TRUE(IsIdle());
}

TEST_F(DialogTest, TheWaitBoxIsTheWayOutOfAnAnswerThatNeverComes) {
    Open();
    Request(2);
    computer.scheduler.Pass(Milliseconds(19999));
    EXPECT_EQ(computer.waits.open, 0);
    computer.scheduler.Pass(Milliseconds(1));
    ASSERT_EQ(computer.waits.open, 1);
    EXPECT_EQ(computer.waits.texts.back(), u"pending");
    computer.waits.answer(false);
    computer.scheduler.Pass(Milliseconds(20000));
    ASSERT_EQ(computer.waits.texts.size(), 2U) << "going on waiting starts the limit anew";
    computer.waits.answer(true);
    EXPECT_EQ(computer.waits.open, 0);
    EXPECT_EQ(loggedOut, (Calls{"L1"}));
    EXPECT_TRUE(IsIdle());
    Request(2);
    EXPECT_FALSE(form().Enabled) << "the next request goes out";
}

TEST_F(DialogTest, TheWaitBoxClosesWhenTheAnswerComes) {
    Open();
    Request(2);
    computer.scheduler.Pass(Milliseconds(20000));
    Deliver(Response(99, u""));
    EXPECT_EQ(computer.waits.open, 0);
    computer.scheduler.Pass(Milliseconds(60000));
    EXPECT_EQ(computer.waits.texts.size(), 1U);
}

TEST_F(DialogTest, AHostThatLeavesEndsTheWaitAtOnce) {
    Open();
    Request(2);
    exchange->LeaveBus();
    EXPECT_TRUE(IsIdle());
    exchange->LeaveBus();
    EXPECT_EQ(loggedOut.size(), 1U);
}

TEST_F(DialogTest, AnAnswerInsideSendRequestLeavesTheWaitBoxAsTheWayOut) {
    Open();
    exchange->answers["SendRequest"] = [this](Arguments&) {
        Deliver(Response(99, u""));
        return Value(u"taken");
    };
    Request(2);
    EXPECT_FALSE(form().Enabled);
    computer.scheduler.Pass(Milliseconds(20000));
    computer.waits.answer(true);
    EXPECT_TRUE(IsIdle());
}

TEST_F(DialogTest, TheFirstButtonHidesTheDialogAndKeepsItsState) {
    Open();
    form().Show();
    Request(0);
    EXPECT_FALSE(form().Visible());
    EXPECT_TRUE(form().IsLoaded());
    EXPECT_TRUE(calls.empty());
}

TEST_F(DialogTest, UnloadingTellsTheHostAndClosesTheDatabase) {
    Open();
    dialog->PutID(42);
    form().Unload();
    EXPECT_EQ(calls, (Calls{"UnloadChild"}));
    EXPECT_EQ(told.back(), "42");
    EXPECT_TRUE(computer.language->closed);
    EXPECT_EQ(data.AddInLanguageDb, nullptr);
}

TEST_F(DialogTest, WithoutALanguageDatabaseTheFormUnloadsItself) {
    data.AddInLanguageDb = nullptr;
    form().Load();
    EXPECT_FALSE(form().IsLoaded());
    EXPECT_FALSE(dialog->CheckLoadError());
}

TEST_F(DialogTest, TheCountOverflowsAtSixteenBits) {
    for (int i = 0; i < 32767; ++i) dialog->IncrementCount();
    EXPECT_THROW(dialog->IncrementCount(), RuntimeError);
    EXPECT_EQ(dialog->DecrementCount(), 32766);
}

TEST_F(DialogTest, FlowIsSwitchedAtTheHost) {
    Open();
    Call(dialog, "TurnFlow", true);
    Call(dialog, "TurnFlow", false);
    EXPECT_EQ(calls, (Calls{"TurnOnFlow", "TurnOffFlow"}));
    dialog->PutParent(nullptr);
    EXPECT_THROW(dialog->TurnFlow(true), RuntimeError);
}

TEST_F(DialogTest, PlacesOutOfTheHostsStore) {
    const struct {
        const char16_t* stored;
        float left, top;
    } cases[] = {
        {u"", (15000 - 7110) / 2.0F, (12000 - 4365) / 2.0F},
        {u"0,0", 0, 0},
        {u"-30,45.5", -30, 45.5F},
        {u"10,20,30", 10, 20},
        {u"10", 3150, 2295},
        {u"a,b", 3150, 2295},
        {u"10,", 3150, 2295},
        {u",", (15000 - 7110) / 2.0F, (12000 - 4365) / 2.0F},
    };
    for (const auto& c : cases) {
        form().Move(3150, 2295);
        host->answers["GetComData"] = [&](Arguments& a) {
            EXPECT_EQ(a[0].ToText() + a[1].ToText(), u"HoralinkMOVE");
            a[2] = Value(c.stored);
            return Value();
        };
        dialog->FrmMove(host);
        EXPECT_EQ(form().Left(), c.left) << ToUtf8(c.stored);
        EXPECT_EQ(form().Top(), c.top) << ToUtf8(c.stored);
    }
    Text saved;
    host->answers["REGComData"] = [&](Arguments& a) { return saved = a[2].ToText(), Value(); };
    dialog->PutParent(host);
    dialog->FrmMove(host);
    EXPECT_EQ(form().Left(), cases[7].left) << "a dialog that has its host stays";
    form().Move(3150, 2295);
    dialog->FrmPositionSave();
    EXPECT_EQ(saved, u"3150,2295");
}

struct StandaloneTest : DialogTest {
    StandaloneTest() {
        data.IsStandalone = true;
        computer.automation.exchange = exchange;
        computer.app.command = u"Main";
        exchange->answers["ConnectToPbx"] = [](Arguments&) { return Value(u"C1"); };
    }
};

TEST_F(StandaloneTest, ConnectsByTheCommandLineAndWorksWithoutAHostObject) {
    form().Show();
    EXPECT_EQ(computer.automation.created, (std::vector<Text>{u"SwitchDeskProj10001.cPBXOle"}));
    EXPECT_TRUE(Enabled(1) && Enabled(2));
    calls.clear();
    Request(2);
    EXPECT_EQ(calls, (Calls{"Login", "SendRequest"}));
    calls.clear();
    Deliver(Response(0, u"UPDATE_CLOCK"));
    PassTick();
    EXPECT_EQ(calls, (Calls{"LogOut"}));
    EXPECT_EQ(LastBox(), "box 1 ");
    Request(0);
    EXPECT_FALSE(form().IsLoaded());
    EXPECT_EQ(loggedOut.back(), "C1") << "the key of the connection";
}

TEST_F(StandaloneTest, WithoutAConnectionTheButtonsStayOff) {
    for (const bool raises : {false, true}) {
        exchange->answers["ConnectToPbx"] = [raises](Arguments&) -> Value {
            if (raises) throw RuntimeError(1004, u"no");
            return u"";
        };
        form().Load();
        EXPECT_FALSE(Enabled(1) || Enabled(2));
        EXPECT_EQ(form().Caption(), u"entry 4 (Main)");
        EXPECT_FALSE(dialog->CheckLoadError());
        form().Unload();
        data.AddInLanguageDb = computer.language;
    }
}

TEST_F(StandaloneTest, AHostThatIsNotInstalledLeavesADialogWithItsButtonsOff) {
    computer.automation.exchange = nullptr;
    form().Show();
    EXPECT_TRUE(dialog->CheckLoadError());
    EXPECT_TRUE(form().Visible());
    EXPECT_FALSE(Enabled(1) || Enabled(2));
    Request(0);
    EXPECT_FALSE(form().IsLoaded()) << "LogOut on nothing is passed over";
}

}  // namespace
