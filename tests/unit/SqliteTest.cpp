#include "platform/data/sqlite/SqliteEngine.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>

#include "ErrorOf.h"
#include "Table.h"
#include "TemporaryDirectory.h"
#include "platform/data/Database.h"
#include "platform/data/Dialect.h"
#include "platform/desktop/Paths.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr auto dynaset = RecordsetType::Dynaset, forwardOnly = RecordsetType::ForwardOnly;
constexpr TextView horalink = u"SELECT * FROM Registry WHERE AppName = \"Horalink.mra\"";

// SQLite by its own calls, as another program would use the file.
struct OtherProgram {
    explicit OtherProgram(const fs::path& file) { sqlite3_open(file.c_str(), &handle); }
    ~OtherProgram() { sqlite3_close(handle); }
    void Run(const char* statements) {
        ASSERT_EQ(sqlite3_exec(handle, statements, nullptr, nullptr, nullptr), SQLITE_OK)
            << statements << ": " << sqlite3_errmsg(handle);
    }
    sqlite3* handle = nullptr;
};

struct SqliteTest : testing::Test {
    SqliteTest() {
        RunElsewhere(
            "create table Registry (AppName text, Version text, Count integer, [Index] integer);"
            "insert into Registry values ('Other.mra', '1.0', 1, -1), ('Horalink.mra', '2.0', 2, 0),"
            " ('Horalink.mra', '3.0', 3, 1);"
            "create table tMessages (ID integer, Caption text); insert into tMessages values (0, 'zero');"
            "create table Kinds (Name text, Value);"
            "insert into Kinds values ('whole', 2147483647), ('least', -2147483648), ('large', 2147483648),"
            " ('real', 0.5), ('text', 'Größe 𝄞'), ('null', null), ('binary', x'00'), ('empty', '');");
    }
    DatabaseRef Open(bool readOnly = false) { return engine->OpenDatabase(PathText(file), readOnly); }
    std::unique_ptr<Recordset> Rows(TextView query = horalink, RecordsetType type = dynaset) {
        return Open()->OpenRecordset(query, type);
    }
    void RunElsewhere(const std::string& statements) { OtherProgram(file).Run(statements.c_str()); }
    // The first column of the first row.
    Value Single(const Text& query) {
        return Rows(u"select (" + query + u") as Result", forwardOnly)->Field(u"Result");
    }
    static std::int32_t Change(Recordset& rows, TextView field, const Value& value) {
        return ErrorOf([&] {
            rows.Edit();
            rows.SetField(field, value);
            rows.Update();
        });
    }
    // The descriptors of this process that stand for the file.
    std::ptrdiff_t OpenDescriptors() {
        return std::count_if(fs::directory_iterator("/proc/self/fd"), {}, [&](const auto& entry) {
            std::error_code error;
            return fs::read_symlink(entry.path(), error) == file;
        });
    }

    TemporaryDirectory directory;
    const fs::path file = directory.Path() / "Test.mdb";
    std::unique_ptr<DatabaseEngine> engine = MakeSqliteEngine();
};

TEST(DialectTest, TranslatesNamesAndStrings) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"", u""},
        {u"select ObjectName,Index,Caption from t", u"select ObjectName,[Index],Caption from t"},
        {u"select INDEX, tControls.Index", u"select [INDEX], tControls.[Index]"},
        {u"select BasePanelIndex, Index2 from t", u"select BasePanelIndex, Index2 from t"},
        {u"select Größe,Index", u"select Größe,[Index]"},
        {u"select [Index], `Index` from [From]", u"select [Index], `Index` from [From]"},
        {u"a = \"Horalink.mra\"", u"a = 'Horalink.mra'"},
        {u"a = \"say \"\"Index\"\"\"", u"a = 'say \"Index\"'"},
        {u"a = \"it's\"", u"a = 'it''s'"},
        {u"a = 'it''s \"Index\"'", u"a = 'it''s \"Index\"'"},
        {u"a = '[' and Index = ']'", u"a = '[' and [Index] = ']'"},
        {u"a = \"open\"\"", u"a = 'open\""},
        {u"a = \"", u"a = '"},
        {u"a = 'open Index", u"a = 'open Index"}};
    for (const auto& [query, expected] : cases) EXPECT_EQ(ToUtf8(ToSqliteDialect(query)), ToUtf8(expected));
}

TEST(DialectTest, TheRowsNumberStandsBeforeTheOtherColumnsOfASelection) {
    const std::pair<const char16_t*, std::optional<Text>> cases[] = {
        {u"  SELECT * FROM Registry", u"select oid, * FROM Registry"},
        {u"select a from t where b = 'group'", u"select oid, a from t where b = 'group'"},
        {u"select a from t Group by a", {}},
        {u"  ", {}}};
    for (const auto& [query, expected] : cases)
        EXPECT_EQ(WithRowNumber(query, u"oid"), expected) << ToUtf8(query);
}

