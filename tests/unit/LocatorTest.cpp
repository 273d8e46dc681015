#include <gtest/gtest.h>

#include "Fakes.h"
#include "locator/comRegMarket.h"
#include "locator/comRegMora32.h"

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
    const struct {
        TextView path, base, directory;
        std::vector<std::array<Text, 2>> settings;
        const char16_t* result;
    } cases[] = {{tools, u"Addins", u"Database", {}, u"C:\\TOOLS\\DATABASE\\"},
                 {tools, u"Addins", u"ME", {{u"VELMORA32/NONE/InstallPath", u"NONE"}}, u"C:\\TOOLS\\"},
                 {tools, u"Addins", u"ME", {{u"VELMORA32/NONE/InstallPath", u"none"}}, u"NONEADDINS\\"},
                 {ours, u"addins", u"me", {}, u"D:\\VELMORA32\\10001\\ADDINS\\"},
                 {ours, u"Addins", u"BackGrnd", {}, u"D:\\VELMORA32\\10001\\ADDINS\\..\\BACKGRND\\"},
                 {ours, u"Addins", u"ACROBATRD", {}, u"30000"},
                 {ours, u"Other", u"BackGrnd", {}, u"30000"},
                 {mora, u"Mora32", u"ACROBATRD", {}, u"D:\\VELMORA32\\10001\\MORA32\\READER\\"},
                 {mora, u"Mora32", u"RegDBofMora32", {}, u"D:\\VELMORA32\\10001\\MORA32\\DATABASE\\"},
                 // Another application lies under its own market code.
                 {ours, u"Addins", u"Printer", {{u"VELMORA32/10001/Printer", u"20002"}}, u"E:\\PRINTER\\"},
                 {ours,
                  u"Addins",
                  u"Printer",
                  {{u"VELMORA32/10001/Printer", u"2000"}},
                  u"C:\\VELMORA32\\10001\\ADDINS\\"},
                 {ours, u"Addins", u"Printer", {{u"VELMORA32/10001/Printer", u"99999"}}, u"\\"}};
    for (const auto& c : cases) {
        fakes::FakeSettings settings;
        settings.values = {{u"VELMORA32/10001/InstallPath", u"D:\\Velmora32\\10001\\"},
                           {u"Printer/20002/InstallPath", u"E:\\Printer\\"}};
        for (const auto& [key, value] : c.settings) settings.values[key] = value;
        EXPECT_EQ(ResolveDirectory(c.path, settings, c.base, c.directory), c.result) << ToUtf8(c.result);
    }
}

}  // namespace
