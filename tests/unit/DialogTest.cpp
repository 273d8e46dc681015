#include <gtest/gtest.h>

#include "ErrorOf.h"
#include "Fakes.h"
#include "Table.h"

using namespace horalink;
using namespace platform;
using fakes::RecordedObject;
using Calls = std::vector<std::string>;
using Items = std::vector<std::array<const char16_t*, 3>>;  // FirstData, SecondData, ExtraData

namespace {

RecordedObject::Answer Gives(Value value) {
    return [value](Arguments&) { return value; };
}
RecordedObject::Answer Raises(std::int32_t number) {
    return [number](Arguments&) -> Value { throw RuntimeError(number, u"no"); };
}

// The dialog on a recorded host that accepts everything.
struct DialogTest : testing::Test {
    DialogTest() {
        data.AddInLanguageDb = computer.language;
        data.MarketCode = u"10001";
        for (int i = 0; i < 7; ++i) data.MessageTable.texts.push_back(u"entry " + DecimalText(i));
        host->answers["oPBX"] = Gives(exchange);
        for (const char* member : {"ShowMessage", "ShowResults", "ShowCode", "UnloadChild", "TurnOnFlow",
                                   "TurnOffFlow", "DisplayHelp"})
            host->answers[member] = [this](Arguments& a) {
                told.push_back(ToUtf8(a.empty() || a.back().IsObject() ? Text() : a.back().ToText()));
                return Value();
            };
        exchange->answers["Login"] = Gives(u"L1");
        exchange->answers["SendRequest"] = [this](Arguments& a) {
            request = std::dynamic_pointer_cast<cListRequest>(a[0].ToObject());
            return Value(u"taken");
        };
        exchange->answers["LogOut"] = [this](Arguments& a) {
            return loggedOut.push_back(ToUtf8(a[1].ToText())), Value();
        };
        computer.app.waits.pendingTimeout = 20000;
        computer.app.waits.pendingText = u"pending";
    }
    void Open() {
        form.Load();
        dialog->PutParent(host);
        dialog->PutPBXName(u"Main");
        calls.clear();
    }
    void Click(std::size_t button) { dialog->Controls().cmdButton[button]->Click(); }
    void PassTick() { computer.scheduler.Pass(100); }
    void Request(std::size_t button) {
        for (Calls* noted : {&calls, &told, &loggedOut}) noted->clear();
        computer.boxes.shown.clear();
        Click(button);
        PassTick();
    }
    // An answer of the host's own class.
    std::shared_ptr<RecordedObject> Response(int errCode, const char16_t* tag = u"", Items items = {}) {
        static Calls reads;
        auto response = std::make_shared<RecordedObject>(reads);
        auto& answers = response->answers;
        answers["CMD"] = Gives(u"02");
        answers["ErrCode"] = Gives(errCode);
        answers["Tag"] = Gives(tag);
        answers["LoginID"] = Gives(u"L1");
        answers["Count"] = Gives(static_cast<std::int16_t>(items.size()));
        const char* names[] = {"FirstData", "SecondData", "ExtraData"};
        for (std::size_t k = 0; k < 3; ++k)
            answers[names[k]] = [items, k](Arguments& a) { return items[std::size_t(a[0].ToInteger())][k]; };
        answers["Message"] = [this](Arguments&) { return responseMessage; };
        answers["=Message"] = [this](Arguments& a) { return responseMessage = a[0].ToText(), Value(); };
        return response;
    }
    void Deliver(ObjectRef response) {
        dialog->CallBack(response);
        EXPECT_EQ(response, nullptr) << "the host's variable is emptied";
    }
    void Exchange(std::size_t button, ObjectRef response) {
        Request(button);
        Deliver(response);
        PassTick();
    }
    bool IsIdle() {
        return form.Enabled && computer.screen.pointer == MousePointer::Default &&
               !dialog->Controls().tmrEvent->Enabled;
    }

