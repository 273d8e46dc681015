#include "platform/data/sqlite/SqliteEngine.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdarg.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "harness/Cases.h"
#include "harness/Files.h"
#include "platform/data/Dialect.h"
#include "platform/runtime/Paths.h"

namespace {
bool hasNamelessFiles = true;
}

// Some file systems have no files without a name.
extern "C" int open(const char* name, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const bool isNameless = (flags & O_TMPFILE) == O_TMPFILE;
    const mode_t mode = isNameless || (flags & O_CREAT) ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    if (!hasNamelessFiles && isNameless) return errno = EOPNOTSUPP, -1;
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, name, flags, mode));
}

namespace platform {
namespace {

namespace fs = std::filesystem;

using Act = std::function<void()>;
constexpr auto dynaset = RecordsetType::Dynaset, forwardOnly = RecordsetType::ForwardOnly;
constexpr TextView horalink = u"SELECT * FROM Registry WHERE AppName = \"Horalink.mra\"";

struct SqliteTest : testing::Test {
    SqliteTest() {
        RunElsewhere(
            "create table Registry (AppName, Version text, Count, [Index]);"
            "insert into Registry values ('Other.mra', '1.0', 1, -1), ('Horalink.mra', '2.0', 2, 0),"
            " ('Horalink.mra', '3.0', 3, 1);"
            "create table Kinds (Value); insert into Kinds values (2147483647), (-2147483648), (2147483648),"
            " (-2147483649), (0.5), ('Größe 𝄞'), (null), ('')");
    }
    DatabaseRef Open(bool readOnly = false) { return engine->OpenDatabase(PathText(file), readOnly); }
    std::unique_ptr<Recordset> Rows(TextView query = horalink, RecordsetType type = dynaset) {
        return Open()->OpenRecordset(query, type);
    }
    // As another program would use the file.
    void RunElsewhere(const std::string& sql) {
        sqlite3* handle = nullptr;
        sqlite3_open(file.c_str(), &handle);
        ASSERT_EQ(sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sql;
        sqlite3_close(handle);
    }
    // What a query gives in its one row and column.
    std::string Single(const Text& query) {
        return ToUtf8(Rows(u"select (" + query + u") as Result", forwardOnly)->Field(u"Result").ToText());
    }
    static std::string Change(Recordset& rows, TextView field, const Value& value) {
        return FaultOf([&] { rows.Edit(), rows.SetField(field, value), rows.Update(); });
    }
    TemporaryDirectory directory;
    fs::path file = directory.Path() / "Test.mdb";
    std::unique_ptr<DatabaseEngine> engine = MakeSqliteEngine();
};

TEST(DialectTest, TranslatesNamesAndStrings) {
    const auto translate = [](auto... queries) { return Joined(ToSqliteDialect(queries)...); };
    EXPECT_EQ(translate(u"", u"select INDEX, t.Index", u"BasePanelIndex, Index2, _Index", u"Größe,Index",
                        u"[Index], `Index`, [Fr]]om]"),
              "|select [INDEX], t.[Index]|BasePanelIndex, Index2, _Index|Größe,[Index]|"
              "[Index], `Index`, [Fr]]om]|");
    EXPECT_EQ(
        translate(u"a = \"Horalink.mra\"", u"\"say \"\"Index\"\"\" Index", u"\"it's\"",
                  u"'it''s \"Index\"' \"b\"", u"'[' and Index = ']'", u"\"open\"\"", u"\"", u"'open Index",
                  u"\"\"", u"`a``Index` \"b\""),
        "a = 'Horalink.mra'|'say \"Index\"' [Index]|'it''s'|'it''s \"Index\"' 'b'|'[' and [Index] = ']'|"
        "'open\"|'|'open Index|''|`a``Index` 'b'|");
    const auto numbered = [](auto... queries) {
        return Joined(WithRowNumber(queries, u"oid").value_or(u"none")...);
    };
    EXPECT_EQ(numbered(u" \t\r\n SELECT * FROM t", u"select a from t where b = 'group'",
                       u"select a from t Group by a", u"  ", u"", u"selected", u"select [group] from t"),
              "select oid, * FROM t|select oid, a from t where b = 'group'|none|none|none|none|select oid, "
              "[group] from t|");
}

TEST_F(SqliteTest, GivesEachKindOfValueAndNothingPastTheLastRow) {
    const Value kinds[] = {2147483647, -2147483647 - 1, 2147483648.0, -2147483649.0,
                           0.5,        u"Größe 𝄞",      Null(),       u""};
    RunElsewhere("create table Binary as select 'b' as Name, x'00' as Value");
    for (const auto type : {forwardOnly, dynaset}) {
        const auto all = Rows(u"select Value from Kinds", type);
        for (const Value& value : kinds) {
            EXPECT_EQ(all->Field(u"Value"), value);
            all->MoveNext();
        }
        EXPECT_TRUE(all->EndOfFile());
        const auto rows = Rows(u"select * from Binary", type);
        const Act text = [&] { rows->Field(u"NAME").ToText(); }, value = [&] { rows->Field(u"Value"); },
                  next = [&] { rows->MoveNext(); }, none = [&] { rows->Field(u"Caption"); };
        EXPECT_EQ(
            Faults(text, value, none, next, text, next),
            "0 |13 Type mismatch: the field holds binary data|"
            "3265 The field 'Caption' was not found in the record set|0 |3021 There is no current record|"
            "3021 There is no current record|");
        EXPECT_EQ(rows->RecordCount(), 1);
    }
    EXPECT_EQ(Rows(u"select * from Registry", forwardOnly)->RecordCount(), 1)
        << "those that have been current";
    EXPECT_EQ(Rows(u"select * from Registry", dynaset)->RecordCount(), 3);
}

TEST_F(SqliteTest, RefusesQueriesWithANumberAndTheCause) {
    const std::string malformed = "3075 The query is not well formed: ";
    const Table<TextView, std::string> cases = {
        {u"select * from tProject", "3078 The table 'tProject' was not found in Test.mdb"},
        {u"select Index from Kinds", "3061 The field 'Index' was not found in Test.mdb"},
        {u"SELECT * FROM Kinds UNION SELECT 1 ORDER BY ID",
         "3061 The query is sorted by a field that was not found in Test.mdb"},
        {u"SELECT * FROM Registry UNION SELECT 1, 2 ORDER BY ID",
         "3307 The two parts of a union query have different numbers of fields"},
        {u"select * from Kinds where Value = 'it's'", malformed + "near \"s\": syntax error"},
        {u"select * from Kinds; select 1", malformed + "there is more after its end"},
        {u"delete from Kinds returning Value", malformed + "near \"[delete]\": syntax error"}};
    for (const auto& [query, fault] : cases)
        for (const auto type : {forwardOnly, dynaset})
            EXPECT_EQ(FaultOf([&, text = query] { Rows(text, type); }), fault);
    EXPECT_FALSE(Rows(u"select * from Kinds; \t\r\n", dynaset)->EndOfFile());
}

TEST_F(SqliteTest, ChangesTheCurrentRowAloneBetweenEditAndUpdate) {
    const auto rows = Rows();
    const Act edit = [&] { rows->Edit(); }, set = [&] { rows->SetField(u"version", u"13.0.1"); },
              update = [&] { rows->Update(); }, next = [&] { rows->MoveNext(); },
              other = [&] { rows->SetField(u"Nothing", u"x"); };
    const std::string noEdit = "3020 The record must be opened by Edit before it is changed|",
                      noField = "3265 The field 'Nothing' was not found in the record set|";
    EXPECT_EQ(Faults(set, update, edit, other, set, set), noEdit + noEdit + "0 |" + noField + "0 |0 |");
    EXPECT_EQ(rows->Field(u"Version"), Value(u"2.0")) << "before Update";
    EXPECT_EQ(Faults(update, update), "0 |" + noEdit);
    EXPECT_EQ(rows->Field(u"Version"), Value(u"13.0.1"));
    EXPECT_EQ(
        Faults(edit, update, edit, set, next, update, next, edit, set),
        "0 |0 |0 |0 |0 |" + noEdit + "0 |3021 There is no current record|3021 There is no current record|");
    EXPECT_EQ(Single(u"select group_concat(AppName || Version || Count || [Index]) from Registry"),
              "Other.mra1.01-1,Horalink.mra13.0.120,Horalink.mra3.031");
    std::string written;
    for (const Value& value :
         {Value(), Value(Null{}), Value(true), Value(false), Value(7), Value(0.5), Value(Date{2.5})}) {
        EXPECT_EQ(Change(*Rows(), u"Version", value), "0 ");
        written += Single(u"select ifnull(max(Version), 'null') from Registry where Count = 2") + " ";
    }
    EXPECT_EQ(written, "null null -1 0 7 0.5 2.5 ");
    EXPECT_EQ(Change(*Rows(), u"Version", Missing{}) + Change(*Rows(), u"Version", ObjectRef()),
              "13 Type mismatch13 Type mismatch");
}

TEST_F(SqliteTest, LeavesTheRowAloneWhenTheTableRefusesTheValueOrTheRowIsGone) {
    RunElsewhere("create table Strict (a text not null, b); insert into Strict values ('a', 'b')");
    const auto rows = Rows(u"select * from Strict");
    const auto set = [&](TextView field, const Value& value) { rows->SetField(field, value); };
    EXPECT_EQ(FaultOf([&] { rows->Edit(), set(u"b", u"new"), set(u"a", Null()), rows->Update(); }),
              "3317 The table doesn't accept the value: NOT NULL constraint failed: Strict.a");
    EXPECT_EQ(rows->Field(u"b"), Value(u"b"));
    set(u"a", u"A"), rows->Update();
    EXPECT_EQ(Single(u"select a || b from Strict"), "Anew");
    RunElsewhere("delete from Strict");
    EXPECT_EQ(Change(*rows, u"a", u"x"), "3167 The record was deleted in the meantime");
}

TEST_F(SqliteTest, WhatIsClosedAnswersNothing) {
    for (const auto type : {forwardOnly, dynaset})
        for (const bool whole : {false, true}) {
            const auto database = Open();
            const auto rows = database->OpenRecordset(horalink, type);
            whole ? database->Close() : rows->Close();
            const Act members[] = {
                [&] { rows->EndOfFile(); }, [&] { rows->Field(u"Version"); },
                [&] { rows->MoveNext(); },  [&] { rows->RecordCount(); },
                [&] { rows->Update(); },    [&] { whole ? database->Close() : rows->Close(); }};
            for (const auto& member : members)
                EXPECT_EQ(FaultOf(member), "3420 The database or record set is closed");
        }
}

TEST_F(SqliteTest, WhatEverybodySharesBecomesTheUsersOwnOnceItIsWritten) {
    const fs::path shared = std::exchange(file, directory.Path() / "own/Test.mdb"), own = file.parent_path();
    for (const bool areNameless : {true, false}) {
        hasNamelessFiles = areNameless;
        fs::remove_all(own);
        engine = MakeSqliteEngine(Layers({own, shared.parent_path()}, {}));
        const auto rows = engine->OpenDatabase(PathText(shared))->OpenRecordset(horalink, dynaset);
        EXPECT_FALSE(fs::exists(own));
        EXPECT_EQ(Change(*rows, u"Version", u"new"), "0 ");
        EXPECT_EQ(std::distance(fs::directory_iterator(own), {}), 1);
        const Text versions = u"select group_concat(Version) from Registry";
        EXPECT_EQ(Single(versions), "1.0,new,3.0");
        // Whoever writes later finds the copy.
        EXPECT_EQ(Change(*engine->OpenDatabase(PathText(shared))->OpenRecordset(horalink, dynaset),
                         u"Version", u"newer"),
                  "0 ");
        EXPECT_EQ(Single(versions), "1.0,newer,3.0");
        engine = MakeSqliteEngine();
        file = shared;
        EXPECT_EQ(Single(versions), "1.0,2.0,3.0");
        file = own / "Test.mdb";
    }
    hasNamelessFiles = true;
}

}  // namespace
}  // namespace platform
