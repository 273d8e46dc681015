// Faults put one by one into copies of the databases. Each is found, with its place, and nothing else is.
#include "check/Check.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "Table.h"
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
        for (const fs::path& file :
             BuildInto(ReadSource(LNG_DATA "/en.lngtext"), scratch_.Path() / "whole", true))
            TakeRulesAway(file);
        MakeSet();
        fs::copy(LNG_DATA "/backgrounds", Backgrounds());
    }

    void MakeSet() const {
        using enum fs::copy_options;
        fs::copy(scratch_.Path() / "whole", scratch_.Path() / "set", recursive | overwrite_existing);
    }
    fs::path Backgrounds() const { return scratch_.Path() / "backgrounds"; }
    fs::path At(const char* name) const { return scratch_.Path() / "set" / name; }
    Findings Check() const { return CheckSet({{At(own), At(common), At(help)}, {}, {}, Backgrounds()}); }
    static Finding OnlyOf(const Findings& findings) {
        EXPECT_EQ(findings.All().size(), 1U) << findings.AsText("");
        return findings.All().empty() ? Finding() : findings.All().front();
    }

    platform::TemporaryDirectory scratch_;
};

// Database, statement, place (table, row and field, as far as they are known) and message.
const platform::Table<const char*, const char*, const char*, const char*> faults = {
    // Tables, fields and rows that are missing.
    {own, "DROP TABLE tMessages", "tMessages||", "the table is missing"},
    {common, "DROP TABLE PictureFileName", "PictureFileName||", "the table is missing"},
    {help, "DROP TABLE tTopics", "tTopics||", "the table is missing"},
    {own, "ALTER TABLE tMsgBox DROP COLUMN HelpFile", "tMsgBox||HelpFile", "the field is missing"},
    {own, "DELETE FROM tProject", "tProject|Horalink|", "the row is missing"},
    {own, "DELETE FROM tMsgBox WHERE MsgNo = 4", "tMsgBox|4|", "the row is missing"},
    {own, "DELETE FROM tControls WHERE ObjectName = 'lblTrack'", "tControls|dlgAddin lblTrack -1|Caption",
     "of its design"},
    {own, "DELETE FROM tPicture", "tPicture||", "no row for the dialog"},
    {help, "DELETE FROM tTopics WHERE ID = 3", "tTopics|3|", "the row is missing: the control"},
    {help, "DELETE FROM tTopics WHERE ID = 1", "tTopics|1|", "opens with it"},
    // Null where it fails, and texts that are missing.
    {own, "UPDATE tMsgBox SET Prompt = NULL WHERE MsgNo = 1", "tMsgBox|1|Prompt", "it is Null"},
    {own, "UPDATE tControls SET \"Index\" = NULL WHERE ObjectName = 'updTime'",
     "tControls|dlgAddin updTime null|Index", "it is Null"},
    {common, "UPDATE PictureFileName SET FileName = NULL WHERE ID = 2",
     "PictureFileName|2 plain.svg|FileName", "the name"},
    {own, "UPDATE tProject SET OleServerBusyMsgText = ''", "tProject|Horalink|OleServerBusyMsgText",
     "text is missing"},
    {help, "UPDATE tTopics SET Body = NULL WHERE ID = 5", "tTopics|5|Body", "the text is missing"},
    // Messages by number.
    {own, "DELETE FROM tMessages WHERE ID >= 6", "tMessages||", "and the add-in needs 7"},
    {own, "DELETE FROM tMessages WHERE ID BETWEEN 6 AND 8", "tMessages|6 to 8|", "the row is missing"},
    {own, "INSERT INTO tMessages VALUES (4, 'Another')", "tMessages|4|ID", "the same number"},
    {own, "ALTER TABLE tMessages ADD COLUMN Note TEXT", "tMessages||", "different numbers of fields"},
    {own, "UPDATE tMessages SET Caption = '' WHERE ID = 16", "tMessages|16|Caption", "the text is missing"},
    {own, "UPDATE tMessages SET Caption = '100 %' WHERE ID = 2", "tMessages|2|Caption", "cut at its %"},
    {own, "INSERT INTO tMsgBox VALUES ('x', 'Text', '', '-1', NULL, '-1')", "tMsgBox|x|MsgNo", "16 bits"},
    // The languages of texts and buttons.
    {own, "UPDATE tMsgBox SET Buttons = 'vbInfo' WHERE MsgNo = 0", "tMsgBox|0|Buttons", "\"vbInfo\" is no"},
    {own, "UPDATE tMsgBox SET Title = 'Date & Time' WHERE MsgNo = 1", "tMsgBox|1|Title", "%AND"},
    {own, "UPDATE tMsgBox SET Prompt = 'Read.' WHERE MsgNo = 0", "tMsgBox|0|Prompt", "%ST is missing"},
    {own, "UPDATE tMsgBox SET Prompt = 'Done: & %SP & %ST' WHERE MsgNo = 1", "tMsgBox|1|Prompt",
     "no text for %ST"},
    {own, "UPDATE tMsgBox SET HelpFile = 'Horalink.hlp', Context = '77' WHERE MsgNo = 1", "tMsgBox|1|Context",
     "no topic of this number"},
    {own, "UPDATE tControls SET Caption = 'One & %CR & Two' WHERE ObjectName = 'lblTrack'",
     "tControls|dlgAddin lblTrack -1|Caption", "shown as it is"},
    // What the dialog doesn't have, and fonts that are none.
    {own, "UPDATE tForms SET FontSize = 0", "tForms|dlgAddin|FontSize", "the add-in fails on it"},
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

TEST_F(CheckTest, FindsEachFaultWithItsPlace) {
    for (const auto& [database, statement, where, message] : faults) {
        SCOPED_TRACE(statement);
        MakeSet();
        Connection(At(database), false).Run(statement);
        const Finding finding = OnlyOf(Check());
        const Place& place = finding.place;
        EXPECT_EQ(place.database, database);
        std::string found = place.table + "|";
        for (const auto& [name, value] : place.row)
            found += value + (name == place.row.back().first ? "" : " ");
        found += "|" + place.field;
        EXPECT_TRUE(found.starts_with(where)) << found;
        EXPECT_PRED_FORMAT2(testing::IsSubstring, message, finding.message);
    }
}

TEST_F(CheckTest, IsContentWithoutTheWordsOnButtons) {
    Connection(At(own), false).Run("DELETE FROM tMessages WHERE ID > 6");
    EXPECT_EQ(Check().AsText(""), Findings().AsText(""));
}

TEST_F(CheckTest, FindsFilesThatAreNone) {
    std::ofstream(Backgrounds() / "sand.svg") << "not a picture";
    EXPECT_EQ(OnlyOf(Check()).message, "the file sand.svg is no picture");
    fs::remove(Backgrounds() / "sand.svg");
    EXPECT_EQ(OnlyOf(Check()).message, "the picture file sand.svg is missing");
    fs::copy(LNG_DATA "/backgrounds/sand.svg", Backgrounds());
    std::ofstream(At(own)) << "SQLite format 4, or so";
    EXPECT_EQ(OnlyOf(Check()).place.database, own);
}

TEST_F(CheckTest, TellsADatabaseOfAnotherNameByItsTables) {
    fs::rename(At(common), At("Shared.LNG"));
    EXPECT_TRUE(CheckSet({{At(own), At(help)}, At("Shared.LNG"), std::nullopt, Backgrounds()}).All().empty());
    EXPECT_TRUE(CheckSet({{At("Shared.LNG"), At(own), At(help)}, {}, {}, Backgrounds()}).All().empty());
    EXPECT_THROW(CheckSet({{At(own), At(own)}, {}, {}, {}}), tools::WrongCall);
}

TEST_F(CheckTest, LeadsToTheLineOfTheSource) {
    std::string text = ReadWholeFile(LNG_DATA "/en.lngtext");
    const auto place = text.find("vbExclamation");
    const auto line = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place), '\n') + 1;
    const auto file = scratch_.Write("xx.lngtext", text.replace(place, 13, "vbExclaim"));
    EXPECT_EQ(OnlyOf(CheckSet({{file}, {}, {}, Backgrounds()})).line, line);
}

TEST_F(CheckTest, ChecksTheRegister) {
    const auto files =
        BuildInto(ReadSource(LNG_DATA "/register.lngtext"), scratch_.Path() / "register", false);
    EXPECT_TRUE(CheckSet({files, {}, {}, {}}).All().empty());
    Connection(files.front(), false).Run("UPDATE Registry SET AppName = 'Other.mra'");
    EXPECT_EQ(CheckSet({files, {}, {}, {}}).All().size(), 1U);
}

}  // namespace
