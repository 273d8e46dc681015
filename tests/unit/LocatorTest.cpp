#include <gtest/gtest.h>

#include "Fakes.h"
#include "locator/comRegMarket.h"
#include "locator/comRegMora32.h"

using namespace horalink;
using namespace platform;

namespace {

TEST(MarketCodeTest, ReadOutOfThePath) {
    struct Case {
        const char16_t *path, *keyword, *code;
    };
    const Case cases[] = {
        {u"C:\\VELMORA32\\12345\\ADDINS", u"Addins", u"12345"},
        {u"C:\\VELMORA32\\12345\\ADDINS", u"MORA32", u"NONE"},
        {u"C:\\X\\VELMORA32X12345XADDINS", u"ADDINS", u"12345"},
        {u"\\opt\\velmora32\\ab1cd\\addins", u"addins", u"AB1CD"},
        {u"VELMORA32\\1234\\ADDINS", u"ADDINS", u"NONE"},
        {u"", u"ADDINS", u"NONE"},
        {u"C:\\READER\\54321", u"Reader", u"54321"},
        {u"C:\\OTHER\\54321", u"Reader", u"NONE"},
    };
    for (const Case& c : cases) EXPECT_EQ(GetMarketCode(c.path, c.keyword), c.code) << ToUtf8(c.path);
}

struct DirectoryTest : testing::Test {
    Text Resolve(TextView base, TextView directory) const {
        return ResolveDirectory(path, settings, base, directory);
    }
    Text path = u"C:\\velmora32\\10001\\addins";
    fakes::FakeSettings settings;
};

TEST_F(DirectoryTest, WithoutASettingTheExecutablesDirectoryIsTheRoot) {
    path = u"C:\\Tools";
    EXPECT_EQ(Resolve(u"Addins", u"Database"), u"C:\\TOOLS\\DATABASE\\");
    EXPECT_EQ(Resolve(u"Addins", u"RegDBofMora32"), u"C:\\TOOLS\\..\\MORA32\\DATABASE\\");
    settings.values[u"VELMORA32/NONE/InstallPath"] = u"NONE";
    EXPECT_EQ(Resolve(u"Addins", u"ME"), u"C:\\TOOLS\\");
    settings.values[u"VELMORA32/NONE/InstallPath"] = u"none";
    EXPECT_EQ(Resolve(u"Addins", u"ME"), u"NONEADDINS\\");
}

TEST_F(DirectoryTest, Keywords) {
    settings.values[u"VELMORA32/10001/InstallPath"] = u"D:\\Velmora32\\10001\\";
    struct Case {
        const char16_t *base, *directory, *result;
    };
    const Case cases[] = {
        {u"addins", u"me", u"D:\\VELMORA32\\10001\\ADDINS\\"},
        {u"Addins", u"Help", u"D:\\VELMORA32\\10001\\ADDINS\\HELP\\"},
        {u"Addins", u"report", u"D:\\VELMORA32\\10001\\ADDINS\\REPORT\\"},
        {u"Addins", u"BackGrnd", u"D:\\VELMORA32\\10001\\ADDINS\\..\\BACKGRND\\"},
        {u"Addins", u"ACROBATRD", u"30000"},
        {u"Other", u"BackGrnd", u"30000"},
        {u"Other", u"RegDBofMora32", u"30000"},
    };
    for (const Case& c : cases) EXPECT_EQ(Resolve(c.base, c.directory), c.result) << ToUtf8(c.directory);
    path = u"C:\\VELMORA32\\10001\\MORA32";
    EXPECT_EQ(Resolve(u"Mora32", u"ACROBATRD"), u"D:\\VELMORA32\\10001\\MORA32\\READER\\");
    EXPECT_EQ(Resolve(u"Mora32", u"RegDBofMora32"), u"D:\\VELMORA32\\10001\\MORA32\\DATABASE\\");
}

TEST_F(DirectoryTest, AnotherApplicationLiesUnderItsOwnMarketCode) {
    settings.values[u"Printer/20002/InstallPath"] = u"E:\\Printer\\";
    for (const auto& [code, result] : std::vector<std::pair<Text, Text>>{
             {u"20002", u"E:\\PRINTER\\"}, {u"2000", u"C:\\VELMORA32\\10001\\ADDINS\\"}, {u"99999", u"\\"}}) {
        settings.values[u"VELMORA32/10001/Printer"] = code;
        EXPECT_EQ(Resolve(u"Addins", u"Printer"), result) << ToUtf8(code);
    }
}

}  // namespace