    fakes::Computer computer;
    ModuleData data;
    Calls calls, told, loggedOut;
    std::shared_ptr<RecordedObject> host = std::make_shared<RecordedObject>(calls),
                                    exchange = std::make_shared<RecordedObject>(calls);
    std::shared_ptr<cListRequest> request;
    Text responseMessage;
    std::shared_ptr<dlgAddin> dialog = std::make_shared<dlgAddin>(computer.services, data);
    forms::Form& form = dialog->Window();
};

TEST_F(DialogTest, AGoodExchangeInOrder) {
    Open();
    Click(2);
    EXPECT_TRUE(calls.empty()) << "nothing is done inside the click";
    PassTick();
    EXPECT_EQ(calls, (Calls{"oPBX", "Login", "ShowMessage", "oPBX", "SendRequest", "ShowMessage"}));
    EXPECT_FALSE(form.Enabled);
    EXPECT_EQ(computer.screen.pointer, MousePointer::Hourglass);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->LoginID, u"L1");
    EXPECT_EQ(request->PBXName, u"Main");
    calls.clear();
    Deliver(Response(0, u"LOOKUP_CLOCK",
                     {{u"0", u"2026", u""}, {u"1", u"11/18", u""}, {u"2", u"13:02:03", u""}}));
    EXPECT_EQ(calls, (Calls{"ShowResults", "ShowMessage", "ShowCode", "oPBX", "LogOut"}));
    EXPECT_TRUE(form.Enabled);
    EXPECT_TRUE(computer.boxes.shown.empty()) << "shown by the timer, not inside the host's call";
    PassTick();
    EXPECT_EQ(computer.boxes.LastPrompt(), "box 0 2026/11/18 (d4)\r\n13:02:03");
    EXPECT_TRUE(IsIdle());
    EXPECT_EQ(told, (Calls{"entry 3: L1", "entry 3: taken", "", "OK", "0"}));
}

TEST_F(DialogTest, ALoginThatFailsIsToldToBoth) {
    Open();
    Exchange(2, Response(99));
    exchange->answers["Login"] = Raises(1004);
    for (const bool hostIsTold : {true, false}) {
        if (!hostIsTold) host->answers.erase("ShowMessage");
        Request(2);
        EXPECT_EQ(told, hostIsTold ? Calls{"entry 3: L1"} : Calls()) << "the value of the last login";
        ASSERT_EQ(computer.boxes.shown.size(), 1U);
        EXPECT_EQ(computer.boxes.LastPrompt(), "entry 0");
        EXPECT_EQ(computer.boxes.shown[0].buttons, 48);
        EXPECT_EQ(computer.boxes.shown[0].title, u"entry 1");
        EXPECT_TRUE(IsIdle());
    }
}

TEST_F(DialogTest, ARefusalEndsTheRequestAndNearlyARefusalIsAKey) {
    Open();
    const Calls all{"oPBX", "Login", "ShowMessage", "oPBX", "SendRequest", "ShowMessage", "oPBX", "LogOut"};
    const int refusedLogin = 3, accepted = 6, refusedSend = 8;  // so many of them are made
    const Table<const char*, RecordedObject::Answer, const char*, int> cases = {
        {"Login", Gives(u"BUSY"), "entry 3: BUSY", refusedLogin},
        {"Login", Gives(u"ERROR"), "entry 3: ERROR", refusedLogin},
        {"Login", Gives(u""), "entry 3: ", refusedLogin},
        {"SendRequest", Gives(u"BUSY"), "entry 3: BUSY", refusedSend},
        {"SendRequest", Gives(u"ERROR"), "entry 3: ERROR", refusedSend},
        {"SendRequest", Gives(u""), "entry 3: ", refusedSend},
        {"SendRequest", Gives(Null{}), "entry 3: ", refusedSend},
        {"SendRequest", Raises(1004), "entry 3: ", refusedSend},
        {"Login", Gives(u"Busy"), "entry 3: taken", accepted},
        {"Login", Gives(u"error"), "entry 3: taken", accepted},
        {"Login", Gives(u" "), "entry 3: taken", accepted}};
    for (const auto& [member, answer, text, count] : cases) {
        SCOPED_TRACE(std::string(member) + " " + text);
        const auto usual = std::exchange(exchange->answers[member], answer);
        Request(1);
        exchange->answers[member] = usual;
        EXPECT_EQ(calls, Calls(all.begin(), all.begin() + count));
        EXPECT_EQ(told.back(), text);
        EXPECT_EQ(loggedOut, count == refusedSend ? Calls{"L1"} : Calls());
        EXPECT_EQ(IsIdle(), count != accepted);
    }
    host->answers["ShowMessage"] = Raises(1004);
    Request(1);
    EXPECT_EQ(loggedOut, (Calls{"L1"})) << "a host that can't be told of the login";
    EXPECT_TRUE(IsIdle());
    EXPECT_TRUE(computer.boxes.shown.empty());
}

