// The dialog and the start of the process, as far as the model does not play them: what is laid down by
// tables, the stand-alone run, and what goes wrong at the start.
#include <gtest/gtest.h>

#include <chrono>

#include "ErrorOf.h"
#include "Table.h"
#include "exchange/dlgAddin.h"
#include "harness/Desk.h"
#include "harness/SmallTexts.h"
#include "platform/automation/NoAutomation.h"
#include "shell/ServerLife.h"
#include "shell/cOLELayer.h"

using namespace horalink;
using namespace platform;
using desk::Notes, desk::Short;

namespace {

// An object of the host: notes its calls with their texts, and answers by name.
class NotedHost : public Object {
  public:
    using Answer = std::function<Value(Arguments&)>;
    const ClassDescription& Class() const override {
        static const ClassDescription description{"NotedHost", {}};
        return description;
    }
    Value Invoke(std::string_view member, InvokeKind, Arguments& arguments) override {
        std::string call(member);
        for (const Value& argument : arguments)
            call += " " + (argument.IsObject() ? "object" : ToUtf8(argument.ToText()));
        calls.push_back(call);
        const auto found = answers.find(member);
        return found == answers.end() ? Value() : found->second(arguments);
    }
    Notes Calls() { return std::exchange(calls, {}); }

    Notes calls;
    std::map<std::string, Answer, std::less<>> answers;
};

NotedHost::Answer Gives(Value value) {
    return [value](Arguments&) { return value; };
}

struct Ended {};

// A process of the add-in, not started yet.
struct Process {
    Process() {
        harness::AddSmallTexts(desk.databases);
        desk.app.path = u"C:\\VELMORA32\\10001\\ADDINS";
        desk.app.startMode = startedByAutomation;
        desk.app.major = 13, desk.app.revision = 1;
        desk.services.End = [] { throw Ended(); };
    }

    desk::Desk desk;
    AddInMain main{desk.services};
};

struct DialogTest : testing::Test, Process {
    dlgAddin& Dialog() { return main.Dialog(); }
    forms::Form& Window() { return Dialog().Window(); }
    const DialogControls& Controls() { return Dialog().Controls(); }
    ObjectRef Host() { return desk.automation.Far(host, peer); }
    void Open() {
        main.Main();
        Window().Load();
        Put(Dialog().shared_from_this(), "PBXName", u"Main");
        Controls().chkTrack->SetValue(0);
        Controls().chkTrackDate->SetValue(0);
    }
    Text Time() {
        Text time;
        for (const auto* box : Controls().txtTime) time += box->Text() + u" ";
        return time;
    }

