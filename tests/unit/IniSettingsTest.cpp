#include "platform/desktop/IniSettings.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "TemporaryDirectory.h"

namespace platform {
namespace {

// Each looks for InstallPath in the section VELMORA32/10001.
TEST(IniSettingsTest, FindsTheFirstEntryOfTheSection) {
    const std::pair<const char*, const char16_t*> cases[] = {
        {"", u"NONE"},
        {"[VELMORA32/10001]\nInstallPath=D:\\NEW\\10001\\\n", u"D:\\NEW\\10001\\"},
        {"\xEF\xBB\xBF[VELMORA32/10001]\r\nInstallPath=/opt/a\r\n", u"/opt/a"},
        {" [ velmora32/10001 ] \n\tinstallpath \t=  /opt/with blank  \n", u"/opt/with blank"},
        {"[VELMORA32/10001]\nInstallPath=\n", u""},
        {"[VELMORA32/10001]\nInstallPath\nInstallPathX=a\n", u"NONE"},
        {"[VELMORA32/10001]\na=b\n[x/y]\nInstallPath=c\n[VELMORA32/10001]\nInstallPath=d\n", u"d"},
        {"[VELMORA32/10001]\nInstallPath=first\nINSTALLPATH=second\n", u"first"},
        {"[VELMORA32/10001\nInstallPath=a\n[\n]\nInstallPath=b\n", u"NONE"}};
    const TemporaryDirectory directory;
    const IniSettings settings(directory.Path() / "settings.ini");
    const auto path = [](const IniSettings& from) {
        return ToUtf8(from.Get(u"VELMORA32", u"10001", u"InstallPath", u"NONE"));
    };
    EXPECT_EQ(path(settings), "NONE") << "no file yet, and it is read anew each time";
    EXPECT_EQ(path(IniSettings(directory.Path())), "NONE") << "a directory";
    for (const auto& [content, value] : cases) {
        directory.Write("settings.ini", content);
        EXPECT_EQ(path(settings), ToUtf8(value)) << content;
    }
}

TEST(SettingsFileTest, FollowsTheEnvironment) {
    const struct {
        const char *configuration, *home, *file;
    } cases[] = {{"/c", "/h", "/c/velmora/settings.ini"},
                 {nullptr, "/h", "/h/.config/velmora/settings.ini"},
                 {"", "/h", "/h/.config/velmora/settings.ini"},
                 {"relative", "/h", "/h/.config/velmora/settings.ini"},
                 {nullptr, nullptr, ""}};
    const auto set = [](const char* name, const char* value) {
        value ? setenv(name, value, 1) : unsetenv(name);
    };
    for (const auto& [configuration, home, file] : cases) {
        set("XDG_CONFIG_HOME", configuration);
        set("HOME", home);
        EXPECT_EQ(SettingsFile().native(), file);
    }
}

}  // namespace
}  // namespace platform
