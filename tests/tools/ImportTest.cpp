// The import, on programs that stand in for mdbtools, and on real ones.
#include "jet/Import.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "FaultOf.h"
#include "Table.h"
#include "TemporaryDirectory.h"
#include "jet/Csv.h"
#include "jet/Process.h"
#include "source/SourceReader.h"
#include "source/SourceWriter.h"

namespace {

using namespace lng;
namespace fs = std::filesystem;

TEST(Csv, KeepsNullApartFromEveryText) {
    const auto rows = ParseCsv("1,\"a \"\"b\"\", c\n\r\",\\N,\"\",\"\\N\"\n2,,x\n", "\\N");
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0], (std::vector<CsvField>{"1", "a \"b\", c\n\r", std::nullopt, "", "\\N"}));
    EXPECT_EQ(rows[1], (std::vector<CsvField>{"2", "", "x"}));
    EXPECT_TRUE(ParseCsv("", "\\N").empty());
    EXPECT_THROW(ParseCsv("\"a", "\\N"), tools::Fault);
    EXPECT_THROW(ParseCsv("\"a\"b\n", "\\N"), tools::Fault);
}

class ImportTest : public testing::Test {
  protected:
    ImportTest() : path_(getenv("PATH")) {
        setenv("PATH", ((scratch_.Path() / "bin").string() + ":" + path_).c_str(), 1);
        Program("mdb-tables",
                "[ \"$2\" = -t ] && { [ \"$3\" = query ] && echo 'one query'; exit 0; }; echo Table 1; echo");
        Program("mdb-count", "echo 2");
        Schema("\\t[Name]\\t\\t\\tText (50), \\n\\t[Number 2]\\t\\t\\tLong Integer NOT NULL\\n");
        Rows("\"a\",1\\n\\\\N,-2\\n");
    }
    ~ImportTest() override { setenv("PATH", path_.c_str(), 1); }

    void Program(const std::string& name, const std::string& script) const {
        const auto file = scratch_.Write("bin/" + name, "#!/bin/sh\n" + script + "\n");
        fs::permissions(file, fs::perms::owner_all);
    }
    void Schema(const std::string& columns) const { Program("mdb-schema", "printf -- '" + columns + "'"); }
    void Rows(const std::string& rows) const { Program("mdb-export", "printf -- '" + rows + "'"); }

    fs::path JetFile(const std::string& tail = "") const {
        return scratch_.Write("old.mdb", std::string("\0\1\0\0Standard Jet DB\0", 20) + tail);
    }
    void ExpectFault(const fs::path& file, std::string_view expected) const {
        const std::string fault = FaultOf([&] { ImportJet(file); });
        EXPECT_NE(fault.find(expected), std::string::npos) << fault;
    }

    platform::TemporaryDirectory scratch_;
    std::string path_;
};

TEST_F(ImportTest, TakesTablesFieldsAndRows) {
    const std::string made = scratch_.Path() / "out/old.mdb";
    const ProcessResult done = RunProcess({LNG_TOOL, "import", JetFile(), "--output", made});
    EXPECT_EQ(done.status, 0) << done.errors;
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "not kept: queries: 1", done.errors);
    EXPECT_EQ(RunProcess({LNG_TOOL, "dump", made}).output,
              "[database old.mdb]\n\n[table \"Table 1\"]\n| CREATE TABLE \"Table 1\" (\n"
              "|     \"Name\" TEXT COLLATE NOCASE,\n|     \"Number 2\" INTEGER\n| )\n\n"
              "[row]\nName: a\n\"Number 2\" = 1\n\n[row]\n\"Number 2\" = -2\n");
}

