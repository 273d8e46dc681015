#include <gtest/gtest.h>

#include "harness/Cases.h"
#include "locator/comRegMarket.h"
#include "locator/comRegMora32.h"
#include "platform/headless/Desktop.h"

using namespace horalink;
using namespace platform;

namespace {

TEST(MarketCodeTest, IsReadOutOfThePath) {
    const Table<TextView, TextView, Text> cases = {{u"C:\\VELMORA32\\12345\\ADDINS", u"Addins", u"12345"},
                                                   {u"C:\\VELMORA32\\12345\\ADDINS", u"MORA32", u"NONE"},
                                                   {u"C:\\X\\VELMORA32X12345XADDINS", u"ADDINS", u"12345"},
                                                   {u"\\velmora32\\ab1cd\\addins", u"addins", u"AB1CD"},
                                                   {u"C:\\reader\\5432a", u"Reader", u"5432A"},
                                                   {u"C:\\XELMORA32\\12345\\ADDINS", u"Addins", u"NONE"},
                                                   {u"VELMORA32\\1234\\ADDINS", u"ADDINS", u"NONE"},
                                                   {u"", u"ADDINS", u"NONE"}};
    for (const auto& [path, base, code] : cases) EXPECT_EQ(GetMarketCode(path, base), code);
}

TEST(DirectoryTest, FollowsTheSettingTheKeywordAndThePath) {
    headless::Settings settings;
    const auto set = [&](const char16_t* name, const char16_t* value) { settings.values[name] = value; };
    // The directories of keywords, for a program of that base in that directory.
    const auto all = [&](TextView path, TextView base, auto... keywords) {
        return Joined(ResolveDirectory(path, settings, base, keywords)...);
    };
    EXPECT_EQ(all(u"C:\\Tools", u"Addins", u"Database", u"RegDBofMora32", u"ME"),
              "C:\\TOOLS\\DATABASE\\|C:\\TOOLS\\..\\MORA32\\DATABASE\\|C:\\TOOLS\\|");
    set(u"VELMORA32/NONE/InstallPath", u"none");
    EXPECT_EQ(all(u"C:\\Tools", u"Addins", u"ME"), "NONEADDINS\\|");
    set(u"VELMORA32/10001/InstallPath", u"D:\\");
    set(u"OTHER/30003/InstallPath", u"F:\\Other\\");
    EXPECT_EQ(
        all(u"C:\\velmora32\\10001\\addins", u"addins", u"me", u"Help", u"Report", u"BackGrnd", u"ACROBATRD"),
        "D:\\ADDINS\\|D:\\ADDINS\\HELP\\|D:\\ADDINS\\REPORT\\|D:\\ADDINS\\..\\BACKGRND\\|30000|");
    EXPECT_EQ(all(u"C:\\VELMORA32\\10001\\MORA32", u"Mora32", u"ACROBATRD", u"RegDBofMora32", u"BackGrnd"),
              "D:\\MORA32\\READER\\|D:\\MORA32\\DATABASE\\|D:\\MORA32\\..\\BACKGRND\\|");
    EXPECT_EQ(all(u"C:\\Other\\30003", u"Other", u"me", u"Help", u"BackGrnd", u"RegDBofMora32", u"AcrobatRd"),
              "F:\\OTHER\\|F:\\OTHER\\HELP\\|30000|30000|30000|");
    // Another application lies under its own market code, by its name as written.
    const auto printer = [&](const char16_t* code, TextView name = u"Printer") {
        set(u"VELMORA32/10001/Printer", code);
        return all(u"X\\velmora32\\10001\\addins", u"Addins", name);
    };
    set(u"Printer/20002/InstallPath", u"E:\\Printer\\");
    EXPECT_EQ(printer(u"20002") + printer(u"99999"), "E:\\PRINTER\\|\\|");
    EXPECT_EQ(printer(u"20002", u"PRINTER"), "X\\VELMORA32\\10001\\ADDINS\\|");
    EXPECT_EQ(printer(u"2000") + printer(u"200002"),
              "X\\VELMORA32\\10001\\ADDINS\\|X\\VELMORA32\\10001\\ADDINS\\|");
}

}  // namespace
