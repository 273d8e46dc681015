#include <gtest/gtest.h>

#include "ErrorOf.h"
#include "Fakes.h"
#include "Table.h"
#include "platform/automation/NoAutomation.h"

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
        if (count == accepted) Deliver(Response(99));
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
    EXPECT_TRUE(IsIdle()) << "a host that hangs is not waited for";
    EXPECT_TRUE(loggedOut.empty());
    computer.automation.AnswerPosted();
    EXPECT_EQ(loggedOut, (Calls{"L1"}));
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
    computer.automation.AnswerPosted();
    EXPECT_EQ(loggedOut.size(), 1U);
}

// Whatever the host hangs in, the operator gives up once, and finds the dialog free.
TEST_F(DialogTest, AHostThatWasGivenUpIsNotWaitedForAgain) {
    const Calls submitting{"oPBX", "Login", "ShowMessage", "oPBX", "SendRequest", "ShowMessage"};
    const Calls answering{"ShowResults", "ShowMessage", "ShowCode", "oPBX", "LogOut"};
    const auto hang = [&](RecordedObject& object, const std::string& member, std::size_t nth) {
        const auto usual = object.answers[member];
        object.answers[member] = [&, usual, member, nth](Arguments& a) {
            if (static_cast<std::size_t>(std::count(calls.begin(), calls.end(), member)) != nth)
                return usual(a);
            computer.scheduler.Pass(20000);
            if (computer.waits.open == 1) computer.waits.opened.back().answer(true);
            return usual(a);
        };
        return [&object, member, usual] { object.answers[member] = usual; };
    };
    Open();
    for (std::size_t at = 0; at < submitting.size() + answering.size(); ++at) {
        const bool isAnswer = at >= submitting.size();
        const Calls& made = isAnswer ? answering : submitting;
        const std::size_t place = isAnswer ? at - submitting.size() : at;
        const std::string member = made[place];
        SCOPED_TRACE(member + " " + std::to_string(at));
        const auto nth =
            static_cast<std::size_t>(std::count(made.begin(), made.begin() + long(place) + 1, member));
        if (isAnswer) Request(2);
        RecordedObject& object = host->answers.contains(member) ? *host : *exchange;
        const auto boxes = computer.waits.opened.size();
        calls.clear();
        const auto wake = hang(object, member, nth);
        if (isAnswer)
            Deliver(Response(0, u"UPDATE_CLOCK"));
        else
            Request(2);
        wake();
        EXPECT_EQ(calls, Calls(made.begin(), made.begin() + long(place) + 1))
            << "each further call fails at once";
        EXPECT_EQ(computer.waits.opened.size(), boxes + 1);
        EXPECT_TRUE(form.Enabled);
        EXPECT_EQ(computer.screen.pointer, MousePointer::Default);
        computer.automation.AnswerPosted();
        EXPECT_EQ(loggedOut, at == 0 ? Calls() : Calls{"L1"})
            << "each login, also one that is granted late, once";
        PassTick();
        Exchange(2, Response(99));
        EXPECT_TRUE(IsIdle()) << "the next request is asked anew";
    }
}

TEST_F(DialogTest, AnAnswerToALoginThatWasGivenUpIsToldAndNothingElse) {
    Open();
    Request(2);
    computer.scheduler.Pass(20000);
    computer.waits.opened.back().answer(true);
    computer.automation.AnswerPosted();
    exchange->answers["Login"] = Gives(u"L2");
    for (const bool anotherIsWaiting : {false, true}) {
        if (anotherIsWaiting) Request(2);
        calls.clear();
        Deliver(Response(0, u"LOOKUP_CLOCK"));
        PassTick();
        EXPECT_EQ(calls, (Calls{"ShowResults", "ShowMessage", "ShowCode"}));
        EXPECT_TRUE(computer.boxes.shown.empty());
        EXPECT_EQ(form.Enabled, !anotherIsWaiting);
    }
    computer.scheduler.Pass(19900);
    ASSERT_EQ(computer.waits.open, 1) << "the other wait has its way out";
    computer.waits.opened.back().answer(true);
    EXPECT_TRUE(IsIdle());
    computer.automation.AnswerPosted();
    EXPECT_EQ(loggedOut, (Calls{"L2"}));
    exchange->answers["Login"] = Gives(u"L1");
    Exchange(2, Response(0, u"UPDATE_CLOCK"));
    EXPECT_EQ(computer.boxes.LastPrompt(), "box 1 ") << "the key of a new login";
}

// The pending limit holds for the whole of an answer, however soon each of its items comes.
TEST_F(DialogTest, ALongAnswerOfASlowHostHasOneLimitAndOneBox) {
    Open();
    Request(2);
    const auto slow = Response(0, u"LOOKUP_CLOCK");
    int read = 0;
    slow->answers["Count"] = Gives(std::int16_t{32767});
    slow->answers["CMD"] = [&](Arguments&) {
        computer.scheduler.Pass(1000);
        if (++read == 40) computer.waits.opened.back().answer(true);
        return Value(u"02");
    };
    for (const char* list : {"FirstData", "SecondData", "ExtraData"}) slow->answers[list] = Gives(u"");
    Deliver(slow);
    EXPECT_EQ(read, 40);
    EXPECT_EQ(computer.waits.opened.size(), 1U);
    EXPECT_TRUE(form.Enabled);
    PassTick();
    EXPECT_TRUE(computer.boxes.shown.empty());
    // Nobody waits for this one, so that the window takes a close.
    const auto close = std::make_shared<int>();
    slow->answers["CMD"] = [&](Arguments&) {
        if (++read == 50) form.CloseWaits(close);
        return Value(u"02");
    };
    Deliver(slow);
    EXPECT_EQ(read, 50) << "whoever closes the window doesn't wait for the rest";
}