TEST_F(DialogTest, TheAnswerDecidesMessageAndBox) {
    Open();
    const Text update = u"UPDATE_CLOCK", lookup = u"LOOKUP_CLOCK";
    const Table<int, Text, Text, Items, Text, std::string> cases = {
        {0, u"", update, {}, u"OK", "box 1 "},
        {0, u"fine", update, {}, u"fine", "box 1 "},
        {99, u"", update, {}, u"", ""},
        {99, u"x", update, {}, u"x", ""},
        {7, u"x", update, {}, u"entry 6 : <7>", ""},
        {-1, u"", update, {}, u"entry 6 : <-1>", ""},
        {0, u"", update, {{u"0", u"2026", u"WRONG"}}, u"OK", "box 2 \r\nCM = 02, FD = 0, SD = 2026 WRONG"},
        {0, u"", update, {{u"0", u"1", u"LNK_TIMEOUT"}}, u"OK", "box 2 \r\nCM = 02, FD = 0, SD = 1 entry 2"},
        {0, u"", lookup, {}, u"OK", "box 3 "},
        {0, u"", lookup, {{u"0", u"LNK_TIMEOUT", u""}}, u"OK", "box 3 "},
        {0, u"", u"lookup_clock", {}, u"OK", ""},
        {0, u"", u"", {}, u"OK", ""}};
    for (const auto& [errCode, before, tag, items, after, box] : cases) {
        responseMessage = before;
        Exchange(1, Response(errCode, tag.c_str(), items));
        EXPECT_EQ(responseMessage, after);
        EXPECT_EQ(told, (Calls{"entry 3: L1", "entry 3: taken", "", ToUtf8(after), std::to_string(errCode)}));
        EXPECT_EQ(computer.boxes.LastPrompt(), box) << errCode << ToUtf8(tag);
        EXPECT_TRUE(IsIdle());
    }
}

TEST_F(DialogTest, AnswersWithHolesNeverLeaveTheDialogDisabled) {
    Open();
    for (const std::string hole :
         {"Count", "CMD", "FirstData", "ExtraData", "ErrCode", "Tag", "LoginID", "Message", "=Message"})
        for (const int errCode : {0, 7}) {
            responseMessage.clear();
            const auto response = Response(errCode, u"UPDATE_CLOCK", {{u"0", u"2026", u"OK"}});
            response->answers.erase(hole);
            Exchange(1, response);
            EXPECT_EQ(loggedOut, (Calls{"L1"})) << hole;
            EXPECT_TRUE(IsIdle()) << hole;
            EXPECT_TRUE(computer.boxes.shown.empty() || errCode == 0) << hole;
            EXPECT_TRUE(responseMessage.empty() || hole != "ErrCode") << "no success";
        }
    Exchange(1, nullptr);
    EXPECT_TRUE(form.Enabled);
    exchange->answers.erase("LogOut");
    Exchange(2, Response(7));
    EXPECT_TRUE(IsIdle()) << "a LogOut that fails is passed over";
}

