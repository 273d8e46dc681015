#include <gtest/gtest.h>

#include "Desk.h"
#include "Table.h"
#include "harness/SmallTexts.h"
#include "locator/VersionRecord.h"
#include "locator/comRegMarket.h"
#include "locator/comRegMora32.h"

using namespace horalink;
using namespace platform;
using desk::Notes;

namespace {

TEST(MarketCodeTest, IsReadOutOfThePath) {
    const Table<TextView, TextView, TextView> cases = {
        {u"C:\\VELMORA32\\12345\\ADDINS", u"Addins", u"12345"},
        {u"C:\\VELMORA32\\12345\\ADDINS", u"MORA32", u"NONE"},
        {u"C:\\VELMORA32\\12345\\MORA32", u"Mora32", u"12345"},
        {u"C:\\XELMORA32\\12345\\ADDINS", u"Addins", u"NONE"},
        {u"C:\\X\\VELMORA32X12345XADDINS", u"ADDINS", u"12345"},
        {u"\\opt\\velmora32\\ab1cd\\addins", u"addins", u"AB1CD"},
        {u"VELMORA32\\1234\\ADDINS", u"ADDINS", u"NONE"},
        {u"", u"ADDINS", u"NONE"},
        {u"C:\\reader\\5432a", u"Reader", u"5432A"},
        {u"C:\\READER\\5432", u"Reader", u"NONE"}};
    for (const auto& [path, keyword, code] : cases)
        EXPECT_EQ(GetMarketCode(path, keyword), code) << ToUtf8(path);
}

TEST(DirectoryTest, FollowsTheSettingTheKeywordAndThePath) {
    const TextView ours = u"C:\\velmora32\\10001\\addins", tools = u"C:\\Tools",
                   mora = u"C:\\VELMORA32\\10001\\MORA32", other = u"C:\\Other\\30003";
    const Text own = u"VELMORA32/10001/Printer", none = u"VELMORA32/NONE/InstallPath";
    using Settings = std::map<Text, Text>;
    const Table<TextView, TextView, TextView, Settings, Text> cases = {
        {tools, u"Addins", u"Database", {}, u"C:\\TOOLS\\DATABASE\\"},
        {tools, u"Addins", u"RegDBofMora32", {}, u"C:\\TOOLS\\..\\MORA32\\DATABASE\\"},
        {tools, u"Addins", u"ME", {{none, u"NONE"}}, u"C:\\TOOLS\\"},
        {tools, u"Addins", u"ME", {{none, u"none"}}, u"NONEADDINS\\"},
        {ours, u"addins", u"me", {}, u"D:\\VELMORA32\\10001\\ADDINS\\"},
        {ours, u"Addins", u"Help", {}, u"D:\\VELMORA32\\10001\\ADDINS\\HELP\\"},
        {ours, u"Addins", u"Report", {}, u"D:\\VELMORA32\\10001\\ADDINS\\REPORT\\"},
        {ours, u"Addins", u"BackGrnd", {}, u"D:\\VELMORA32\\10001\\ADDINS\\..\\BACKGRND\\"},
        {ours, u"Addins", u"ACROBATRD", {}, u"30000"},
        {mora, u"Mora32", u"ACROBATRD", {}, u"D:\\VELMORA32\\10001\\MORA32\\READER\\"},
        {mora, u"Mora32", u"RegDBofMora32", {}, u"D:\\VELMORA32\\10001\\MORA32\\DATABASE\\"},
        {mora, u"Mora32", u"BackGrnd", {}, u"D:\\VELMORA32\\10001\\MORA32\\..\\BACKGRND\\"},
        {other, u"Other", u"me", {}, u"F:\\OTHER\\"},
        {other, u"Other", u"BackGrnd", {}, u"30000"},
        {other, u"Other", u"RegDBofMora32", {}, u"30000"},
        // Another application lies under its own market code, by its name as written.
        {ours, u"Addins", u"Printer", {{own, u"20002"}}, u"E:\\PRINTER\\"},
        {ours, u"Addins", u"PRINTER", {{own, u"20002"}}, u"C:\\VELMORA32\\10001\\ADDINS\\"},
        {ours, u"Addins", u"Printer", {{own, u"2000"}}, u"C:\\VELMORA32\\10001\\ADDINS\\"},
        {ours, u"Addins", u"Printer", {{own, u"99999"}}, u"\\"}};
    for (const auto& [path, base, directory, more, result] : cases) {
        headless::Settings settings;
        settings.values = more;
        settings.values.insert({{u"VELMORA32/10001/InstallPath", u"D:\\Velmora32\\10001\\"},
                                {u"OTHER/30003/InstallPath", u"F:\\Other\\"},
                                {u"Printer/20002/InstallPath", u"E:\\Printer\\"}});
        EXPECT_EQ(ResolveDirectory(path, settings, base, directory), result) << ToUtf8(result);
    }
}

struct VersionRecordTest : testing::Test {
    VersionRecordTest() {
        computer.app.path = u"C:\\Velmora32\\10001\\Mora32";
        harness::AddSmallTexts(databases);
        databases.Add(u"Register.mdb",
                      "drop table Registry; create table Registry (AppName, Version, Other);"
                      "insert into Registry values ('Another.mra', '1', 'a'),"
                      " ('Horalink.mra', '2', 'b'), ('Horalink.mra', '3', 'c')");
    }
    bool Update(TextView name = u"Horalink.mra") {
        computer.Calls();
        return UpdateAddInVersion(computer.services, u"Mora32", name, u"13.0.1");
    }
    std::string Rows() {
        return ToUtf8(
            databases.Ask(u"Register.mdb", u"select group_concat(AppName || Version || Other) from Registry")
                .ToText());
    }
    desk::Desk computer;
    harness::MemoryDatabases& databases = computer.databases;
    const std::string open = "open C:\\VELMORA32\\10001\\MORA32\\DATABASE\\Register.mdb",
                      query = "rows 2 SELECT * FROM Registry WHERE AppName = \"Horalink.mra\"";
};

TEST_F(VersionRecordTest, TheFirstRowOfTheNameTakesTheVersion) {
    EXPECT_TRUE(Update());
    EXPECT_EQ(computer.Calls(), (Notes{open, query, "edit", "set Version", "update", "close rows", "close"}));
    EXPECT_TRUE(Update(u"Nobody.mra"));
    EXPECT_EQ(computer.Calls().size(), 4U) << "opened, asked and closed both";
    EXPECT_EQ(Rows(), "Another.mra1a,Horalink.mra13.0.1b,Horalink.mra3c");
    EXPECT_EQ(computer.Boxes(), Notes{});
}

TEST_F(VersionRecordTest, EveryFailureIsTheShortNoticeAndClosesTheRegister) {
    const std::string notice = desk::Short("The database file can't be read or written", 3043);
    for (int call = 1; call <= 8; ++call) {
        databases.FailAt(call, DataError::DiskError);
        EXPECT_FALSE(Update()) << call;
        EXPECT_EQ(computer.Boxes(), Notes{notice}) << call;
        EXPECT_EQ(computer.Calls().back() == "close", call > 1) << call;
    }
    databases.Remove(u"Register.mdb");
    EXPECT_FALSE(Update());
    EXPECT_EQ(computer.Boxes(),
              Notes{desk::Short("C:\\VELMORA32\\10001\\MORA32\\DATABASE\\Register.mdb", 3024)});
}

}  // namespace