TEST_F(ImportTest, ConvertsEveryType) {
    const platform::Table<std::string, std::string, Cell> cases = {
        {"Boolean NOT NULL", "1", std::int64_t{-1}},
        {"Boolean NOT NULL", "0", std::int64_t{0}},
        {"Byte", "255", std::int64_t{255}},
        {"Single", "0.15000001", static_cast<double>(0.15000001F)},
        {"Double", "444.555", 444.555},
        {"Currency", "922337203685477.5807", std::string("922337203685477.5807")},
        {"DateTime", "\"1981-12-12 00:00:00\"", std::string("1981-12-12 00:00:00")},
        {"Memo/Hyperlink (255)", "\"1\"", std::string("1")},
        {"OLE (255)", "\"00FF\"", Blob{std::string("\0\xFF", 2)}},
        {"OLE (255)", "\"\"", Blob{}}};
    Program("mdb-count", "echo 1");
    for (const auto& [type, text, value] : cases) {
        Schema("\\t[c]\\t\\t\\t" + type + "\\n");
        Rows(text + "\\n");
        EXPECT_EQ(ImportJet(JetFile()).source.tables.at(0).rows.at(0).fields.at(0).value, value) << type;
    }
}

TEST_F(ImportTest, NamesWhatIsLost) {
    Program("mdb-count", "echo 1");
    Schema("\\t[Day]\\t\\t\\tDateTime, \\n\\t[Odd]\\t\\t\\tUnknown 19\\n");
    Rows("\"1900-01-00 00:00:00\",7\\n");
    const ImportedDatabase imported = ImportJet(JetFile());
    EXPECT_TRUE(imported.lostValues);
    EXPECT_NE(imported.notKept.at(0).find("field Odd: its type Unknown 19"), std::string::npos);
    EXPECT_NE(imported.notKept.at(1).find("row 1, field Day: a date"), std::string::npos);
    EXPECT_EQ(imported.source.tables.at(0).rows.at(0).fields.size(), 1U);
}

TEST_F(ImportTest, RefusesWhatItCantReadWhole) {
    const platform::Table<std::string, std::string, std::string_view> cases = {
        {"mdb-count", "echo 3", "the file counts 3 rows and gives 2"},
        {"mdb-count", "echo none", "its rows can't be counted"},
        {"mdb-export", "echo broken >&2", "mdb-export ended with status 0 and says: broken"},
        {"mdb-export", "kill -SEGV $$", "mdb-export ended with status 139"},
        {"mdb-export", "echo '\"a\",1,2'", "there are 3 values for 2 fields"},
        {"mdb-export", "echo '\"a\",x'", "row 1, field Number 2: 'x' is no number"},
        {"mdb-schema", "exit 0", "its fields can't be read"},
        {"mdb-tables", "yes", "mdb-tables does not come to an end"},
        {"mdb-tables", "exec yes complaint >&2", "mdb-tables does not come to an end"},
        {"mdb-tables", "exit 1", "the file is damaged or encrypted: mdb-tables ended with status 1"}};
    for (const auto& [program, script, fault] : cases) {
        SCOPED_TRACE(program + ": " + script);
        const std::string before = ReadWholeFile(scratch_.Path() / "bin" / program);
        Program(program, script);
        ExpectFault(JetFile(), fault);
        scratch_.Write("bin/" + program, before);
    }
}

TEST_F(ImportTest, RefusesFilesThatAreNoneAndMissesThePrograms) {
    ExpectFault(scratch_.Path() / "nosuch.mdb", "there is no such file");
    ExpectFault(scratch_.Write("text.mdb", "text"), "no database in the Jet format");
    ExpectFault(JetFile("<encryption xmlns="), "encrypted with a password");
    setenv("PATH", "/nonexistent", 1);
    ExpectFault(JetFile(), "the package mdbtools");
}

// Real files lie outside the tree.
TEST(JetFiles, AreImportedUnlessEncrypted) {
    if (!fs::is_directory(JET_FILES)) GTEST_SKIP() << "there are no Jet files at " JET_FILES;
    std::string text;
    for (const auto& entry : fs::directory_iterator(JET_FILES)) {
        if (entry.path().extension() == ".md") continue;
        const std::string fault =
            FaultOf([&] { text += WriteSource({"", {ImportJet(entry.path()).source}}); });
        const char* expected = entry.path().stem() == "encrypted" ? "encrypted with a password" : "no fault";
        EXPECT_PRED_FORMAT2(testing::IsSubstring, expected, fault) << entry.path();
    }
    for (const char* line : {"ProductName: Chai", "Discontinued = -1", "ShippedDate: 1994-11-28 00:00:00",
                             "UnitPrice: 18.0000", "Picture = x'151c2f00"})
        EXPECT_NE(text.find(line), text.npos) << line;
}

}  // namespace
