// The dialog and the start of the process, as far as the model does not play them: what is laid down by
// tables, the stand-alone run, and what goes wrong at the start.
#include <gtest/gtest.h>

#include "exchange/dlgAddin.h"
#include "harness/Cases.h"
#include "harness/Desk.h"
#include "shell/ServerLife.h"
#include "shell/cOLELayer.h"

using namespace horalink;
using namespace platform;
using desk::Notes;

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
        const auto& answer = answers[std::string(member)];
        return answer ? answer(arguments) : Value();
    }
    Notes Calls() { return std::exchange(calls, {}); }

    Notes calls;
    std::map<std::string, Answer> answers;
};

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

    std::shared_ptr<NotedHost> host = std::make_shared<NotedHost>();
    std::shared_ptr<headless::Peer> peer = std::make_shared<headless::Peer>();
};

TEST_F(DialogTest, EachSectionOfTheTimeIsSteppedInItsOwnRange) {
    Open();
    Window().Show();
    headless::Window& window = *desk.toolkit.Open();
    const Table<std::size_t, Text, Text, Text> cases = {{0, u"12", u"01", u"11"}, {0, u"01", u"02", u"12"},
                                                        {1, u"59", u"00", u"58"}, {2, u"00", u"01", u"59"},
                                                        {3, u"PM", u"AM", u"AM"}, {3, u"??", u"PM", u"PM"}};
    for (const auto& [section, from, up, down] : cases)
        for (const bool isUp : {true, false}) {
            auto& box = *Controls().txtTime[section];
            box.Text = from;
            window.Enter(box);
            EXPECT_EQ(box.Text(), from) << "the focus changes nothing";
            window.Step(*Controls().updTime, isUp);
            EXPECT_EQ(Joined(box.Text(), box.SelStart(), box.SelLength()), Joined(isUp ? up : down, 0, 2));
        }
    Controls().txtTime[3]->LostFocus();
    Controls().chkTrack->SetValue(1);
    EXPECT_FALSE(Controls().updTime->Enabled);
    Controls().txtTime[3]->GotFocus(), Controls().updTime->StepUp();
    EXPECT_EQ(Controls().txtTime[3]->Text(), u"PM") << "no section is under edit";
}

TEST_F(DialogTest, HelpIsOfferedOnTheRightControlsByTheRightButton) {
    Open();
    Window().Show();
    headless::Window& window = *desk.toolkit.Open();
    const auto& item = Controls().itmWhatsThis->Click;
    EXPECT_EQ(FaultOf(item), "91 Object variable is not set") << "nothing was pointed at";
    std::string topics;
    for (const auto& control : Window().Controls()) {
        if (!control->MouseUp) continue;
        control->MouseUp(forms::MouseButton::Left), control->MouseUp(forms::MouseButton::Middle);
        EXPECT_EQ(window.popped, nullptr) << ToUtf8(control->Name());
        window.RightClick(*control);
        ASSERT_EQ(window.popped, Controls().mnuWhatsThis);
        window.ChooseFromMenu(0);
        window.popped = nullptr;
        topics += ToUtf8(control->Name()) + std::to_string(control->Index()) + " " +
                  std::to_string(*window.topic) + ", ";
    }
    EXPECT_EQ(
        topics,
        "lblBevel1 3, lblTime-1 3, lblColon1 3, lblColon0 3, lblBevel0 2, lblTrack-1 4, lblTrackDate-1 5, "
        "txtTime3 3, updTime-1 3, txtTime2 3, txtTime1 3, txtTime0 3, chkTrack-1 4, chkTrackDate-1 5, ");
}

TEST_F(DialogTest, PlacesOutOfTheHostsStore) {
    Open();
    const std::string middle = "3945|3817.5|", unmoved = "3150|2295|";
    const std::pair<const char16_t*, std::string> cases[] = {
        {u"", middle},           {u",", middle},    {u"0,0", "0|0|"}, {u"-30,45.5", "-30|45.5|"},
        {u"10,20,30", "10|20|"}, {u"10,", unmoved}, {u"10", unmoved}, {u"a,b", unmoved}};
    const auto placed = [&](NotedHost::Answer answer) {
        Window().Move(3150, 2295);
        host->answers["GetComData"] = std::move(answer);
        Call(Dialog().shared_from_this(), "FrmMove", Host());
        return Joined(Window().Left(), Window().Top());
    };
    for (const auto& [stored, place] : cases)
        EXPECT_EQ(placed([text = Text(stored)](Arguments& a) { return a[2] = text, Value(); }), place)
            << ToUtf8(stored);
    EXPECT_EQ(placed([](Arguments&) -> Value { throw RuntimeError(1004, u"no"); }), middle);
    EXPECT_EQ(host->Calls(), Notes(9, "GetComData Horalink MOVE "));
    Dialog().PutParent(Host());
    EXPECT_EQ(placed({}), unmoved) << "with its host it stays";
    Call(Dialog().shared_from_this(), "FrmPositionSave");
    for (const bool on : {true, false}) Call(Dialog().shared_from_this(), "TurnFlow", on);
    EXPECT_EQ(host->Calls(), (Notes{"REGComData Horalink MOVE 3150,2295", "TurnOnFlow", "TurnOffFlow"}));
}