TEST_F(DialogTest, WaysOutOfAnAnswerThatNeverComes) {
    Open();
    Request(2);
    computer.scheduler.Pass(19999);
    EXPECT_EQ(computer.waits.open, 0);
    computer.scheduler.Pass(1);
    ASSERT_EQ(computer.waits.open, 1);
    EXPECT_EQ(computer.waits.opened.back().text, u"pending");
    computer.waits.opened.back().answer(false);
    computer.scheduler.Pass(20000);
    ASSERT_EQ(computer.waits.opened.size(), 2U) << "going on waiting starts the limit anew";
    computer.waits.opened.back().answer(true);
    EXPECT_EQ(computer.waits.open, 0);
    EXPECT_EQ(loggedOut, (Calls{"L1"}));
    EXPECT_TRUE(IsIdle());
    Request(2);
    EXPECT_FALSE(form.Enabled) << "the next request goes out";
    computer.scheduler.Pass(20000);
    Deliver(Response(99));
    EXPECT_EQ(computer.waits.open, 0) << "the answer closes the box";
    computer.scheduler.Pass(60000);
    EXPECT_EQ(computer.waits.opened.size(), 3U);
    Request(2);
    exchange->LeaveBus();
    EXPECT_TRUE(IsIdle()) << "a host that leaves ends the wait";
    exchange->LeaveBus();
    EXPECT_EQ(loggedOut.size(), 1U);
}

TEST_F(DialogTest, AnswersThatComeWhileABoxIsOpenWaitBehindIt) {
    Open();
    Request(2);
    Deliver(Response(0, u"LOOKUP_CLOCK"));
    computer.boxes.whileOpen = [&] {
        computer.boxes.whileOpen = nullptr;
        for (int i = 0; i < 3; ++i) {
            Deliver(Response(0, u"UPDATE_CLOCK"));
            PassTick();
        }
        EXPECT_EQ(computer.boxes.shown.size(), 1U);
    };
    PassTick();
    for (int i = 0; i < 3; ++i) PassTick();
    EXPECT_EQ(computer.boxes.shown.size(), 2U) << "the last of them";
    EXPECT_EQ(computer.boxes.LastPrompt(), "box 1 ");
    EXPECT_TRUE(IsIdle());
}

TEST_F(DialogTest, OnlyTheAnswerToThisRequestSavesWaitingWhereItComesAsSoonAsTheRequestIsTaken) {
    Open();
    for (const char16_t* login : {u"L1", u"L0"}) {
        host->answers["ShowMessage"] = [&](Arguments& a) {
            told.push_back(ToUtf8(a[0].ToText()));
            if (told.back() != "entry 3: taken") return Value();
            const auto response = Response(0, u"UPDATE_CLOCK");
            response->answers["LoginID"] = Gives(login);
            Deliver(response);
            return Value();
        };
        Request(2);
        EXPECT_EQ(form.Enabled, login == Text(u"L1"));
        EXPECT_EQ(computer.screen.pointer == MousePointer::Default, form.Enabled);
        PassTick();
        EXPECT_EQ(computer.boxes.LastPrompt(), "box 1 ");
    }
}

TEST_F(DialogTest, TheFirstButtonHidesAndUnloadingTellsTheHost) {
    Open();
    dialog->PutID(42);
    form.Show();
    Request(0);
    EXPECT_FALSE(form.Visible());
    EXPECT_TRUE(form.IsLoaded());
    EXPECT_TRUE(calls.empty());
    form.Unload();
    EXPECT_EQ(calls, (Calls{"UnloadChild"}));
    EXPECT_EQ(told.back(), "42");
    EXPECT_TRUE(computer.language->closed);
    EXPECT_EQ(data.AddInLanguageDb, nullptr);
    form.Load();
    EXPECT_FALSE(form.IsLoaded()) << "without a language database the form unloads itself";
    EXPECT_FALSE(dialog->CheckLoadError());
}

