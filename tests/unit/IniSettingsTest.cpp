#include "platform/desktop/IniSettings.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <optional>

#include "TemporaryDirectory.h"

namespace platform {
namespace {

struct Lookup {
    const char* content;
    const char16_t* expected;
};

class IniSettingsTest : public testing::TestWithParam<Lookup> {};

// Looks for InstallPath in the section VELMORA32/10001.
TEST_P(IniSettingsTest, Finds) {
    const TemporaryDirectory directory;
    const IniSettings settings(directory.Write("settings.ini", GetParam().content));
    EXPECT_EQ(ToUtf8(settings.Get(u"VELMORA32", u"10001", u"InstallPath", u"NONE")),
              ToUtf8(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Contents, IniSettingsTest,
    testing::Values(
        Lookup{"", u"NONE"}, Lookup{"[VELMORA32/10001]\nInstallPath=D:\\NEW\\10001\\\n", u"D:\\NEW\\10001\\"},
        Lookup{"[VELMORA32/10001]\nInstallPath=/opt/a", u"/opt/a"},
        Lookup{"\xEF\xBB\xBF[VELMORA32/10001]\r\nInstallPath=/opt/a\r\n", u"/opt/a"},
        Lookup{" [ velmora32/10001 ] \n\tinstallpath \t=  /opt/with blank  \n", u"/opt/with blank"},
        Lookup{"; [x]\n# y\n\n[VELMORA32/10001]\n;InstallPath=a\n#InstallPath=b\nInstallPath=c\n", u"c"},
        Lookup{"[VELMORA32/10001]\nInstallPath=a;b#c=\"d\"\n", u"a;b#c=\"d\""},
        Lookup{"[VELMORA32/10001]\nInstallPath=\n", u""},
        Lookup{"[VELMORA32/10001]\nInstallPath\nInstallPathX=a\n", u"NONE"},
        Lookup{"InstallPath=a\n[VELMORA32/10002]\nInstallPath=b\n", u"NONE"},
        Lookup{"[VELMORA32/10001]\na=b\n[x/y]\nInstallPath=c\n[VELMORA32/10001]\nInstallPath=d\n", u"d"},
        Lookup{"[VELMORA32/10001]\nInstallPath=first\nINSTALLPATH=second\n", u"first"},
        Lookup{"[VELMORA32/10001\nInstallPath=a\n[\n]\nInstallPath=b\n", u"NONE"},
        Lookup{"[VELMORA32/10001]\n[x]\nInstallPath=a\n", u"NONE"},
        Lookup{"[VELMORA32/10001]\nInstallPath=/opt/größe\n", u"/opt/größe"}));

TEST(IniSettingsFile, IsReadAnewEachTime) {
    const TemporaryDirectory directory;
    const IniSettings settings(directory.Path() / "settings.ini");
    const auto path = [&] { return settings.Get(u"a", u"b", u"c", u"none"); };
    EXPECT_EQ(path(), u"none");
    directory.Write("settings.ini", "[a/b]\nc=1\n");
    EXPECT_EQ(path(), u"1");
}

TEST(IniSettingsFile, MayBeADirectory) {
    const TemporaryDirectory directory;
    EXPECT_EQ(IniSettings(directory.Path()).Get(u"a", u"b", u"c", u"none"), u"none");
}

class Environment {
  public:
    Environment(const char* name, const char* value) : name_(name) {
        if (const char* before = getenv(name)) before_ = before;
        Set(value);
    }
    ~Environment() { Set(before_ ? before_->c_str() : nullptr); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

  private:
    void Set(const char* value) { value ? setenv(name_, value, 1) : unsetenv(name_); }

    const char* name_;
    std::optional<std::string> before_;
};

struct Place {
    const char* configuration;
    const char* home;
    const char* expected;
};

class SettingsFileTest : public testing::TestWithParam<Place> {};

TEST_P(SettingsFileTest, FollowsTheEnvironment) {
    const Environment configuration("XDG_CONFIG_HOME", GetParam().configuration);
    const Environment home("HOME", GetParam().home);
    EXPECT_EQ(SettingsFile().native(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Places, SettingsFileTest,
                         testing::Values(Place{"/c", "/h", "/c/velmora/settings.ini"},
                                         Place{nullptr, "/h", "/h/.config/velmora/settings.ini"},
                                         Place{"", "/h", "/h/.config/velmora/settings.ini"},
                                         Place{"relative", "/h", "/h/.config/velmora/settings.ini"},
                                         Place{nullptr, nullptr, ""}));

}  // namespace
}  // namespace platform