TEST_F(DialogTest, BehindABoxComesTheLastAnswerThatSucceeded) {
    Open();
    Request(2);
    Deliver(Response(0, u"LOOKUP_CLOCK"));
    computer.boxes.whileOpen = [&] {
        computer.boxes.whileOpen = nullptr;
        for (const int errCode : {0, 0, 7}) {
            Deliver(Response(errCode, errCode == 0 ? u"UPDATE_CLOCK" : u"LOOKUP_CLOCK"));
            PassTick();
        }
        Click(2);
        EXPECT_EQ(computer.boxes.shown.size(), 1U);
    };
    calls.clear();
    PassTick();
    for (int i = 0; i < 3; ++i) PassTick();
    EXPECT_EQ(computer.boxes.shown.size(), 2U);
    EXPECT_EQ(computer.boxes.LastPrompt(), "box 1 ");
    EXPECT_TRUE(IsIdle());
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "Login"), 0) << "the box takes the form's clicks";
}

TEST_F(DialogTest, NeitherAnswerNorClickIsLostBetweenTheTwoTicks) {
    Open();
    Request(2);
    Deliver(Response(0, u"UPDATE_CLOCK"));
    Click(0);
    form.Show();
    PassTick();
    EXPECT_EQ(computer.boxes.LastPrompt(), "box 1 ");
    PassTick();
    EXPECT_FALSE(form.Visible()) << "behind the answer";
    Click(2);
    Deliver(Response(0, u"UPDATE_CLOCK"));
    PassTick();
    calls.clear();
    PassTick();
    EXPECT_EQ(calls.front(), "oPBX") << "a click that an answer of nobody came between";
    EXPECT_FALSE(form.Enabled);
}

// Where a host answers too early, the answer counts for its own login alone.
TEST_F(DialogTest, AnAnswerAheadOfTheWaitSavesItWhereItIsToThisRequest) {
    Open();
    const Table<const char*, const char16_t*, bool> cases = {
        {"Login", u"L0", false}, {"SendRequest", u"L0", false}, {"SendRequest", u"L1", true}};
    for (const auto& [member, login, saves] : cases) {
        SCOPED_TRACE(member);
        const auto usual = exchange->answers[member];
        exchange->answers[member] = [&, &key = login](Arguments& a) {
            const auto response = Response(0, u"UPDATE_CLOCK");
            response->answers["LoginID"] = Gives(key);
            Deliver(response);
            return usual(a);
        };
        Request(2);
        exchange->answers[member] = usual;
        EXPECT_EQ(form.Enabled, saves);
        EXPECT_EQ(computer.screen.pointer == MousePointer::Default, saves);
        if (!saves) Deliver(Response(99));
        PassTick();
        EXPECT_EQ(computer.boxes.LastPrompt(), "box 1 ");
        EXPECT_TRUE(IsIdle());
    }
}

// A value is compared as it is, before anything is converted.
TEST_F(DialogTest, OnlyZeroIsSuccessAndOnly99LeavesTheMessage) {
    Open();
    const Table<Value, Text, bool> cases = {{0.0, u"OK", true},
                                            {u"0", u"OK", true},
                                            {0.4, u"entry 6 : <0.4>", false},
                                            {99.0, u"", false},
                                            {u"99", u"", false},
                                            {99.3, u"entry 6 : <99.3>", false},
                                            {Null{}, u"entry 6 : <>", false},
                                            {u"abc", u"entry 6 : <abc>", false}};
    for (const auto& [errCode, message, shows] : cases) {
        responseMessage.clear();
        const auto response = Response(0, u"UPDATE_CLOCK");
        response->answers["ErrCode"] = Gives(errCode);
        Exchange(1, response);
        EXPECT_EQ(responseMessage, message);
        EXPECT_EQ(computer.boxes.shown.size(), shows ? 1U : 0U) << ToUtf8(message);
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

TEST_F(StandaloneTest, AHostThatWasGivenUpStillHearsOfTheLogOut) {
    form.Show();
    exchange->answers["SendRequest"] = [&](Arguments&) {
        computer.scheduler.Pass(20000);
        computer.waits.opened.back().answer(true);
        return Value(u"taken");
    };
    Request(2);
    EXPECT_TRUE(IsIdle());
    EXPECT_TRUE(loggedOut.empty());
    computer.automation.AnswerPosted();
    EXPECT_EQ(loggedOut, (Calls{"L1"}));
}

TEST_F(StandaloneTest, WithoutABusTheDialogShowsWithItsButtonsDead) {
    NoAutomation none(computer.scheduler, computer.waits, computer.app.waits);
    Services services{
        computer.app,       computer.clock, computer.locale, computer.settings, computer.engine, none,
        computer.scheduler, computer.boxes, computer.screen, computer.toolkit,  computer.files,  [] {}};
    const auto alone = std::make_shared<dlgAddin>(services, data);
    alone->Window().Show();
    EXPECT_TRUE(alone->Window().Visible());
    EXPECT_TRUE(alone->CheckLoadError());
    for (const std::size_t button : {1U, 2U}) EXPECT_FALSE(alone->Controls().cmdButton[button]->Enabled);
    EXPECT_TRUE(computer.boxes.shown.empty());
}

}  // namespace