TEST_F(DialogTest, TheCountOverflowsAtSixteenBits) {
    for (int i = 0; i < 32767; ++i) dialog->IncrementCount();
    EXPECT_EQ(ErrorOf([&] { dialog->IncrementCount(); }), 6);
    EXPECT_EQ(dialog->DecrementCount(), 32766);
}

TEST_F(DialogTest, FlowIsSwitchedAtTheHostAndOnlyF1AsksItForHelp) {
    Open();
    Call(dialog, "TurnFlow", true);
    Call(dialog, "TurnFlow", false);
    for (const std::int16_t key : std::vector<std::int16_t>{111, 113, 112}) form.KeyDown(key, 0);
    data.IsStandalone = true;
    form.KeyDown(112, 0);
    EXPECT_EQ(calls, (Calls{"TurnOnFlow", "TurnOffFlow", "DisplayHelp"}));
    EXPECT_EQ(told.back(), "Horalink.hlp");
}

TEST_F(DialogTest, PlacesOutOfTheHostsStore) {
    const float middle = (15000 - 7110) / 2.0F, centre = (12000 - 4365) / 2.0F;
    const Table<Text, float, float> cases = {
        {u"", middle, centre}, {u"0,0", 0, 0},       {u"-30,45.5", -30, 45.5F}, {u"10,20,30", 10, 20},
        {u"10", 3150, 2295},   {u"a,b", 3150, 2295}, {u"10,", 3150, 2295},      {u",", middle, centre}};
    for (const auto& [stored, left, top] : cases) {
        form.Move(3150, 2295);
        host->answers["GetComData"] = [&, &text = stored](Arguments& a) {
            EXPECT_EQ(a[0].ToText() + a[1].ToText(), u"HoralinkMOVE");
            return a[2] = Value(text), Value();
        };
        dialog->FrmMove(host);
        EXPECT_EQ(form.Left(), left) << ToUtf8(stored);
        EXPECT_EQ(form.Top(), top) << ToUtf8(stored);
    }
    Text saved;
    host->answers["REGComData"] = [&](Arguments& a) { return saved = a[2].ToText(), Value(); };
    dialog->PutParent(host);
    form.Move(3150, 2295);
    dialog->FrmMove(host);
    EXPECT_EQ(form.Left(), 3150) << "a dialog that has its host stays";
    dialog->FrmPositionSave();
    EXPECT_EQ(saved, u"3150,2295");
}

struct StandaloneTest : DialogTest {
    StandaloneTest() {
        data.IsStandalone = true;
        computer.automation.exchange = exchange;
        computer.app.command = u"Main";
        exchange->answers["ConnectToPbx"] = Gives(u"C1");
    }
};

TEST_F(StandaloneTest, ConnectsByTheCommandLineAndWorksWithoutAHostObject) {
    form.Show();
    EXPECT_EQ(computer.automation.created, (std::vector<Text>{u"SwitchDeskProj10001.cPBXOle"}));
    Request(2);
    EXPECT_EQ(calls, (Calls{"Login", "SendRequest"}));
    calls.clear();
    Deliver(Response(0, u"UPDATE_CLOCK"));
    PassTick();
    EXPECT_EQ(calls, (Calls{"LogOut"}));
    EXPECT_EQ(computer.boxes.LastPrompt(), "box 1 ");
    exchange->answers["Login"] = Raises(1004);
    Request(2);
    EXPECT_EQ(computer.boxes.LastPrompt(), "entry 0");
    EXPECT_TRUE(told.empty());
    Request(0);
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_EQ(loggedOut.back(), "C1") << "the key of the connection";
}

}  // namespace
