#include <gtest/gtest.h>

#include "ErrorOf.h"
#include "Fakes.h"
#include "Table.h"
#include "locator/comRegMarket.h"
#include "locator/comRegMora32.h"
#include "shell/ServerLife.h"
#include "shell/cOLELayer.h"

using namespace horalink;
using namespace platform;

namespace {

TEST(MarketCodeTest, IsReadOutOfThePath) {
    const std::array<const char16_t*, 3> cases[] = {{u"C:\\VELMORA32\\12345\\ADDINS", u"Addins", u"12345"},
                                                    {u"C:\\VELMORA32\\12345\\ADDINS", u"MORA32", u"NONE"},
                                                    {u"C:\\X\\VELMORA32X12345XADDINS", u"ADDINS", u"12345"},
                                                    {u"\\opt\\velmora32\\ab1cd\\addins", u"addins", u"AB1CD"},
                                                    {u"VELMORA32\\1234\\ADDINS", u"ADDINS", u"NONE"},
                                                    {u"", u"ADDINS", u"NONE"},
                                                    {u"C:\\READER\\54321", u"Reader", u"54321"}};
    for (const auto& [path, keyword, code] : cases)
        EXPECT_EQ(GetMarketCode(path, keyword), code) << ToUtf8(path);
}

TEST(DirectoryTest, FollowsTheSettingTheKeywordAndThePath) {
    const TextView ours = u"C:\\velmora32\\10001\\addins", tools = u"C:\\Tools",
                   mora = u"C:\\VELMORA32\\10001\\MORA32";
    const Text own = u"VELMORA32/10001/Printer", none = u"VELMORA32/NONE/InstallPath";
    const Table<TextView, TextView, TextView, std::map<Text, Text>, Text> cases = {
        {tools, u"Addins", u"Database", {}, u"C:\\TOOLS\\DATABASE\\"},
        {tools, u"Addins", u"ME", {{none, u"NONE"}}, u"C:\\TOOLS\\"},
        {tools, u"Addins", u"ME", {{none, u"none"}}, u"NONEADDINS\\"},
        {ours, u"addins", u"me", {}, u"D:\\VELMORA32\\10001\\ADDINS\\"},
        {ours, u"Addins", u"BackGrnd", {}, u"D:\\VELMORA32\\10001\\ADDINS\\..\\BACKGRND\\"},
        {ours, u"Addins", u"ACROBATRD", {}, u"30000"},
        {ours, u"Other", u"BackGrnd", {}, u"30000"},
        {mora, u"Mora32", u"ACROBATRD", {}, u"D:\\VELMORA32\\10001\\MORA32\\READER\\"},
        {mora, u"Mora32", u"RegDBofMora32", {}, u"D:\\VELMORA32\\10001\\MORA32\\DATABASE\\"},
        // Another application lies under its own market code.
        {ours, u"Addins", u"Printer", {{own, u"20002"}}, u"E:\\PRINTER\\"},
        {ours, u"Addins", u"Printer", {{own, u"2000"}}, u"C:\\VELMORA32\\10001\\ADDINS\\"},
        {ours, u"Addins", u"Printer", {{own, u"99999"}}, u"\\"}};
    for (const auto& [path, base, directory, more, result] : cases) {
        fakes::FakeSettings settings;
        settings.values = more;
        settings.values.insert({{u"VELMORA32/10001/InstallPath", u"D:\\Velmora32\\10001\\"},
                                {u"Printer/20002/InstallPath", u"E:\\Printer\\"}});
        EXPECT_EQ(ResolveDirectory(path, settings, base, directory), result) << ToUtf8(result);
    }
}

struct ShellTest : testing::Test {
    ShellTest() { computer.app.startMode = 1; }
    fakes::Computer computer;
    AddInMain main{computer.services};
};

TEST_F(ShellTest, TheMarketIsTheDefaultWhereThePathNamesNone) {
    computer.app.path = u"C:\\Tools";
    main.Main();
    EXPECT_EQ(main.Data().MarketCode, u"10001");
}

TEST_F(ShellTest, BoxesHaveTheWordsOfTheMessageTableFromTheStart) {
    fakes::Rows& rows = computer.language->answers[fakes::Computer::messagesQuery];
    rows[0][u"Caption"] = 8;
    rows.push_back({{u"ID", 7}, {u"Caption", u"Gut"}});
    main.Main();
    EXPECT_EQ(computer.app.buttons.ok + u"|" + computer.app.buttons.cancel, u"Gut|Cancel");
}

TEST_F(ShellTest, TheTitleTakesOneMarkForEachNameAndTheDialogIsPlacedOnce) {
    std::vector<std::string> calls;
    const auto host = std::make_shared<fakes::RecordedObject>(calls);
    main.Main();
    const auto layer = cOLELayer::Create(main);
    for (const char16_t* pbx : {u"", u"Main", u"Main", u"MAIN", u"Mai"}) {
        EXPECT_FALSE(Call(layer, "RegisterPBX", pbx, host, std::int16_t{1}).ToBoolean());
        EXPECT_TRUE(*pbx || computer.app.title == u"Horalink");
    }
    EXPECT_EQ(computer.app.title, u"Horalink (Main) (MAIN) (Mai)");
    EXPECT_EQ(calls, (std::vector<std::string>{"GetComData"}));
    main.Dialog().PutParent(nullptr);
}

// The process serves, and a test asks for objects as the bus would.
struct LifeTest : ShellTest {
    LifeTest() {
        main.Main();
        main.Retire = [this] { life.Retire(); };
        life.Serve(cOLELayer::className, [this] { return cOLELayer::Create(main); });
    }
    ObjectRef Created() {
        ObjectRef object = computer.automation.grant();
        computer.automation.useChanged(true);
        return object;
    }
    bool IsServing() const { return computer.automation.served == cOLELayer::className; }
    struct Idle {};
    ServerLife life{computer.automation, computer.scheduler, [] { throw Idle(); }};
};

TEST_F(LifeTest, TheNameIsGoneBeforeTheLastReleaseIsAnswered) {
    const auto first = Created(), second = Created();
    first->LastClientLeaves();
    EXPECT_TRUE(IsServing());
    first->LastClientGone();
    second->LastClientLeaves();
    EXPECT_FALSE(IsServing());
    EXPECT_THROW(computer.automation.grant(), BusyError) << "asked before the name was gone";
    EXPECT_THROW(second->LastClientGone(), fakes::Ended);
}

TEST_F(LifeTest, TheNameIsGoneBeforeTheHostHearsOfTheClose) {
    std::vector<std::string> calls;
    const auto host = std::make_shared<fakes::RecordedObject>(calls);
    bool wasServing = true;
    host->answers["UnloadChild"] = [&](Arguments&) { return wasServing = IsServing(), Value(); };
    const auto layer = Created();
    Call(layer, "RegisterPBX", u"Main", host, std::int16_t{1});
    Put(layer, "Visible", true);
    main.Dialog().Window().Unload();
    EXPECT_FALSE(wasServing);
    EXPECT_THROW(computer.automation.grant(), BusyError);
    EXPECT_EQ(ErrorOf([&] { Put(layer, "Visible", true); }), 364) << "who holds an object keeps it";
    layer->LastClientLeaves();
    EXPECT_THROW(layer->LastClientGone(), fakes::Ended);
}

TEST_F(LifeTest, ADialogThatUnloadsItselfWhileItLoadsEndsNoService) {
    computer.language->answers.erase(fakes::Computer::controlsQuery);
    EXPECT_TRUE(Created());
    EXPECT_FALSE(main.Dialog().Window().IsLoaded());
    EXPECT_TRUE(IsServing());
}

TEST_F(LifeTest, OnlyAServerThatIsNotUsedEnds) {
    computer.scheduler.Pass(59999);
    computer.registry->answers.clear();
    computer.boxes.whileOpen = [&] { computer.scheduler.Pass(600000); };
    EXPECT_THROW(computer.automation.grant(), fakes::Ended)
        << "by the notice, which the operator read for long";
    EXPECT_EQ(computer.boxes.shown.size(), 1U);
    computer.scheduler.Pass(59999);
    computer.automation.useChanged(true);
    computer.scheduler.Pass(600000);
    computer.automation.useChanged(false);
    EXPECT_THROW(computer.scheduler.Pass(60000), Idle);
}

}  // namespace
