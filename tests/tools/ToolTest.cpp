// The program as a whole: calls, exit statuses, and files that are whole or not there.
#include <gtest/gtest.h>

#include <algorithm>

#include "TemporaryDirectory.h"
#include "jet/Process.h"
#include "source/SourceReader.h"

namespace {

using namespace lng;
namespace fs = std::filesystem;

constexpr const char* good = "[database a.db]\n[table t]\n| CREATE TABLE t (c TEXT NOT NULL)\n[row]\nc: v\n";
constexpr const char* half =
    "[database a.db]\n[table t]\n| CREATE TABLE t (c)\n[database b.db]\n[table t]\n| CREATE TABLE t "
    "(c)\n[row]\nd: v\n";

ProcessResult Tool(std::vector<std::string> words) {
    words.insert(words.begin(), LNG_TOOL);
    return RunProcess(words);
}

std::vector<std::string> NamesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

class ToolTest : public testing::Test {
  protected:
    std::string Path(const char* name) const { return scratch_.Path() / name; }

    platform::TemporaryDirectory scratch_;
};

TEST_F(ToolTest, RefusesCallsThatMeanNothing) {
    const std::string source = scratch_.Write("s.lngtext", good);
    const std::vector<std::vector<std::string>> calls{
        {},       {"build"}, {"build", source},         {"build", source, source, "--output", Path("out/")},
        {"dump"}, {"check"}, {"check", source, source}, {"import", source},
    };
    for (const auto& call : calls) EXPECT_EQ(Tool(call).status, 2) << testing::PrintToString(call);
    EXPECT_EQ(NamesIn(scratch_.Path()), std::vector<std::string>{"s.lngtext"});
}

TEST_F(ToolTest, ReplacesFilesOnlyWhenToldTo) {
    const std::string source = scratch_.Write("s.lngtext", good);
    for (const auto& [command, file] : {std::pair("build", source), std::pair("dump", Path("there.db"))}) {
        ASSERT_EQ(Tool({"build", source, "--output", Path("there.db"), "--force"}).status, 0);
        const std::string target = scratch_.Write("target", "mine");
        EXPECT_EQ(Tool({command, file, "--output", target}).status, 1);
        EXPECT_EQ(ReadWholeFile(target), "mine");
        EXPECT_EQ(Tool({command, file, "--output", target, "--force"}).status, 0);
        EXPECT_NE(ReadWholeFile(target), "mine");
    }
}

TEST_F(ToolTest, LeavesNothingOfAFailure) {
    const std::string source = scratch_.Write("s.lngtext", half);
    const ProcessResult failed = Tool({"build", source, "--output", Path("deep/folder/")});
    EXPECT_EQ(failed.status, 1);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, source + ":8: b.db, table t, row 1: the table has no field d",
                        failed.errors);
    EXPECT_FALSE(fs::exists(Path("deep")));

    scratch_.Write("kept/b.db", "mine");
    EXPECT_EQ(Tool({"build", source, "--output", Path("kept"), "--force"}).status, 1);
    EXPECT_EQ(NamesIn(Path("kept")), std::vector<std::string>{"b.db"});
    EXPECT_EQ(ReadWholeFile(Path("kept/b.db")), "mine");

    for (const auto& [command, file] :
         {std::pair("build", source), {"build", Path("nosuch")}, {"dump", source}})
        EXPECT_EQ(Tool({command, file, "--output", Path("one")}).status, 1);
    EXPECT_EQ(NamesIn(scratch_.Path()), (std::vector<std::string>{"kept", "s.lngtext"}));
}

TEST_F(ToolTest, ReportsForPeopleAndPrograms) {
    std::string text = ReadWholeFile(LNG_DATA "/en.lngtext");
    text.replace(text.rfind("Context  TEXT NOT NULL"), 7, "Contxxt");
    const std::string broken = scratch_.Write("xx.lngtext", text);
    const ProcessResult people = Tool({"check", broken}), programs = Tool({"check", broken, "--json"});
    EXPECT_EQ(std::pair(people.status, programs.status), std::pair(1, 1));
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "field Context: the field is missing", people.output);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "\"field\": \"Context\"", programs.output);
}

}  // namespace
