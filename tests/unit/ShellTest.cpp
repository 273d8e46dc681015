#include <gtest/gtest.h>

#include "Fakes.h"
#include "shell/cOLELayer.h"

using namespace horalink;
using namespace platform;
using Calls = std::vector<std::string>;

namespace {

struct ShellTest : testing::Test {
    ShellTest() { computer.app.startMode = 1; }
    bool EndsInMain() {
        try {
            main.Main();
            return false;
        } catch (const fakes::Ended&) {
            return true;
        }
    }
    fakes::Computer computer;
    AddInMain main{computer.services};
};

TEST_F(ShellTest, AnAutomationRunPreparesAndShowsNothing) {
    ASSERT_FALSE(EndsInMain());
    EXPECT_EQ(main.Data().MarketCode, u"10001");
    EXPECT_EQ(computer.app.title, u"Horalink");
    EXPECT_EQ(computer.app.helpFile, u"C:\\VELMORA32\\10001\\ADDINS\\HELP\\Horalink.hlp");
    EXPECT_EQ(main.Data().BackgroundDirectory, u"C:\\VELMORA32\\10001\\ADDINS\\..\\BACKGRND\\");
    EXPECT_EQ(computer.engine.opened,
              (std::vector<Text>{u"C:\\VELMORA32\\10001\\ADDINS\\..\\MORA32\\DATABASE\\Common.LNG",
                                 u"C:\\VELMORA32\\10001\\ADDINS\\DATABASE\\Horalink.lng"}));
    EXPECT_FALSE(main.Data().IsStandalone);
}

TEST_F(ShellTest, EachStepThatFailsIsTheLastAndShowsOneNotice) {
    const struct {
        std::function<void()> fault;
        std::size_t opened;
    } cases[] = {
        {[&] { computer.engine.files.erase(u"Common.LNG"); }, 1},
        {[&] { computer.engine.files.erase(u"Horalink.lng"); }, 2},
        {[&] { computer.language->answers.erase(fakes::Computer::projectQuery); }, 2},
        {[&] { computer.language->answers.erase(fakes::Computer::messagesQuery); }, 2},
    };
    for (auto fault = std::rbegin(cases); fault != std::rend(cases); ++fault) {
        fault->fault();
        computer.engine.opened.clear();
        computer.boxes.shown.clear();
        EXPECT_TRUE(EndsInMain());
        EXPECT_EQ(computer.boxes.shown.size(), 1U);
        EXPECT_EQ(computer.boxes.shown[0].title, u"System Fatal Notice");
        EXPECT_EQ(computer.engine.opened.size(), fault->opened);
    }
}

TEST_F(ShellTest, AnyOtherStartModeIsAStandAloneRun) {
    computer.app.startMode = 0;
    for (const char16_t* command : {u"", u"  ", u"Main Office"}) {
        computer.app.command = command;
        AddInMain run(computer.services);
        run.Main();
        EXPECT_TRUE(run.Data().IsStandalone);
        EXPECT_EQ(run.Dialog().Window().Visible(), !computer.app.command.empty()) << ToUtf8(command);
    }
}

TEST_F(ShellTest, AMarketCodeThatIsNotInThePathIsTheDefault) {
    computer.app.path = u"C:\\Tools";
    ASSERT_FALSE(EndsInMain());
    EXPECT_EQ(main.Data().MarketCode, u"10001");
}

struct LayerTest : ShellTest {
    LayerTest() {
        main.Main();
        for (const char* member : {"GetComData", "REGComData", "UnloadChild"})
            host->answers[member] = [](Arguments&) { return Value(); };
    }
    Calls calls;
    std::shared_ptr<fakes::RecordedObject> host = std::make_shared<fakes::RecordedObject>(calls);
};

TEST_F(LayerTest, CreatingLoadsTheDialogWithoutShowingIt) {
    const auto layer = cOLELayer::Create(main);
    EXPECT_TRUE(main.Dialog().Window().IsLoaded());
    EXPECT_FALSE(Get(layer, "Visible").ToBoolean());
    EXPECT_EQ(computer.app.waits.busyTimeout, 10000);
    EXPECT_EQ(computer.app.waits.pendingTimeout, 20000);
    EXPECT_EQ(computer.app.helpFile, u"C:\\VELMORA32\\10001\\ADDINS\\HELP\\Horalink.HLP");
}

TEST_F(LayerTest, EveryCreationRecordsTheVersionAndAFailureEndsTheProcess) {
    computer.app.major = 13;
    computer.app.revision = 1;
    const auto first = cOLELayer::Create(main), second = cOLELayer::Create(main);
    EXPECT_EQ(computer.registry->updated,
              (fakes::Rows{{{u"Version", u"13.0.1"}}, {{u"Version", u"13.0.1"}}}));
    EXPECT_TRUE(computer.registry->closed);
    computer.registry->answers.begin()->second.clear();
    EXPECT_NO_THROW(cOLELayer::Create(main)) << "an add-in that isn't in the register runs all the same";
    EXPECT_TRUE(computer.boxes.shown.empty());
    computer.engine.files.erase(u"Register.mdb");
    EXPECT_THROW(cOLELayer::Create(main), fakes::Ended);
    ASSERT_EQ(computer.boxes.shown.size(), 1U);
    EXPECT_EQ(computer.boxes.shown[0].title, u"System Fatal Notice");
}

TEST_F(LayerTest, TheTitleTakesOneMarkForEachName) {
    const auto layer = cOLELayer::Create(main);
    const auto name = [&](const char16_t* pbx) {
        EXPECT_FALSE(Call(layer, "RegisterPBX", pbx, host, std::int16_t{1}).ToBoolean());
    };
    name(u"");
    EXPECT_EQ(computer.app.title, u"Horalink");
    for (const char16_t* pbx : {u"Main", u"Main", u"MAIN", u"Mai"}) name(pbx);
    EXPECT_EQ(computer.app.title, u"Horalink (Main) (MAIN) (Mai)");
    EXPECT_EQ(calls, (Calls{"GetComData"})) << "placed once";
}

TEST_F(LayerTest, TheLastOfTwoSavesThePlaceUnloadsAndEnds) {
    const auto first = cOLELayer::Create(main), second = cOLELayer::Create(main);
    Call(first, "RegisterPBX", u"Main", host, std::int16_t{1});
    Put(second, "Visible", true);
    EXPECT_TRUE(Get(first, "Visible").ToBoolean()) << "one dialog for all";
    calls.clear();
    first->LastClientGone();
    EXPECT_TRUE(calls.empty());
    EXPECT_THROW(second->LastClientGone(), fakes::Ended);
    EXPECT_EQ(calls, (Calls{"REGComData"})) << "a host that leaves is not told of the unload";
}

}  // namespace
