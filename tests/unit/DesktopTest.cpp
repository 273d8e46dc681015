#include <gtest/gtest.h>
#include <sys/stat.h>

#include "harness/Cases.h"
#include "harness/Files.h"
#include "platform/desktop/IniSettings.h"
#include "platform/runtime/Paths.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

struct PathsTest : testing::Test {
    // A path with backslashes below the test's directory.
    Text Below(TextView path) const { return PathText(directory.Path()).append(u"\\").append(path); }
    TemporaryDirectory directory;
};

TEST_F(PathsTest, FindsWithoutRegardToCaseAndPrefersTheExactSpelling) {
    for (const char* file :
         {"Mora32/Database/Common.LNG", "größe/ж.txt", "EXACT/file", "exact/file", "Exact/file", "DATA/other",
          "Data/sub/other", "data/Sub/File", "FILE", "file/inside", "ADDINS/a", "Backgrnd/picture.png"})
        directory.Write(file);
    const std::pair<const char16_t*, const char*> cases[] = {
        {u"MORA32\\DATABASE\\common.lng", "Mora32/Database/Common.LNG"},
        {u"GRÖßE\\Ж.TXT", "größe/ж.txt"},
        {u"exact\\FILE", "exact/file"},
        {u"DATA\\SUB\\FILE", "data/Sub/File"},   // every directory that matches is tried
        {u"FILE\\inside", "file/inside"},        // a file where a directory is needed is passed
        {u"MORA32\\New.Txt", "Mora32/New.Txt"},  // what does not exist keeps its spelling
        {u"BACKGRND\\PICTURE.PNG\\Below", "Backgrnd/picture.png/Below"},
        {u"ADDINS\\..\\BACKGRND\\PICTURE.PNG", "Backgrnd/picture.png"},  // dots are taken away by text
        {u"missing\\..\\.\\BACKGRND\\\\picture.png", "Backgrnd/picture.png"}};
    for (const auto& [path, real] : cases)
        EXPECT_EQ(RealPath(Below(path)).lexically_relative(directory.Path()).generic_string(), real);
    EXPECT_EQ(RealPath(UpperCase(Below(u"FILE"))), directory.Path() / "FILE");
}

TEST_F(PathsTest, LeavesTheKindOfThePath) {
    const std::pair<const char16_t*, const char*> cases[] = {
        {u"\\no-such\\Name.TXT", "/no-such/Name.TXT"}, {u"SUB\\FILE", "Sub/File"}, {u"\\", "/"}, {u"", ""},
        {u"..\\no such\\..\\..\\no-x", "../../no-x"},  {u"\\..\\..", "/"}};
    directory.Write("Sub/File");
    const auto before = fs::current_path();
    fs::current_path(directory.Path());
    for (const auto& [path, real] : cases) EXPECT_EQ(RealPath(path).native(), real);
    EXPECT_EQ(PathText("Sub/File"), Below(u"Sub\\File"));
    fs::current_path(before);
}

TEST_F(PathsTest, ManyWaysToOneDirectoryComeToAnEnd) {
    Text way;
    for (const char* link : {"again", "Again", "AGAIN"})
        fs::create_directory_symlink(".", directory.Path() / link);
    for (int i = 0; i < 30; ++i) way += u"AGAIN\\";
    directory.Write("File");
    EXPECT_EQ(RealPath(Below(way + u"Missing")).filename(), "Missing");
    EXPECT_EQ(Dir(Below(way + u"FILE")), u"File");
}

// Each looks for InstallPath in the section VELMORA32/10001.
TEST(IniSettingsTest, FindsTheFirstEntryOfTheSection) {
    const std::pair<const char*, const char16_t*> cases[] = {
        {"", u"NONE"},
        {"\xEF\xBB\xBF[VELMORA32/10001]\r\nInstallPath=/opt/a\r\n", u"/opt/a"},
        {" [ velmora32/10001 ] \n\tinstallpath \t=  /opt/with blank  \n", u"/opt/with blank"},
        {"[VELMORA32/10001]\nInstallPath=\n", u""},
        {"[VELMORA32/10001]\n;InstallPath=a\n#InstallPath=b\n=c\nInstallPath=d=e", u"d=e"},
        {"[VELMORA32/10001]\na=b\n[x/y]\nInstallPath=c\n[VELMORA32/10001]\nInstallPath=d\n", u"d"},
        {"[VELMORA32/10001]\nInstallPath=first\nINSTALLPATH=second\n", u"first"},
        {"[VELMORA32/10001\nInstallPath=a\n[\n]\nInstallPath=b\n", u"NONE"}};
    const TemporaryDirectory directory;
    const IniSettings settings({directory.Path() / "settings.ini"});
    const auto path = [](const IniSettings& from) {
        return ToUtf8(from.Get(u"VELMORA32", u"10001", u"InstallPath", u"NONE"));
    };
    EXPECT_EQ(path(settings), "NONE") << "no file yet, and it is read anew each time";
    EXPECT_EQ(path(IniSettings({directory.Path()})), "NONE") << "a directory";
    ASSERT_EQ(mkfifo((directory.Path() / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(path(IniSettings({directory.Path() / "pipe"})), "NONE") << "a pipe";
    for (const auto& [content, value] : cases) {
        directory.Write("settings.ini", content);
        EXPECT_EQ(path(settings), ToUtf8(value)) << content;
    }
}

}  // namespace
}  // namespace platform