TEST_F(SqliteTest, GivesEachKindOfValueAndNothingBehindTheLastRow) {
    const std::pair<Text, Value> kinds[] = {
        {u"whole", 2147483647}, {u"least", -2147483647 - 1}, {u"large", 2147483648.0}, {u"real", 0.5},
        {u"text", u"Größe 𝄞"},  {u"null", Null()},           {u"empty", u""}};
    for (const auto& [name, value] : kinds)
        EXPECT_EQ(Single(u"select Value from Kinds where Name = '" + name + u"'"), value);
    for (const auto type : {forwardOnly, dynaset}) {
        const auto rows = Rows(u"select Name,Value from Kinds where Name = 'binary'", type);
        EXPECT_EQ(rows->Field(u"NAME"), Value(u"binary"));
        EXPECT_EQ(ErrorOf([&] { rows->Field(u"Value"); }), 13) << "refused where it is read";
        EXPECT_EQ(ErrorOf([&] { rows->Field(u"Caption"); }), 3265);
        rows->MoveNext();
        EXPECT_TRUE(rows->EndOfFile());
        EXPECT_EQ(rows->RecordCount(), 1);
        EXPECT_EQ(ErrorOf([&] { rows->Field(u"Name"); }), 3021);
        EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), 3021);
    }
}

TEST_F(SqliteTest, RefusesQueriesWithANumberAndTheCause) {
    using enum DataError;
    const Table<TextView, DataError, TextView> cases = {
        {u"select * from tProject", NoSuchTable, u"The table 'tProject' was not found in Test.mdb"},
        {u"select Title from Registry", NoSuchQueryField, u"'Title'"},
        {u"select Index from Kinds", NoSuchQueryField, u"'Index'"},
        {u"SELECT * FROM Kinds UNION SELECT 1, 2 ORDER BY ID", NoSuchQueryField, u"sorted"},
        {u"SELECT * FROM Registry UNION SELECT 1, 2 ORDER BY ID", UnionColumns, u"union"},
        {u"select * from Kinds where Name = 'it's'", QuerySyntax, u"s"},
        {u"select * from Kinds where", QuerySyntax, u"incomplete"},
        {u"select * from Kinds; select 1", QuerySyntax, u"behind"},
        {u"", QuerySyntax, u"empty"},
        {u"delete from Kinds", QuerySyntax, u"delete"},
        {u"vacuum", QuerySyntax, u"no rows"}};
    for (const auto& [query, number, named] : cases)
        for (const auto type : {forwardOnly, dynaset}) {
            const RuntimeError error = Raised([&, text = query] { Rows(text, type); });
            EXPECT_EQ(error.Number(), static_cast<std::int32_t>(number)) << error.what();
            EXPECT_NE(error.Description().find(named), Text::npos) << error.what();
        }
}

TEST_F(SqliteTest, NamesAFileThatCantBeOpenedByItsPathOnTheMachine) {
    const Table<TextView, DataError, fs::path> cases = {
        {u"", DataError::FileNotFound, directory.Path()},
        {u"TEST.MDB\\None.mdb", DataError::FileNotFound, file / "None.mdb"},
        {u"EMPTY.MDB", DataError::NotADatabase, directory.Write("Empty.mdb")}};
    for (const auto& [path, number, real] : cases) {
        const Text asked = UpperCase(PathText(directory.Path())) + u"\\" + Text(path);
        const RuntimeError error = Raised([&] { engine->OpenDatabase(asked); });
        EXPECT_EQ(error.Number(), static_cast<std::int32_t>(number));
        EXPECT_NE(std::string(error.what()).find("'" + real.native() + "'"), std::string::npos)
            << error.what();
    }
}

TEST_F(SqliteTest, ChangesTheCurrentRowAloneBetweenEditAndUpdate) {
    const auto rows = Rows();
    EXPECT_EQ(ErrorOf([&] { rows->SetField(u"Version", u"x"); }), 3020);
    EXPECT_EQ(ErrorOf([&] { rows->Update(); }), 3020);
    rows->Edit();
    EXPECT_EQ(ErrorOf([&] { rows->SetField(u"Nothing", u"x"); }), 3265);
    rows->SetField(u"version", u"13.0.1");
    EXPECT_EQ(rows->Field(u"Version"), Value(u"2.0")) << "before Update";
    rows->Update();
    EXPECT_EQ(ErrorOf([&] { rows->Update(); }), 3020) << "the edit has ended";
    EXPECT_EQ(rows->Field(u"Version"), Value(u"13.0.1"));
    rows->Edit();
    rows->SetField(u"Version", u"dropped");
    rows->MoveNext();
    EXPECT_EQ(rows->Field(u"Version"), Value(u"3.0"));
    EXPECT_EQ(ErrorOf([&] { rows->Update(); }), 3020);
    rows->MoveNext();
    EXPECT_EQ(ErrorOf([&] { rows->Edit(); }), 3021);
    EXPECT_EQ(Single(u"select group_concat(AppName || Version || Count || [Index]) from Registry"),
              Value(u"Other.mra1.01-1,Horalink.mra13.0.120,Horalink.mra3.031"));
}

