#include <gtest/gtest.h>

#include "FaultOf.h"
#include "TemporaryDirectory.h"
#include "source/SourceReader.h"
#include "source/SourceWriter.h"
#include "store/Build.h"

namespace {

using namespace lng;

TEST(Source, ReadsValuesAsWritten) {
    const std::pair<std::string, Cell> cases[] = {
        {"c:   # no comment, \"quotes\" and \\n stay  ",
         std::string("# no comment, \"quotes\" and \\n stay")},
        {"c: -1", std::string("-1")},
        {"c = -1", std::int64_t{-1}},
        {"c:", std::string()},
        {"c = null", Null()},
        {"c = 1.0", 1.0},
        {"c = 1e3", 1000.0},
        {"c = -9223372036854775808", std::numeric_limits<std::int64_t>::min()},
        {"c = x'00fF'", Blob{std::string("\0\xFF", 2)}},
        {"c = x''", Blob{}},
        {"c = \"\\u{0}\\xff\\t\\\"\\\\ \"", std::string("\0\xFF\t\"\\ ", 6)},
        {"c:\n  | one\n  |  two\n  |\n", std::string("one\n two\n")},
        {"c:\n|", std::string()},
        {"\"c\" : text\r", std::string("text")},
    };
    // With a byte order mark and comments on the way.
    const std::string start =
        "\xEF\xBB\xBF# a\n[database d]\n\n  # b\n[table t]\n| CREATE TABLE t (c)\n# c\n[row]\n# d\n";
    for (const auto& [lines, value] : cases) {
        const Source source = ParseSource("x", start + lines);
        const Field& field = source.databases.at(0).tables.at(0).rows.at(0).fields.at(0);
        EXPECT_EQ(field.value, value) << lines;
        EXPECT_EQ(field.line, 10) << lines;
    }
}

TEST(Source, NamesTheLineOfAMistake) {
    const std::string row = "[database d]\n[table t]\n[row]\n";
    const std::pair<std::string, std::string_view> cases[] = {
        {"", "x: there is no [database ...]"},
        {"c: v", "x:1: a field belongs to a [row]"},
        {"[row]", "x:1: a [row] belongs to a [table ...]"},
        {"[table t]", "x:1: a [database ...] has to come first"},
        {"[database d]\n[tabel t]", "x:2: d: [tabel] means nothing"},
        {"[database d]\n[table t", "x:2: d: the ] at the end is missing"},
        {"[database d]\n[table]", "x:2: d: the name of the table is missing"},
        {"[database d]\n[table a b]", "x:2: d: there is more behind the name"},
        {"[database \"../d\"]", "x:1: '../d' is no name for a file"},
        {"[database d]\n[database D]", "x:2: d: there are two databases D"},
        {"[database d]\n[table t]\n[table T]", "x:3: d, table t: there are two tables T"},
        {row + "words", "x:4: d, table t, row 1: this is no field"},
        {row + "[row]\nc = 1x", "x:5: d, table t, row 2: field c: '1x' is no number"},
        {row + "c = \"a", "row 1: field c: the closing quote is missing"},
        {row + "c = \"\\q\"", "\\q means nothing"},
        {row + "c = \"\\u{d800}\"", "there is no character \\u{d800}"},
        {row + "c = x'0'", "binary data"},
        {row + "c =", "the value is missing"},
        {row + "c = 99999999999999999999", "out of range"},
        {row + "c: v\nC: v", "x:5: d, table t, row 1: field C stands in this row twice"},
        {row + "c: v\n| more", "x:5: d, table t, row 1: a line with |"},
        {"[database d]\n\xFF", "x:2: d: this line is not UTF-8"},
    };
    for (const auto& [text, expected] : cases) {
        const std::string fault = FaultOf([&, &source = text] { ParseSource("x", source); });
        EXPECT_NE(fault.find(expected), std::string::npos) << text << "\n" << fault;
    }
}

TEST(Source, NamesTheRowThatTheDatabaseRefuses) {
    const std::string start =
        "[database d]\n[table t]\n| CREATE TABLE t (k INTEGER PRIMARY KEY, c TEXT NOT NULL)\n";
    const std::pair<std::string, std::string_view> cases[] = {
        {start + "[row]\nk = 1\nc: a\n[row]\nk = 2\nc = null", "x:9: d, table t, row 2, field c: "},
        {start + "[row]\nk = 1", "x:4: d, table t, row 1, field c: "},
        {start + "[row]\nk = 1\nc: a\n[row]\nk = 1\nc: b", "x:8: d, table t, row 2, field k: "},
        {start + "[row]\nk = 1\nd: a", "x:6: d, table t, row 1: the table has no field d"},
        {start + "[row]\nk: one\nc: a", "x:4: d, table t, row 1: "},
        {"[database d]\n[table t]\n[row]\nc: a", "x:2: d, table t: the CREATE TABLE statement is missing"},
        {"[database d]\n[table t]\n| CREATE TABLE u (c)", "makes no table of this name"},
        {"[database d]\n[table t]\n| CREATE TABLE t (c", "x:2: d, table t: incomplete input"},
        {"[database d]\n[table t]\n| CREATE TABLE t (c); DROP TABLE t", "more than one statement"},
        {"[database d]\n[table t]\n| ATTACH 'other' AS t", "x:2: d, table t: "},
        {"[database d]\n[index i]\n| CREATE INDEX i ON t (c)", "x:2: d, index i: no such table"},
    };
    const platform::TemporaryDirectory scratch;
    const auto target = scratch.Path() / "made" / "d";
    for (const auto& [text, expected] : cases) {
        const std::string fault = FaultOf(
            [&, &source = text] { BuildInto(ParseSource("x", source), target.parent_path(), false); });
        EXPECT_NE(fault.find(expected), std::string::npos) << text << "\n" << fault;
        EXPECT_FALSE(std::filesystem::exists(target.parent_path())) << text;
    }
}

TEST(Source, WritesTextsSoThatAnEditorCanChangeThem) {
    Row row{{{"plain", std::string("a & b: \"c\"")},
             {"several", std::string("one\n\n  two")},
             {"empty", std::string()},
             {"edges", std::string(" blank ")},
             {"control", std::string("a\rb")},
             {"a b", std::int64_t{5}}}};
    const Source source{"x", {{"d", {{"t", "CREATE TABLE t (c)", {row}}}, {}}}};
    EXPECT_EQ(WriteSource(source),
              "[database d]\n\n[table t]\n| CREATE TABLE t (c)\n\n[row]\nplain: a & b: \"c\"\nseveral:\n  | "
              "one\n  |\n"
              "  |   two\nempty:\nedges = \" blank \"\ncontrol = \"a\\rb\"\n\"a b\" = 5\n");
}

}  // namespace