    std::shared_ptr<NotedHost> host = std::make_shared<NotedHost>();
    std::shared_ptr<headless::Peer> peer = std::make_shared<headless::Peer>();
};

// --- date and time
// ------------------------------------------------------------------------------------------

TEST_F(DialogTest, TheCalendarIsSetUpByMarketAndFont) {
    for (const auto& [market, style] : {std::pair(u"90001", 2), {u"10001", 1}}) {
        ModuleData data;
        data.AddInLanguageDb = desk.databases.OpenDatabase(u"Horalink.lng", true);
        data.MarketCode = market;
        dlgAddin dialog(desk.services, data);
        dialog.Window().Load();
        const forms::Calendar& calendar = *dialog.Controls().Calendar;
        EXPECT_EQ(calendar.MarketStyle(), style);
        EXPECT_EQ(calendar.CalendarValue(), MakeDate({2026, 11, 18}));
        EXPECT_EQ(calendar.gridcelleffect(), 2);
        EXPECT_EQ(calendar.showdateselectors(), selectors::hidden);
        EXPECT_TRUE(calendar.ShowOption());
        for (const auto& font : {calendar.dayfont, calendar.gridfont, calendar.titlefont}) {
            EXPECT_EQ(font->Name(), u"Form Sans");
            EXPECT_EQ(font->Size(), 8);
            EXPECT_EQ(font->Charset(), 128);
        }
    }
}

TEST_F(DialogTest, EachSectionOfTheTimeIsSteppedInItsOwnRange) {
    Open();
    forms::UpDown& spin = *Controls().updTime;
    const Table<std::size_t, Text, Text, Text> cases = {
        {0, u"09", u"10", u"08"}, {0, u"12", u"01", u"11"}, {0, u"01", u"02", u"12"},
        {1, u"04", u"05", u"03"}, {1, u"59", u"00", u"58"}, {2, u"00", u"01", u"59"},
        {3, u"AM", u"PM", u"PM"}, {3, u"PM", u"AM", u"AM"}, {3, u"??", u"PM", u"PM"}};
    for (const auto& [section, from, up, down] : cases)
        for (const bool isUp : {true, false}) {
            auto& box = *Controls().txtTime[section];
            box.Text = from;
            const Text before = Time();
            box.GotFocus();
            EXPECT_EQ(Time(), before) << "the focus changes nothing";
            isUp ? spin.StepUp() : spin.StepDown();
            EXPECT_EQ(box.Text(), isUp ? up : down);
            EXPECT_EQ(box.SelStart() * 10 + box.SelLength(), 2) << "stays selected";
            box.Text = from;
            EXPECT_EQ(Time(), before) << "no other section is touched";
        }
    Controls().txtTime[3]->LostFocus();
    const Text before = Time();
    spin.StepUp();
    EXPECT_EQ(Time(), before) << "no section is under edit";
}

// From any day to the next the three settings end on the date asked for, through days that don't exist, and
// the update button stays as it was.
TEST_F(DialogTest, TheDateFollowsOverEveryDayThatCanBeSet) {
    using namespace std::chrono;
    Open();
    Controls().chkTrackDate->SetValue(1);
    for (sys_days at = 1901y / January / 1; at <= sys_days(2099y / December / 31); at += days(1)) {
        const year_month_day day(at);
        const DateParts parts{int(day.year()), int(unsigned(day.month())), int(unsigned(day.day()))};
        desk.clock.Set(parts);
        desk.timers.Pass(1000);
        ASSERT_EQ(Controls().Calendar->CalendarValue(), MakeDate(parts));
        ASSERT_TRUE(Controls().cmdButton[button::update]->Enabled());
    }
    EXPECT_EQ(desk.Boxes(), Notes());
}

TEST_F(DialogTest, ChosenDatesKeepWithinTheYearsThatCanBeSet) {
    Open();
    forms::Calendar& calendar = *Controls().Calendar;
    const Table<DateParts, DateParts, std::size_t> cases = {{{1901, 1, 1}, {1901, 1, 1}, 0},
                                                            {{1900, 12, 31}, {1901, 12, 31}, 1},
                                                            {{2099, 12, 31}, {2099, 12, 31}, 0},
                                                            {{2100, 1, 1}, {2099, 1, 1}, 1}};
    for (const auto& [chosen, kept, notices] : cases) {
        calendar.ChooseDate(chosen);
        EXPECT_EQ(calendar.CalendarValue(), MakeDate(kept));
        EXPECT_EQ(desk.Boxes().size(), notices);
    }
}

TEST_F(DialogTest, HelpIsOfferedOnTheRightControlsByTheRightButton) {
    Open();
    Window().Show();
    const std::pair<const forms::Control*, int> topics[] = {
        {Controls().lblBevel[0], 2},  {Controls().lblBevel[1], 3},  {Controls().lblColon[0], 3},
        {Controls().lblColon[1], 3},  {Controls().lblTime, 3},      {Controls().txtTime[0], 3},
        {Controls().txtTime[3], 3},   {Controls().updTime, 3},      {Controls().lblTrack, 4},
        {Controls().chkTrack, 4},     {Controls().lblTrackDate, 5}, {Controls().chkTrackDate, 5},
        {Controls().lblBevel[2], 0},  {Controls().Calendar, 0},     {Controls().imgBack, 0},
        {Controls().cmdButton[0], 0}, {Controls().cmdButton[1], 0}, {Controls().cmdButton[2], 0}};
    headless::Window& window = *desk.toolkit.Open();
    for (const auto& [control, topic] : topics) {
        ASSERT_EQ(bool(control->MouseUp), topic != 0) << ToUtf8(control->Name());
        if (topic == 0) continue;
        for (const auto other : {forms::MouseButton::Left, forms::MouseButton::Middle}) {
            control->MouseUp(other);
            EXPECT_EQ(window.popped, nullptr) << ToUtf8(control->Name());
        }
        control->MouseUp(forms::MouseButton::Right);
        EXPECT_EQ(std::exchange(window.popped, nullptr), Controls().mnuWhatsThis);
        Controls().itmWhatsThis->Click();
        EXPECT_EQ(window.topic, topic) << ToUtf8(control->Name());
    }
    EXPECT_EQ(ErrorOf([&] { Controls().itmWhatsThis->Click(); }), 91) << "no control was pointed at";
}

// --- the dialog's members
// -----------------------------------------------------------------------------------

// What decides on looks and on what a screen reader says.
TEST_F(DialogTest, TheControlsBeginAsTheyAreLaidOut) {
    forms::Form form(u"form", desk.timers, desk.toolkit);
    const DialogControls controls = LayOut(form);
    for (const auto& [box, label] :
         {std::pair(controls.chkTrack, controls.lblTrack), {controls.chkTrackDate, controls.lblTrackDate}}) {
        EXPECT_EQ(box->TextLabel, label);
        EXPECT_TRUE(label->Font->Bold() && !label->Opaque && box->Value() == 1);
    }
    std::string time;
    for (const auto* box : controls.txtTime) {
        EXPECT_TRUE(box->Locked() && !box->Border && box->Align == forms::Alignment::Center);
        time += ToUtf8(box->Text()) + " ";
    }
    EXPECT_EQ(time, "12 00 00 PM ");
    EXPECT_FALSE(controls.mnuWhatsThis->Visible());
    EXPECT_EQ(controls.mnuWhatsThis->Items, std::vector{controls.itmWhatsThis});
}

TEST_F(DialogTest, PlacesOutOfTheHostsStore) {
    Open();
    const float middle = (15000 - 7110) / 2.0F, centre = (12000 - 4365) / 2.0F;
    const Table<Text, float, float> cases = {
        {u"", middle, centre}, {u"0,0", 0, 0},       {u"-30,45.5", -30, 45.5F}, {u"10,20,30", 10, 20},
        {u"10", 3150, 2295},   {u"a,b", 3150, 2295}, {u"10,", 3150, 2295},      {u",", middle, centre}};
    for (const auto& [stored, left, top] : cases) {
        Window().Move(3150, 2295);
        host->answers["GetComData"] = [&text = stored](Arguments& a) { return a[2] = Value(text), Value(); };
        Call(Dialog().shared_from_this(), "FrmMove", Host());
        EXPECT_EQ(Window().Left(), left) << ToUtf8(stored);
        EXPECT_EQ(Window().Top(), top) << ToUtf8(stored);
    }
    EXPECT_EQ(host->Calls(), Notes(8, "GetComData Horalink MOVE "));
    host->answers["GetComData"] = [](Arguments&) -> Value { throw RuntimeError(1004, u"no"); };
    Dialog().FrmMove(Host());
    EXPECT_EQ(Window().Left(), middle);
    Dialog().PutParent(Host());
    Window().Move(3150, 2295);
    host->Calls();
    Dialog().FrmMove(Host());
    Call(Dialog().shared_from_this(), "FrmPositionSave");
    EXPECT_EQ(host->Calls(), Notes{"REGComData Horalink MOVE 3150,2295"}) << "with its host it stays";
}

TEST_F(DialogTest, FlowIsSwitchedAtTheHostAndOnlyF1AsksItForHelp) {
    Open();
    const auto dialog = Dialog().shared_from_this();
    Dialog().PutParent(Host());
    Call(dialog, "TurnFlow", true);
    Call(dialog, "TurnFlow", false);
    desk.Calls();
    Call(dialog, "BackGround", 3);
    EXPECT_EQ(desk.Calls().at(0), "rows 8 Select * From PictureFileName Where  ID = 3");
    for (const std::int16_t key : std::vector<std::int16_t>{111, 113, 112}) Window().KeyDown(key);
    EXPECT_EQ(host->Calls(), (Notes{"TurnOnFlow", "TurnOffFlow", "DisplayHelp Horalink.hlp"}));
}

TEST_F(DialogTest, UnloadingClosesTheTextsForGoodAndTellsTheHost) {
    Open();
    Dialog().PutParent(Host());
    Put(Dialog().shared_from_this(), "ID", -42);
    desk.Calls();
    Window().Unload();
    EXPECT_EQ(desk.Calls(), Notes{"close"});
    EXPECT_EQ(ErrorOf([&] { Window().Show(); }), 364) << "without texts it unloads itself";
    EXPECT_EQ(host->Calls(), Notes(2, "UnloadChild -42"));
    EXPECT_EQ(Get(Dialog().shared_from_this(), "CheckLoadError"), Value(false));
}

TEST_F(DialogTest, TheCountOverflowsAtSixteenBits) {
    const auto dialog = Dialog().shared_from_this();
    for (int i = 0; i < 32767; ++i) Call(dialog, "IncrementCount");
    EXPECT_EQ(ErrorOf([&] { Call(dialog, "IncrementCount"); }), 6);
    EXPECT_EQ(Call(dialog, "DecrementCount"), Value(std::int16_t{32766}));
    for (int i = 0; i < 32766 + 32768; ++i) Call(dialog, "DecrementCount");
    EXPECT_EQ(ErrorOf([&] { Call(dialog, "DecrementCount"); }), 6);
}

TEST_F(DialogTest, TheTitleTakesOneMarkForEachName) {
    main.Main();
    const auto layer = cOLELayer::Create(main);
    for (const char16_t* pbx : {u"", u"Main", u"Main", u"MAIN", u"Mai"}) {
        EXPECT_FALSE(Call(layer, "RegisterPBX", pbx, Host(), std::int16_t{1}).ToBoolean());
        EXPECT_TRUE(*pbx || desk.app.title == u"app title");
        EXPECT_EQ(Window().Caption(), u"caption (" + Text(pbx) + u")");
    }
    EXPECT_EQ(desk.app.title, u"app title (Main) (MAIN) (Mai)");
    Dialog().PutParent(nullptr);
}

// --- the start
// ----------------------------------------------------------------------------------------------

TEST_F(DialogTest, TheStartReadsAllThatNeedsNoWindow) {
    desk.settings.values[u"VELMORA32/10001/InstallPath"] = u"C:\\VELMORA32\\10001\\";
    main.Main();
    const std::string root = "C:\\VELMORA32\\10001\\";
    EXPECT_EQ(desk.Calls()[0], "open " + root + "ADDINS\\..\\MORA32\\DATABASE\\Common.LNG read-only");
    EXPECT_EQ(ToUtf8(main.Data().BackgroundDirectory), root + "ADDINS\\..\\BACKGRND\\");
    EXPECT_EQ(ToUtf8(desk.app.helpFile), root + "ADDINS\\HELP\\Horalink.hlp");
    EXPECT_EQ(main.Data().MarketCode, u"10001");
    EXPECT_FALSE(main.Data().IsStandalone);
    const ButtonTexts& words = desk.app.buttons;
    EXPECT_EQ(words.ok + words.cancel + words.help + words.keepWaiting + words.giveUp,
              u"okcancelhelpkeep waitinggive up");
    desk.Calls();
    main.LoadAddIn();
    const Notes calls = desk.Calls();
    EXPECT_EQ(calls[0], "open " + root + "ADDINS\\..\\MORA32\\DATABASE\\Register.mdb");
    EXPECT_EQ(desk.databases.Ask(u"Register.mdb", u"select Version from Registry where Title = 'clock'"),
              Value(u"13.0.1"));
    EXPECT_EQ(ToUtf8(desk.app.helpFile), root + "ADDINS\\HELP\\Horalink.HLP");
    EXPECT_EQ(desk.app.waits.busyTimeout, 10000);
    EXPECT_EQ(desk.app.waits.pendingTimeout, 20000);
}

TEST_F(DialogTest, AnUnknownMarketIsTheFirst) {
    desk.app.path = u"C:\\Tools";
    main.Main();
    EXPECT_EQ(main.Data().MarketCode, u"10001");
}

// Whatever fails first ends the process with its one notice.
TEST_F(DialogTest, AStartThatFailsEndsTheProcess) {
    const Table<Text, const char*, bool> cases = {{u"Common.LNG", nullptr, false},
                                                  {u"Horalink.lng", nullptr, false},
                                                  {u"Horalink.lng", "drop table tProject", false},
                                                  {u"Horalink.lng", "drop table tMessages", false},
                                                  {u"Register.mdb", nullptr, true}};
    for (const auto& [file, sql, atCreation] : cases) {
        Process process;
        sql ? process.desk.databases.Add(file, sql) : process.desk.databases.Remove(file);
        if (atCreation) process.main.Main();
        EXPECT_THROW(atCreation ? void(cOLELayer::Create(process.main)) : process.main.Main(), Ended)
            << ToUtf8(file);
        EXPECT_EQ(process.desk.Boxes().size(), 1U) << ToUtf8(file);
    }
}

TEST_F(DialogTest, ADialogThatUnloadsItselfWhileItLoadsEndsNoService) {
    main.Main();
    ServerLife life(desk.automation, desk.timers, [] {});
    main.Retire = [&] { life.Retire(); };
    life.Serve(cOLELayer::className, [&] { return cOLELayer::Create(main); });
    desk.databases.Add(u"Horalink.lng", "drop table tControls");
    ObjectRef layer = desk.automation.Create();
    EXPECT_FALSE(Window().IsLoaded());
    EXPECT_EQ(desk.automation.served, cOLELayer::className);
}

TEST_F(DialogTest, OnlyAServerThatIsNotUsedEnds) {
    main.Main();
    int ends = 0;
    ServerLife life(desk.automation, desk.timers, [&] { ++ends; });
    life.Serve(cOLELayer::className, [&] { return cOLELayer::Create(main); });
    desk.timers.Pass(59999);
    desk.databases.FailAt(1, DataError::DiskError);
    desk.boxes.whileOpen = [&] { desk.timers.Pass(600000); };
    EXPECT_THROW(desk.automation.grant(), Ended) << "by the notice, which the operator read for long";
    EXPECT_EQ(ends, 0);
    desk.timers.Pass(59999);
    ObjectRef layer = desk.automation.Create();
    desk.timers.Pass(600000);
    EXPECT_EQ(ends, 0);
    EXPECT_THROW(desk.automation.Release(layer), Ended);
}

// --- stand-alone
// --------------------------------------------------------------------------------------------

struct StandaloneTest : DialogTest {
    StandaloneTest() {
        desk.app.startMode = 0;
        desk.app.command = u"Main";
        host->answers["ConnectToPbx"] = Gives(u"C1");
        host->answers["Login"] = Gives(u"L1");
        host->answers["SendRequest"] = [this](Arguments& a) {
            return request = a[0].ToObject(), Value(u"taken");
        };
        desk.automation.others[u"SwitchDeskProj10001.cPBXOle"] = Host();
        desk.app.waits.pendingTimeout = 20000;
    }
    void Click(std::size_t button) {
        desk.toolkit.Open()->Click(*Controls().cmdButton[button]);
        desk.timers.Pass(100);
    }
    ObjectRef request;
};

TEST_F(StandaloneTest, ConnectsByTheCommandLineAndWorksWithoutAHostObject) {
    main.Main();
    EXPECT_TRUE(Window().Visible());
    EXPECT_EQ(host->Calls(), Notes{"ConnectToPbx Main object"});
    Click(button::lookup);
    EXPECT_EQ(host->Calls(), (Notes{"Login Main object", "SendRequest object"}));
    ObjectRef answer = request;  // a record serves as an answer: it has all that is needed but a message
    Dialog().CallBack(answer);
    desk.timers.Pass(100);
    EXPECT_EQ(host->Calls(), Notes{"LogOut Main L1"});
    EXPECT_EQ(desk.Boxes(), Notes{"not read|16|-|C:\\VELMORA32\\10001\\ADDINS\\read.hlp|73"});
    host->answers["Login"] = [](Arguments&) -> Value { throw RuntimeError(1004, u"no"); };
    Click(button::lookup);
    EXPECT_EQ(desk.Boxes(), Notes{"login failed|48|login title|-|0"});
    host->Calls();
    Window().KeyDown(112);
    Click(button::hide);
    EXPECT_FALSE(Window().IsLoaded());
    EXPECT_EQ(host->Calls(), Notes{"LogOut Main C1"}) << "the key of the connection";
}

TEST_F(StandaloneTest, AHostThatWasGivenUpStillHearsOfTheLogOut) {
    main.Main();
    host->answers["SendRequest"] = [this](Arguments&) {
        desk.timers.Pass(20000);
        desk.waits.Answer(true);
        return Value(u"taken");
    };
    Click(button::lookup);
    EXPECT_TRUE(Window().Enabled());
    desk.timers.Pass(0);
    EXPECT_EQ(host->Calls().back(), "LogOut Main L1");
}

// One limit over the whole of an answer, however soon each of its items comes; and whoever closes the window
// does not wait for the rest.
TEST_F(StandaloneTest, ALongAnswerOfASlowHostHasOneLimitAndOneBox) {
    main.Main();
    const auto slow = std::make_shared<NotedHost>();
    slow->answers["Count"] = Gives(std::int16_t{32767});
    int read = 0;
    slow->answers["CMD"] = [&](Arguments&) {
        desk.timers.Pass(1000);
        if (++read == 40) desk.waits.Answer(true);
        if (read == 50) desk.toolkit.Open()->Close();
        return Value(u"02");
    };
    for (const char* list : {"FirstData", "SecondData", "ExtraData"}) slow->answers[list] = Gives(u"");
    for (const int last : {40, 50}) {
        if (last == 40) Click(button::lookup);
        ObjectRef answer = desk.automation.Far(slow, peer);
        Dialog().CallBack(answer);
        EXPECT_EQ(read, last);
        EXPECT_EQ(desk.waits.opened.size(), 1U);
        EXPECT_TRUE(Window().Enabled());
    }
    desk.timers.Pass(100);
    EXPECT_FALSE(Window().IsLoaded());
    EXPECT_EQ(desk.Boxes(), Notes());
}

TEST_F(StandaloneTest, WithoutAConnectionTheButtonsAreDead) {
    NoAutomation none(desk.timers, desk.waits, desk.app.waits);
    const Services alone{desk.app,    desk.clock, desk.locale, desk.settings, desk.databases, none,
                         desk.timers, desk.boxes, desk.screen, desk.toolkit,  desk.pictures,  [] {}};
    host->answers["ConnectToPbx"] = Gives(u"");
    for (const Services* services : {&alone, &std::as_const(desk.services)}) {
        AddInMain start(*services);
        start.Main();
        EXPECT_TRUE(start.Dialog().Window().Visible());
        EXPECT_EQ(start.Dialog().CheckLoadError(), services == &alone);
        const auto& buttons = start.Dialog().Controls().cmdButton;
        EXPECT_FALSE(buttons[button::update]->Enabled || buttons[button::lookup]->Enabled);
        EXPECT_TRUE(buttons[button::hide]->Enabled());
    }
    EXPECT_EQ(desk.Boxes(), Notes());
}

TEST_F(StandaloneTest, WithoutANameNoDialogIsMade) {
    desk.app.command = u"";
    main.Main();
    EXPECT_TRUE(main.Data().IsStandalone);
    EXPECT_FALSE(Window().IsLoaded());
    EXPECT_EQ(desk.automation.created, std::vector<Text>());
}

}  // namespace
