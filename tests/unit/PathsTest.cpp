#include "platform/desktop/Paths.h"

#include <gtest/gtest.h>

#include "TemporaryDirectory.h"

namespace platform {
namespace {

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
        {u"Mora32\\Database\\Common.LNG", "Mora32/Database/Common.LNG"},
        {u"MORA32\\DATABASE\\common.lng", "Mora32/Database/Common.LNG"},
        {u"GRÖßE\\Ж.TXT", "größe/ж.txt"},
        {u"exact\\FILE", "exact/file"},
        {u"Exact\\file", "Exact/file"},
        {u"DATA\\SUB\\FILE", "data/Sub/File"},  // every directory that matches is tried
        {u"DATA\\OTHER", "DATA/other"},
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
    const std::pair<const char16_t*, const char*> cases[] = {{u"", ""},
                                                             {u"\\", "/"},
                                                             {u"\\..\\..", "/"},
                                                             {u"..\\no such\\..\\..\\no-x", "../../no-x"},
                                                             {u"\\no-such\\Name.TXT", "/no-such/Name.TXT"},
                                                             {u"SUB\\FILE", "Sub/File"}};
    directory.Write("Sub/File");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(directory.Path());
    for (const auto& [path, real] : cases) EXPECT_EQ(RealPath(path).native(), real);
    EXPECT_EQ(PathText("Sub/File"), Below(u"Sub\\File"));
    std::filesystem::current_path(before);
}

TEST_F(PathsTest, DirNamesNormalFilesOnly) {
    directory.Write("Backgrnd/Picture.png");
    EXPECT_EQ(Dir(Below(u"BACKGRND\\PICTURE.PNG")), u"Picture.png");
    for (const char16_t* none :
         {u"BACKGRND\\MISSING.PNG", u"BACKGRND", u"BACKGRND\\", u"BACKGRND\\PICTURE.PNG\\"})
        EXPECT_EQ(Dir(Below(none)), u"") << ToUtf8(none);
    EXPECT_EQ(Dir(u""), u"");
}

}  // namespace
}  // namespace platform
