#include "platform/runtime/Layers.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <map>

#include "harness/Cases.h"
#include "harness/Files.h"
#include "platform/desktop/IniSettings.h"
#include "platform/desktop/Installation.h"
#include "platform/headless/Desktop.h"
#include "platform/runtime/Paths.h"
#include "platform/runtime/ProgramFile.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using Environment = std::map<std::string, std::string>;

void SetEnvironment(const Environment& environment) {
    for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "LANGUAGE",
                             "LC_ALL", "LC_MESSAGES", "LANG"})
        environment.contains(name) ? setenv(name, environment.at(name).c_str(), 1) : unsetenv(name);
}

std::string Listed(const auto& parts) {
    std::string listed;
    for (const auto& part : parts) listed += fs::path(part).string() + " ";
    return listed;
}

// The user's own tree is `own`; `all` is what everybody shares.
struct LayersTest : testing::Test {
    fs::path At(const char* place) const { return directory.Path() / place; }
    Layers In(std::vector<Text> languages = {}) const {
        return {{At("own"), At("all")}, std::move(languages)};
    }
    Text Shared(TextView path) const { return UpperCase(PathText(At("all"))) + u"\\" + Text(path); }
    TemporaryDirectory directory;
};

TEST_F(LayersTest, TheUsersOwnFilesComeFirstAndTheLanguageAheadOfTheCommon) {
    for (const char* file : {"all/Texts/de/T", "all/Texts/en/T", "all/Texts/T", "all/Texts/en/OnlyEnglish",
                             "all/Texts/Common", "own/Texts/Own", "all/Texts/Own", "all/Texts/de/Own",
                             "own/texts/fr/T", "own/Texts/en/Both", "all/Texts/de/Both", "outside/T"})
        directory.Write(file);
    fs::create_symlink(directory.Path() / "nowhere", At("own/Texts/Common"));
    fs::create_symlink(At("all/Texts/T"), At("own/Texts/T"));
    const Table<std::vector<Text>, TextView, const char*> cases = {
        {{u"de", u"en"}, u"TEXTS\\T", "own/Texts/T all/Texts/de/T "},  // a link of the user's own
        {{u"de", u"en"}, u"Texts\\OnlyEnglish", "all/Texts/en/OnlyEnglish "},
        // The link of the user's own leads nowhere.
        {{u"de"}, u"Texts\\..\\Texts\\COMMON", "all/Texts/Common "},
        {{u"de"}, u"Texts\\Own", "own/Texts/Own all/Texts/de/Own all/Texts/Own "},
        {{u"de", u"en"}, u"Texts\\Both", "all/Texts/de/Both "},
        {{}, u"..\\OUTSIDE\\T", "outside/T "},
        {{u"de"}, u"", "all "},  // a tree itself is no file in it
        {{u"de"}, u"TEXTS", "own/Texts all/Texts "}};
    for (const auto& [languages, path, files] : cases) {
        std::vector<fs::path> found;
        for (const auto& file : In(languages).FindAll(Shared(path)))
            found.push_back(file.lexically_relative(directory.Path()));
        EXPECT_EQ(Listed(found), files) << ToUtf8(path);
    }
    const Layers layers = In({u"de"});
    EXPECT_EQ(layers.Find(Shared(u"TEXTS\\none")), At("all/Texts/none")) << "keeps its spelling";
    EXPECT_EQ(layers.Find(UpperCase(PathText(At("own"))) + u"\\TEXTS\\COMMON"), At("all/Texts/Common"));
    for (const auto& [file, own] : {std::pair("all/Texts/de/T", "own/Texts/de/T"),
                                    {"own/Texts/Own", "own/Texts/Own"},
                                    {"outside/T", "outside/T"}})
        EXPECT_EQ(layers.OwnPlace(At(file)), At(own));
    EXPECT_EQ(Layers().OwnPlace(At("all/Texts/T")), At("all/Texts/T"));
}

TEST(WantedLanguagesTest, AreThoseOfTheSettingOrOfTheEnvironment) {
    const Table<TextView, Environment, const char*> cases = {
        {u"", {}, "en "},
        {u"", {{"LANG", "de_AT.UTF-8@euro"}}, "de_AT de en "},
        {u"", {{"LANG", "fr"}, {"LC_MESSAGES", "ja"}, {"LC_ALL", "ru"}}, "ru en "},
        {u"", {{"LANG", "fr"}, {"LANGUAGE", "pt_BR:de:en:fr"}}, "pt_BR pt de en fr "},
        {u"", {{"LANG", "C"}, {"LANGUAGE", "de"}}, "en "},  // as gettext has it
        {u"zh_CN", {{"LANG", "de"}, {"LANGUAGE", "de"}}, "zh_CN zh en "},
        {u"../..:/x:.", {{"LANG", "de"}}, "en "}};  // no names of folders
    for (const auto& [setting, environment, languages] : cases) {
        SetEnvironment(environment);
        EXPECT_EQ(Listed(WantedLanguages(setting)), languages);
    }
}

TEST_F(LayersTest, AnInstallationIsFoundByThePathOfItsProgram) {
    directory.Write("lib/VELMORA32/10001/ADDINS/horalink");
    directory.Write("home/data/velmora32/20002/x");
    fs::create_directory_symlink("10001", At("lib/VELMORA32/30003"));
    fs::create_directories(At("bin")), fs::create_directories(At("home/data/velmora32/20002/ADDINS"));
    fs::create_symlink("../lib/VELMORA32/10001/ADDINS/horalink", At("bin/horalink"));
    fs::create_symlink(At("lib/VELMORA32/10001/ADDINS/horalink"),
                       At("home/data/velmora32/20002/ADDINS/horalink"));
    SetEnvironment({{"HOME", At("home")}, {"XDG_DATA_HOME", At("home/data")}});
    const std::string own = At("home/data/velmora32/").string(), shared = At("lib/VELMORA32/").string(),
                      first = "10001 " + own + "10001 ", last = shared + "10001 ";
    const Table<const char*, TextView, std::string> cases = {
        {"lib/VELMORA32/10001/ADDINS/horalink", u"", first + last},
        {"lib/VELMORA32/30003/ADDINS/horalink", u"", "30003 " + own + "30003 " + shared + "30003 " + last},
        {"home/data/velmora32/20002/ADDINS/../ADDINS/horalink", u"", "20002 " + own + "20002 " + last},
        {"bin/horalink", u"\\opt\\VELMORA32\\10001\\", first + "/opt/VELMORA32/10001 " + last},
        {"bin/horalink", u"\\", first + last}};
    for (const auto& [program, installPath, expected] : cases) {
        headless::Settings settings;
        settings.values[u"VELMORA32/10001/InstallPath"] = installPath;
        const auto found = FindInstallation(ProgramFile(At(program)), settings);
        EXPECT_EQ(ToUtf8(found.market) + " " + Listed(found.layers.Trees()), expected) << program;
    }
    const fs::path elsewhere = directory.Write("build/src/horalink");
    EXPECT_EQ(Listed(FindInstallation(elsewhere, headless::Settings()).layers.Trees()),
              At("build").string() + " ");
}

}  // namespace
}  // namespace platform
