// Faults put one by one into copies of the databases. Each is found, with its place, and nothing else is.
#include "check/Check.h"

#include <gtest/gtest.h>

#include "TemporaryDirectory.h"
#include "common/Fault.h"
#include "source/SourceReader.h"
#include "store/Build.h"
#include "store/Sql.h"

namespace {

using namespace lng;
namespace fs = std::filesystem;

constexpr const char *own = "Horalink.lng", *common = "Common.LNG", *help = "Horalink.hlp";

// The rules of our tables would refuse most faults; imported tables have no such rules.
void TakeRulesAway(const fs::path& file) {
    Connection connection(file, false);
    std::vector<std::string> tables;
    Query query(connection, "SELECT name FROM sqlite_master WHERE type = 'table'");
    while (query.Step()) tables.push_back(query.TextOf(0));
    for (const std::string& table : tables) {
        connection.Run("CREATE TABLE plain AS SELECT * FROM " + table);
        connection.Run("DROP TABLE " + table);
        connection.Run("ALTER TABLE plain RENAME TO " + table);
    }
}

class CheckTest : public testing::Test {
  protected:
    CheckTest() {
        for (const fs::path& file : BuildInto(ReadSource(LNG_DATA "/en.lngtext"), At(""), true))
            TakeRulesAway(file);
        fs::copy(LNG_DATA "/backgrounds", Backgrounds());
    }

    fs::path Backgrounds() const { return scratch_.Path() / "backgrounds"; }
    fs::path At(const char* name) const { return scratch_.Path() / "set" / name; }
    Findings Check() const { return CheckSet({{At(own), At(common), At(help)}, {}, {}, Backgrounds()}); }
    static Finding OnlyOf(const Findings& findings) {
        if (findings.All().size() != 1) throw std::logic_error("not one fault: " + findings.AsText(""));
        return findings.All().front();
    }

