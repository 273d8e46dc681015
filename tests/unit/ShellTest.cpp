#include <gtest/gtest.h>

#include "Fakes.h"
#include "shell/cOLELayer.h"

using namespace horalink;
using namespace platform;
using Calls = std::vector<std::string>;

namespace {

struct ShellTest : testing::Test {
    ShellTest() { computer.app.startMode = 1; }
    fakes::Computer computer;
    AddInMain main{computer.services};
};

TEST_F(ShellTest, AnAutomationRunPreparesAndShowsNothing) {
    main.Main();
    EXPECT_EQ(main.Data().MarketCode, u"10001");
    EXPECT_EQ(computer.app.title, u"Horalink");
    EXPECT_EQ(computer.app.helpFile, u"C:\\VELMORA32\\10001\\ADDINS\\HELP\\Horalink.hlp");
    EXPECT_EQ(main.Data().BackgroundDirectory, u"C:\\VELMORA32\\10001\\ADDINS\\..\\BACKGRND\\");
    EXPECT_EQ(computer.engine.opened,
              (std::vector<Text>{u"C:\\VELMORA32\\10001\\ADDINS\\..\\MORA32\\DATABASE\\Common.LNG",
                                 u"C:\\VELMORA32\\10001\\ADDINS\\DATABASE\\Horalink.lng"}));
    EXPECT_FALSE(main.Data().IsStandalone);
    computer.app.path = u"C:\\Tools";
    main.Main();
    EXPECT_EQ(main.Data().MarketCode, u"10001") << "the default where it is not in the path";
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

TEST_F(LayerTest, TheTitleTakesOneMarkForEachName) {
    const auto layer = cOLELayer::Create(main);
    for (const char16_t* pbx : {u"", u"Main", u"Main", u"MAIN", u"Mai"}) {
        EXPECT_FALSE(Call(layer, "RegisterPBX", pbx, host, std::int16_t{1}).ToBoolean());
        EXPECT_TRUE(*pbx || computer.app.title == u"Horalink");
    }
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