TEST_F(DialogTest, TheTitleTakesOneMarkForEachName) {
    main.Main();
    const auto layer = cOLELayer::Create(main);
    for (const char16_t* pbx : {u"", u"Main", u"Main", u"MAIN", u"Mai"}) {
        EXPECT_FALSE(Call(layer, "RegisterPBX", pbx, Host(), std::int16_t{1}).ToBoolean());
        EXPECT_EQ(Window().Caption(), u"caption (" + Text(pbx) + u")");
    }
    EXPECT_EQ(desk.app.title, u"app title (Main) (MAIN) (Mai)");
    const forms::Calendar& calendar = *Controls().Calendar;
    EXPECT_EQ(Joined(Window().Font->Name(), calendar.dayfont->Name(), calendar.dayfont->Charset(),
                     calendar.MarketStyle(), calendar.ShowOption()),
              "Form Sans|Form Sans|128|1|True|");
    desk.pictures.files = {{main.Data().BackgroundDirectory + u"sand.svg", "sand"}};
    Call(layer, "SetBackGround", 2);
    EXPECT_EQ(Controls().imgBack->Picture()->Content(), "sand");
    Window().Unload();
    EXPECT_EQ(host->Calls(), (Notes{"GetComData Horalink MOVE ", "UnloadChild 1"}));
    Dialog().PutParent(nullptr);
}

TEST_F(DialogTest, TheStartReadsAllThatNeedsNoWindow) {
    desk.settings.values[u"VELMORA32/10001/InstallPath"] = u"C:\\VELMORA32\\10001\\";
    main.Main();
    const std::string root = "C:\\VELMORA32\\10001\\";
    EXPECT_EQ(Joined(main.Data().BackgroundDirectory, desk.app.helpFile, main.Data().MarketCode,
                     desk.app.buttons.ok, desk.app.buttons.giveUp),
              root + "ADDINS\\..\\BACKGRND\\|" + root + "ADDINS\\HELP\\Horalink.hlp|10001|ok|give up|");
    main.LoadAddIn();
    EXPECT_EQ(desk.databases.opened, (Notes{root + "ADDINS\\..\\MORA32\\DATABASE\\Common.LNG read-only",
                                            root + "ADDINS\\DATABASE\\Horalink.lng",
                                            root + "ADDINS\\..\\MORA32\\DATABASE\\Register.mdb"}));
    EXPECT_EQ(
        desk.databases.OpenDatabase(u"Register.mdb", true)
            ->OpenRecordset(u"select Version from Registry where Title = 'clock'", RecordsetType::ForwardOnly)
            ->Field(u"Version"),
        Value(u"13.0.1"));
    EXPECT_EQ(Joined(desk.app.helpFile, desk.app.waits.busyTimeout, desk.app.waits.pendingTimeout),
              root + "ADDINS\\HELP\\Horalink.HLP|10000|20000|");
    desk.app.path = u"C:\\Tools";
    main.Main();
    EXPECT_EQ(main.Data().MarketCode, u"10001") << "an unknown market is the first";
}

TEST_F(DialogTest, WhateverFailsFirstEndsTheProcessWithItsOneNotice) {
    for (int call = 1, isOver = 0; !isOver; ++call) {
        Process process;
        process.desk.databases.FailAt(call, DataError::DiskError);
        try {
            process.main.Main();
            isOver = call > 10;
            EXPECT_TRUE(isOver && !process.desk.databases.HasFailed());
        } catch (const Ended&) {
            EXPECT_EQ(process.desk.Boxes().size(), 1U) << call;
        }
    }
}

TEST_F(DialogTest, OnlyAServerThatIsNotUsedEnds) {
    int ends = 0;
    ServerLife life(desk.automation, desk.timers, [&] { ++ends; });
    main.Main();
    main.Retire = [&] { life.Retire(); };
    life.Serve(cOLELayer::className, [&] { return cOLELayer::Create(main); });
    desk.timers.Pass(59999);
    desk.databases.FailAt(1, DataError::DiskError);
    desk.boxes.whileOpen = [&] { desk.timers.Pass(600000); };
    EXPECT_THROW(desk.automation.grant(), Ended) << "by the notice, which the operator read for long";
    desk.timers.Pass(59999);
    EXPECT_EQ(ends, 0);
    desk.timers.Pass(1);
    EXPECT_EQ(std::exchange(ends, 0), 1);
    ObjectRef layer = desk.automation.Create();
    desk.timers.Pass(600000);
    EXPECT_EQ(ends, 0);
    EXPECT_THROW(desk.automation.Release(layer), Ended);
}

struct StandaloneTest : DialogTest {
    StandaloneTest() {
        desk.app.startMode = 0;
        desk.app.command = u"Main";
        host->answers["ConnectToPbx"] = [](Arguments&) { return u"C1"; };
        host->answers["Login"] = [](Arguments&) { return u"L1"; };
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

TEST_F(StandaloneTest, WithoutAConnectionTheButtonsAreDeadAndWithoutANameNoDialogIsMade) {
    host->answers["ConnectToPbx"] = [](Arguments&) { return u""; };
    {
        AddInMain start(desk.services);
        start.Main();
        const auto& buttons = start.Dialog().Controls().cmdButton;
        EXPECT_EQ(Joined(start.Dialog().Window().Visible(), start.Dialog().CheckLoadError(),
                         buttons[button::hide]->Enabled(), buttons[button::update]->Enabled(),
                         buttons[button::lookup]->Enabled()),
                  "True|False|True|False|False|");
        EXPECT_EQ(desk.Boxes(), Notes());
    }
    desk.app.command = u"";
    main.Main();
    EXPECT_FALSE(Window().IsLoaded());
    EXPECT_EQ(desk.automation.created.size(), 1U) << "that of the dialog above";
    desk.app.command = u"Main";
    desk.databases.Add(u"Horalink.lng", "drop table tControls");
    EXPECT_THROW(AddInMain(desk.services).Main(), Ended);
}

}  // namespace