TEST_F(SqliteTest, RowsThatAreNotThoseOfATableAreNotEdited) {
    RunElsewhere(
        "create view Shown as select * from Registry; create table Other (x, y);"
        "insert into Other values (1, 2); create table Keyed (a primary key) without rowid;"
        "insert into Keyed values (1); create table Named (a primary key, RowID) without rowid;"
        "insert into Named values (1, 1); create table Taken (rowid, oid, _ROWID_);"
        "insert into Taken values (1, 1, 1);"
        "create view Misleading as select Count as rowid, AppName, Version from Registry;");
    for (const TextView query :
         {u"SELECT * FROM tMessages UNION SELECT -1, COUNT(*) FROM tMessages ORDER BY ID",
          u"select AppName from Registry, Other", u"select distinct AppName from Registry",
          u"select AppName from Registry group by AppName", u"select count(*) as c from Registry",
          u"select * from Shown", u"select * from Keyed", u"select * from Named", u"select * from Taken",
          u"select AppName, Version from Misleading", u"select * from (select AppName from Registry limit 1)",
          u"select Version || '.' as v from Registry"}) {
        EXPECT_FALSE(Rows(query)->EndOfFile()) << ToUtf8(query);
        EXPECT_EQ(ErrorOf([&] { Rows(query)->Edit(); }), 3027) << ToUtf8(query);
    }
    EXPECT_EQ(ErrorOf([&] { Rows(horalink, forwardOnly)->Edit(); }), 3027);
    EXPECT_EQ(ErrorOf([&] { Open(true)->OpenRecordset(horalink, dynaset)->Edit(); }), 3027);
}

TEST_F(SqliteTest, ColumnsNamedLikeTheRowsNumberLeadToNoOtherRow) {
    for (const std::string columns : {"rowid", "oid", "_rowid_", "ROWID, oid", "_rowid_, RowId"}) {
        RunElsewhere("drop table if exists Shadowed; create table Shadowed (a text, " + columns + ");" +
                     "insert into Shadowed (a, " + columns.substr(0, columns.find(',')) +
                     ") values ('first', 1), ('second', 1)");
        EXPECT_EQ(Change(*Rows(u"select * from Shadowed where a = 'first'"), u"a", u"new"), 0) << columns;
        EXPECT_EQ(Single(u"select group_concat(a) from Shadowed"), Value(u"new,second")) << columns;
    }
}

TEST_F(SqliteTest, LeavesTheRowAloneWhenTheTableRefusesTheValueOrTheRowIsGone) {
    RunElsewhere("create table Strict (a text not null, b); insert into Strict values ('a', 'b')");
    const auto rows = Rows(u"select * from Strict");
    rows->Edit();
    rows->SetField(u"b", u"new");
    rows->SetField(u"a", Null());
    EXPECT_EQ(ErrorOf([&] { rows->Update(); }), 3317);
    EXPECT_EQ(rows->Field(u"b"), Value(u"b"));
    rows->SetField(u"a", u"A");
    rows->Update();
    EXPECT_EQ(Single(u"select a || b from Strict"), Value(u"Anew"));
    RunElsewhere("delete from Strict");
    EXPECT_EQ(Change(*rows, u"a", u"x"), 3167);
}

TEST_F(SqliteTest, TellsOfLocks) {
    const auto rows = Rows();
    OtherProgram other(file);
    other.Run("begin exclusive");
    EXPECT_EQ(ErrorOf([&] { Open(); }), 3260);
    EXPECT_EQ(Change(*rows, u"Version", u"x"), 3260);
    other.Run("rollback");
    rows->Update();
    EXPECT_EQ(rows->Field(u"Version"), Value(u"x"));
    EXPECT_EQ(Change(*Rows(), u"Version", u"y"), 0) << "two dynasets do not block each other";
    EXPECT_EQ(Change(*rows, u"Version", u"z"), 0);
}

TEST_F(SqliteTest, WhatIsClosedAnswersNothingAndLetsGoOfTheFile) {
    for (const auto type : {forwardOnly, dynaset}) {
        const auto database = Open();
        const auto rows = database->OpenRecordset(horalink, type);
        database->OpenRecordset(horalink, type)->Close();
        EXPECT_EQ(OpenDescriptors(), 1);
        database->Close();
        EXPECT_EQ(OpenDescriptors(), 0);
        const std::function<void()> members[] = {
            [&] { rows->EndOfFile(); }, [&] { rows->Field(u"Version"); },
            [&] { rows->MoveNext(); },  [&] { rows->RecordCount(); },
            [&] { rows->Edit(); },      [&] { rows->SetField(u"Version", u"x"); },
            [&] { rows->Update(); },    [&] { rows->Close(); },
            [&] { database->Close(); }, [&] { database->OpenRecordset(horalink, type); }};
        for (const auto& member : members) EXPECT_EQ(ErrorOf(member), 3420);
    }
    auto rows = Rows(horalink, forwardOnly);
    rows->MoveNext();
    EXPECT_EQ(rows->Field(u"Version"), Value(u"3.0")) << "keeps the file that its database let go of";
    rows.reset();
    EXPECT_EQ(OpenDescriptors(), 0);
}

}  // namespace
}  // namespace platform
