#include "platform/desktop/Paths.h"

#include <gtest/gtest.h>

#include "TemporaryDirectory.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

class PathsTest : public testing::Test {
  protected:
    // A path with backslashes below the test's directory.
    Text Below(TextView path) const { return PathText(directory_.Path()).append(u"\\").append(path); }
    // The real path, as it reads below the test's directory.
    std::string Found(TextView path) const {
        return RealPath(Below(path)).lexically_relative(directory_.Path()).generic_string();
    }

    TemporaryDirectory directory_;
};

TEST_F(PathsTest, FindsWithoutRegardToCase) {
    directory_.Write("Mora32/Database/Common.LNG");
    EXPECT_EQ(Found(u"Mora32\\Database\\Common.LNG"), "Mora32/Database/Common.LNG");
    EXPECT_EQ(Found(u"MORA32\\DATABASE\\common.lng"), "Mora32/Database/Common.LNG");
    EXPECT_EQ(Found(u"MORA32/DATABASE\\"), "Mora32/Database");
    EXPECT_EQ(RealPath(UpperCase(Below(u"Mora32\\Database\\Common.LNG"))),
              directory_.Path() / "Mora32/Database/Common.LNG");
}

TEST_F(PathsTest, FindsLettersBeyondAscii) {
    directory_.Write("größe/ж.txt");
    EXPECT_EQ(Found(u"GRÖßE\\Ж.TXT"), "größe/ж.txt");
}

TEST_F(PathsTest, PrefersTheExactSpelling) {
    directory_.Write("DATA/file");
    directory_.Write("data/file");
    directory_.Write("Data/file");
    EXPECT_EQ(Found(u"data\\FILE"), "data/file");
    EXPECT_EQ(Found(u"Data\\file"), "Data/file");
    EXPECT_EQ(Found(u"DATA\\file"), "DATA/file");
}

TEST_F(PathsTest, TriesEveryDirectoryThatMatches) {
    directory_.Write("DATA/other");
    directory_.Write("Data/sub/other");
    directory_.Write("data/Sub/File");
    EXPECT_EQ(Found(u"DATA\\SUB\\FILE"), "data/Sub/File");
    EXPECT_EQ(Found(u"DATA\\OTHER"), "DATA/other");
}

TEST_F(PathsTest, PassesAFileWhereADirectoryIsNeeded) {
    directory_.Write("DATA");
    directory_.Write("data/file");
    EXPECT_EQ(Found(u"DATA\\file"), "data/file");
}

TEST_F(PathsTest, KeepsTheSpellingOfWhatDoesNotExist) {
    directory_.Write("Data/file");
    EXPECT_EQ(Found(u"DATA\\New.Txt"), "Data/New.Txt");
    EXPECT_EQ(Found(u"NOWHERE\\At\\ALL"), "NOWHERE/At/ALL");
    EXPECT_EQ(Found(u"DATA\\FILE\\Below"), "Data/file/Below");
}

TEST_F(PathsTest, TakesDotsAwayByText) {
    directory_.Write("ADDINS/a");
    directory_.Write("Backgrnd/picture.png");
    EXPECT_EQ(Found(u"ADDINS\\..\\BACKGRND\\PICTURE.PNG"), "Backgrnd/picture.png");
    EXPECT_EQ(Found(u"missing\\..\\.\\BACKGRND\\\\picture.png"), "Backgrnd/picture.png");
}

struct Mapping {
    const char16_t* path;
    const char* expected;
};

class PlainPathTest : public testing::TestWithParam<Mapping> {};

TEST_P(PlainPathTest, Maps) {
    EXPECT_EQ(RealPath(GetParam().path).native(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Paths, PlainPathTest,
                         testing::Values(Mapping{u"", ""}, Mapping{u"\\", "/"}, Mapping{u"\\..\\..", "/"},
                                         Mapping{u"C:\\No Such\\x", "C:/No Such/x"},
                                         Mapping{u"..\\no such\\..\\..\\no-x", "../../no-x"},
                                         Mapping{u"\\no-such\\Name.TXT", "/no-such/Name.TXT"}));

TEST_F(PathsTest, LeavesRelativePathsRelative) {
    directory_.Write("Sub/File");
    const fs::path before = fs::current_path();
    fs::current_path(directory_.Path());
    EXPECT_EQ(RealPath(u"SUB\\FILE"), fs::path("Sub/File"));
    EXPECT_EQ(PathText("Sub/File"), Below(u"Sub\\File"));
    fs::current_path(before);
}

TEST_F(PathsTest, DirNamesNormalFilesOnly) {
    directory_.Write("Backgrnd/Picture.png");
    EXPECT_EQ(Dir(Below(u"BACKGRND\\PICTURE.PNG")), u"Picture.png");
    EXPECT_EQ(Dir(Below(u"BACKGRND\\MISSING.PNG")), u"");
    EXPECT_EQ(Dir(Below(u"BACKGRND")), u"");
    EXPECT_EQ(Dir(Below(u"BACKGRND\\")), u"");
    EXPECT_EQ(Dir(Below(u"BACKGRND\\PICTURE.PNG\\")), u"");
    EXPECT_EQ(Dir(u""), u"");
}

}  // namespace
}  // namespace platform
