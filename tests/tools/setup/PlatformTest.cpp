// What the tool asks of the platform: its settings file and its own place.
#include "platform/desktop/IniText.h"

#include <gtest/gtest.h>
#include <stdio.h>

#include "../../unit/TemporaryDirectory.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

using Case = std::pair<const char*, const char*>;  // before and after

// Each sets x/1, key K, to "v".
TEST(IniTextTest, SetsAValueInItsPlace) {
    const Case cases[] = {
        {"", "[x/1]\nK=v\n"},
        {"[X/1]\n k = old ; not a comment\nL=1\n", "[X/1]\nK=v\nL=1\n"},
        {"[x/1]\nL=1\n\n[y]\nK=1\n", "[x/1]\nL=1\nK=v\n\n[y]\nK=1\n"},
        {"[x/1]\n; mine\n\n[y]\n", "[x/1]\n; mine\nK=v\n\n[y]\n"},
        {"[y]\nK=1", "[y]\nK=1\n\n[x/1]\nK=v\n"},
        {"; K=0\n", "; K=0\n\n[x/1]\nK=v\n"},
        {"[x/1]\r\nK=old\r\n[y]\r\n", "[x/1]\r\nK=v\r\n[y]\r\n"},
        {"[y]\r\n", "[y]\r\n\r\n[x/1]\r\nK=v\r\n"},
        {"[x/1]\nL=1\n[y]\n[x/1]\nK=old\nK=older\n", "[x/1]\nL=1\n[y]\n[x/1]\nK=v\nK=older\n"},
        {"\xEF\xBB\xBF[x/1]\nK=old\n", "\xEF\xBB\xBF[x/1]\nK=v\n"}};
    for (const auto& [before, after] : cases) {
        IniText text(before);
        text.Set(u"x/1", u"K", u"v");
        EXPECT_EQ(text.Content(), after) << before;
        EXPECT_EQ(text.Value(u"x/1", u"k"), u"v") << before;
    }
}

TEST(IniTextTest, RemovesAKeyAndTheHeadThatIsLeftOverIt) {
    const Case cases[] = {{"", ""},
                          {"[x/1]\nK=1\n", ""},
                          {"[x/1]\nK=1\nk=2\n\n[y]\na=b\n", "[y]\na=b\n"},
                          {"[y]\na=b\n\n[x/1]\nK=1\n", "[y]\na=b\n"},
                          {"[x/1]\n; keep me\nK=1\n", "[x/1]\n; keep me\n"},
                          {"[x/1]\nK=1\n[y]\n\n[x/1]\nL=1\nK=2\n", "[x/1]\n[y]\n\n[x/1]\nL=1\n"},
                          {"K=1\n[y]\nK=2\n", "K=1\n[y]\nK=2\n"}};
    for (const auto& [before, after] : cases) {
        IniText text(before);
        text.Remove(u"x/1", u"K");
        EXPECT_EQ(text.Content(), after) << before;
    }
}

std::string OutputOf(const std::string& command) {
    FILE* output = popen(command.c_str(), "r");
    std::string text;
    for (int c = fgetc(output); c != EOF; c = fgetc(output)) text += static_cast<char>(c);
    pclose(output);
    return text;
}

// A program takes its market from where the link to it lies, not from where it lies itself.
TEST(ProgramFileTest, KeepsALinkInTheLastPlace) {
    const TemporaryDirectory directory;
    const fs::path top = directory.Path();
    fs::create_directories(top / "VELMORA32/AB1CD/ADDINS/other");
    fs::create_directory_symlink(top / "VELMORA32", top / "short");
    const fs::path link = top / "VELMORA32/AB1CD/ADDINS/linked";
    fs::create_symlink(PROGRAM_FILE, link);
    fs::create_directories(top / "far/inner");
    fs::create_directory_symlink(top / "far/inner", top / "near");
    fs::create_symlink(PROGRAM_FILE, top / "far/linked");
    const std::string enter = "cd " + link.parent_path().string() + " && exec ";
    const std::pair<std::string, fs::path> cases[] = {
        {PROGRAM_FILE, PROGRAM_FILE},
        {link, link},
        {enter + "./linked", link},
        {enter + "./other/../linked", link},
        {enter + "../ADDINS//linked", link},
        {"PATH=" + link.parent_path().string() + " && linked", link},
        {top / "short/AB1CD/ADDINS/linked", top / "short/AB1CD/ADDINS/linked"},
        {top / "short/../VELMORA32/AB1CD/ADDINS/linked", link},
        // ".." behind a link leads out of the directory that the link leads to.
        {top / "near/../linked", top / "far/linked"}};
    for (const auto& [command, path] : cases) EXPECT_EQ(OutputOf(command), path) << command;
}

}  // namespace
}  // namespace platform