    platform::TemporaryDirectory scratch_;
};

struct FaultCase {
    const char *database, *statement;
    const char* place;  // table, row and field, as far as they are known
    const char* message;
};

void PrintTo(const FaultCase& fault, std::ostream* stream) {
    *stream << fault.database << ": " << fault.statement;
}

const FaultCase cases[] = {
    // Tables, fields and rows that are missing.
    {own, "DROP TABLE tMessages", "tMessages||", "the table is missing"},
    {own, "DROP TABLE tMsgBox", "tMsgBox||", "the table is missing"},
    {own, "DROP TABLE tForms", "tForms||", "the table is missing"},
    {own, "DROP TABLE tPicture", "tPicture||", "the table is missing"},
    {common, "DROP TABLE tMsgBox", "tMsgBox||", "the table is missing"},
    {common, "DROP TABLE PictureFileName", "PictureFileName||", "the table is missing"},
    {help, "DROP TABLE tTopics", "tTopics||", "the table is missing"},
    {own, "ALTER TABLE tMsgBox DROP COLUMN HelpFile", "tMsgBox||HelpFile", "the field is missing"},
    {own, "ALTER TABLE tControls DROP COLUMN FontSize", "tControls||FontSize", "the field is missing"},
    {common, "ALTER TABLE PictureFileName DROP COLUMN FileName", "PictureFileName||FileName",
     "field is missing"},
    {help, "ALTER TABLE tTopics DROP COLUMN Title", "tTopics||Title", "the field is missing"},
    {own, "DELETE FROM tProject", "tProject|Horalink|", "the row is missing"},
    {own, "DELETE FROM tMsgBox WHERE MsgNo = 4", "tMsgBox|4|", "the row is missing"},
    {own, "DELETE FROM tForms", "tForms|dlgAddin|", "the row is missing"},
    {own, "DELETE FROM tControls WHERE ObjectName = 'lblTrack'", "tControls|dlgAddin lblTrack -1|Caption",
     "of its design"},
    {own, "DELETE FROM tPicture", "tPicture||", "no row for the dialog"},
    {help, "DELETE FROM tTopics WHERE ID = 3", "tTopics|3|", "the row is missing: the control"},
    {help, "DELETE FROM tTopics WHERE ID = 1", "tTopics|1|", "opens with it"},
    // Null where it fails, and texts that are missing.
    {own, "UPDATE tMsgBox SET Prompt = NULL WHERE MsgNo = 1", "tMsgBox|1|Prompt", "it is Null"},
    {common, "INSERT INTO tMsgBox (MsgNo, Buttons) VALUES (7, 'vbOKOnly')", "tMsgBox|7|Prompt", "it is Null"},
    {own, "UPDATE tControls SET \"Index\" = NULL WHERE ObjectName = 'updTime'",
     "tControls|dlgAddin updTime null|Index", "it is Null"},
    {common, "UPDATE PictureFileName SET FileName = NULL WHERE ID = 2",
     "PictureFileName|2 plain.svg|FileName", "the name"},
    {own, "UPDATE tProject SET OleServerBusyMsgText = ''", "tProject|Horalink|OleServerBusyMsgText",
     "text is missing"},
    {help, "UPDATE tTopics SET Body = NULL WHERE ID = 5", "tTopics|5|Body", "the text is missing"},
    // Messages by number.
    {own, "DELETE FROM tMessages WHERE ID = 6", "tMessages||", "and the add-in reads 7"},
    {own, "UPDATE tMessages SET ID = 9 WHERE ID = 6", "tMessages|6 to 8|", "the row is missing"},
    {own, "INSERT INTO tMessages VALUES (4, 'Another')", "tMessages|4|ID", "the same number"},
    {own, "UPDATE tMessages SET ID = 'six' WHERE ID = 6", "tMessages|six|ID", "it has to be a number"},
    {own, "ALTER TABLE tMessages ADD COLUMN Note TEXT", "tMessages||", "different numbers of fields"},
    {own, "UPDATE tMessages SET Caption = '100 %' WHERE ID = 2", "tMessages|2|Caption", "cut at its %"},
    {own, "INSERT INTO tMsgBox SELECT * FROM tMsgBox WHERE MsgNo = 3", "tMsgBox|3|MsgNo", "the same number"},
    {own, "INSERT INTO tMsgBox VALUES ('x', 'Text', '', '-1', NULL, '-1')", "tMsgBox|x|MsgNo", "16 bits"},
    // The languages of texts and buttons.
    {own, "UPDATE tMsgBox SET Buttons = 'vbInfo' WHERE MsgNo = 0", "tMsgBox|0|Buttons", "\"vbInfo\" is no"},
    {own, "UPDATE tMsgBox SET Title = 'Date & Time' WHERE MsgNo = 1", "tMsgBox|1|Title", "%AND"},
    {own, "UPDATE tMsgBox SET Prompt = 'Read.' WHERE MsgNo = 0", "tMsgBox|0|Prompt", "%ST is missing"},
    {own, "UPDATE tMsgBox SET Prompt = 'Done: & %SP & %ST' WHERE MsgNo = 1", "tMsgBox|1|Prompt",
     "no text for %ST"},
    {own, "UPDATE tMsgBox SET Prompt = '' WHERE MsgNo = 1", "tMsgBox|1|Prompt", "the box has no text"},
    {own, "UPDATE tMsgBox SET HelpFile = 'Horalink.hlp', Context = '77' WHERE MsgNo = 1", "tMsgBox|1|Context",
     "no topic of this number"},
    {own, "UPDATE tForms SET Caption = 'Date & Time'", "tForms|dlgAddin|Caption", "%AND"},
    {own, "UPDATE tControls SET Caption = 'One & %CR & Two' WHERE ObjectName = 'lblTrack'",
     "tControls|dlgAddin lblTrack -1|Caption", "shown as it is"},
    // What the dialog doesn't have, and fonts that are none.
    {own, "UPDATE tForms SET FontSize = 0", "tForms|dlgAddin|FontSize", "the add-in fails on it"},
    {own, "UPDATE tForms SET FontName = '-1'", "tForms|dlgAddin|FontName", "has no meaning here"},
    {own, "INSERT INTO tControls VALUES ('dlgAddin', 'cmdHelp', -1, '-1', '-1', NULL, 'Help')",
     "tControls|dlgAddin cmdHelp -1|", "'cmdHelp' not found"},
    {own, "INSERT INTO tControls VALUES ('dlgOther', 'cmdButton', 0, '-1', '-1', NULL, 'Help')",
     "tControls|dlgOther cmdButton 0|FormName", "no form of this name"},
    {own, "UPDATE tControls SET Caption = 'Hour' WHERE ObjectName = 'txtTime' AND \"Index\" = 0",
     "tControls|dlgAddin txtTime 0|Caption", "the add-in fails on it"},
    {own, "INSERT INTO tControls SELECT * FROM tControls WHERE ObjectName = 'updTime'",
     "tControls|dlgAddin updTime -1|", "for the same control"},
    // Pictures.
    {own, "UPDATE tPicture SET FileName = 'gone.svg'", "tPicture|dlgAddin imgBack -1|FileName", "is missing"},
    {common, "INSERT INTO PictureFileName VALUES (1, 'PLAIN.SVG', 'sand.svg')",
     "PictureFileName|1 PLAIN.SVG|", "the same picture in the same set"},
    {common, "UPDATE PictureFileName SET ID = 70000 WHERE ID = 3", "PictureFileName|70000 plain.svg|ID",
     "16 bits"},
};

class FaultTest : public CheckTest, public testing::WithParamInterface<FaultCase> {};

TEST_P(FaultTest, IsFoundWithItsPlace) {
    const FaultCase& expected = GetParam();
    Connection(At(expected.database), false).Run(expected.statement);
    const Finding finding = OnlyOf(Check());
    const Place& place = finding.place;
    EXPECT_EQ(place.database, expected.database);
    std::string found = place.table + "|";
    for (const auto& [name, value] : place.row) found += value + (name == place.row.back().first ? "" : " ");
    found += "|" + place.field;
    EXPECT_TRUE(found.starts_with(expected.place)) << found;
    EXPECT_NE(finding.message.find(expected.message), std::string::npos) << finding.message;
}

INSTANTIATE_TEST_SUITE_P(Check, FaultTest, testing::ValuesIn(cases));

TEST_F(CheckTest, FindsPictureFilesThatAreNone) {
    std::ofstream(Backgrounds() / "sand.svg") << "not a picture";
    fs::remove(Backgrounds() / "plain.svg");
    const Findings findings = Check();
    ASSERT_EQ(findings.All().size(), 2U) << findings.AsText("");
    EXPECT_EQ(findings.All()[0].message, "the picture file plain.svg is missing");
    EXPECT_EQ(findings.All()[1].message, "the file sand.svg is no picture");
}

TEST_F(CheckTest, ReportsAFileThatIsNoDatabase) {
    std::ofstream(At(own)) << "SQLite format 4, or so";
    EXPECT_EQ(OnlyOf(Check()).place.database, own);
}

TEST_F(CheckTest, TellsADatabaseOfAnotherNameByItsTables) {
    fs::rename(At(common), At("Shared.LNG"));
    EXPECT_TRUE(CheckSet({{At(own), At(help)}, At("Shared.LNG"), std::nullopt, Backgrounds()}).All().empty());
    EXPECT_TRUE(CheckSet({{At("Shared.LNG"), At(own), At(help)}, {}, {}, Backgrounds()}).All().empty());
    EXPECT_THROW(CheckSet({{At(own), At(own)}, {}, {}, {}}), tools::WrongCall);
}

TEST_F(CheckTest, SaysWhatItLeftOut) {
    EXPECT_EQ(CheckSet({{At(own)}, {}, {}, {}}).Notes().size(), 3U);
    EXPECT_TRUE(Check().Notes().empty());
}

TEST_F(CheckTest, LeadsToTheLineOfTheSource) {
    std::string text = ReadWholeFile(LNG_DATA "/en.lngtext");
    const auto place = text.find("Buttons: vbOKOnly+vbExclamation");
    text.replace(place, 31, "Buttons: vbOKOnly+vbExclaim");
    const auto file = scratch_.Write("xx.lngtext", text);
    const CheckedFiles files{{file}, {}, {}, Backgrounds()};
    const Findings findings = CheckSet(files);
    const auto line = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place), '\n') + 1;
    EXPECT_EQ(OnlyOf(findings).line, line);
    EXPECT_TRUE(KeyText(OnlyOf(findings).place.row).starts_with("MsgNo "));
    EXPECT_TRUE(
        findings.AsText(files.SourcePath()).starts_with(file.string() + ":" + std::to_string(line) + ": "));
}

TEST_F(CheckTest, ChecksTheRegister) {
    const auto files =
        BuildInto(ReadSource(LNG_DATA "/register.lngtext"), scratch_.Path() / "register", false);
    EXPECT_TRUE(CheckSet({files, {}, {}, {}}).All().empty());
    Connection(files.front(), false).Run("UPDATE Registry SET AppName = 'Other.mra'");
    EXPECT_EQ(CheckSet({files, {}, {}, {}}).All().size(), 1U);
}

}  // namespace
