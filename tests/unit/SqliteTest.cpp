#include "platform/data/sqlite/SqliteEngine.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <limits>

#include "TemporaryDirectory.h"
#include "platform/data/Database.h"
#include "platform/desktop/Paths.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr auto dynaset = RecordsetType::Dynaset;
constexpr auto forwardOnly = RecordsetType::ForwardOnly;
constexpr auto everyoneReads = static_cast<fs::perms>(0555);

// SQLite by its own calls, as another program would use the file.
class OtherProgram {
  public:
    explicit OtherProgram(const fs::path& file) { sqlite3_open(file.c_str(), &handle_); }
    ~OtherProgram() { sqlite3_close(handle_); }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    void Run(const char* statements) {
        ASSERT_EQ(sqlite3_exec(handle_, statements, nullptr, nullptr, nullptr), SQLITE_OK)
            << statements << ": " << sqlite3_errmsg(handle_);
    }

  private:
    sqlite3* handle_ = nullptr;
};

// The number of the error that a call raises, 0 for none.
template <class Call>
std::int32_t NumberOf(Call call) {
    try {
        call();
    } catch (const RuntimeError& error) {
        EXPECT_FALSE(error.Description().empty());
        return error.Number();
    }
    return 0;
}

std::int32_t Number(DataError error) {
    return static_cast<std::int32_t>(error);
}

// For its life this process is a user without rights; a superuser may read and write everything.
class PlainUser {
  public:
    PlainUser() { EXPECT_TRUE(!superuser_ || seteuid(65534) == 0); }
    ~PlainUser() { EXPECT_TRUE(!superuser_ || seteuid(0) == 0); }
    PlainUser(const PlainUser&) = delete;
    PlainUser& operator=(const PlainUser&) = delete;

  private:
    const bool superuser_ = geteuid() == 0;
};

class SqliteTest : public testing::Test {
  protected:
    SqliteTest() : file_(directory_.Path() / "Test.mdb") {
        fs::permissions(directory_.Path(), everyoneReads | fs::perms::owner_all);
        OtherProgram(file_).Run(
            "create table Registry (AppName text, Version text, Count integer, [Index] integer);"
            "insert into Registry values ('Other.mra', '1.0', 1, -1), ('Horalink.mra', '2.0', 2, 0),"
            " ('Horalink.mra', '3.0', 3, 1);"
            "create table tMessages (ID integer, Caption text);"
            "insert into tMessages values (1, 'one'), (0, 'zero'), (2, null);"
            "create table Kinds (Name text, Value);"
            "insert into Kinds values ('whole', 2147483647), ('least', -2147483648), ('large', 2147483648),"
            " ('real', 0.5), ('text', 'Größe 𝄞'), ('null', null), ('binary', x'00'), ('empty', '');");
    }

    DatabaseRef Open(bool readOnly = false) { return engine_->OpenDatabase(PathText(file_), readOnly); }
    void RunElsewhere(const char* statements) { OtherProgram(file_).Run(statements); }
    Value Single(TextView query) { return Open()->OpenRecordset(query, forwardOnly)->Field(u"Result"); }

    TemporaryDirectory directory_;
    fs::path file_;
    std::unique_ptr<DatabaseEngine> engine_ = MakeSqliteEngine();
};

constexpr TextView horalink = u"SELECT * FROM Registry WHERE AppName = \"Horalink.mra\"";

TEST_F(SqliteTest, ReadsRowsInOrder) {
    const auto rows = Open()->OpenRecordset(u"select Caption,ID from tMessages order by ID", forwardOnly);
    EXPECT_EQ(rows->Field(u"Caption"), Value(u"zero"));
    rows->MoveNext();
    EXPECT_EQ(rows->Field(u"CAPTION"), Value(u"one"));
    EXPECT_EQ(rows->Field(u"id"), Value(std::int32_t{1}));
    rows->MoveNext();
    EXPECT_FALSE(rows->EndOfFile());
    EXPECT_TRUE(rows->Field(u"Caption").IsNull());
    rows->MoveNext();
    EXPECT_TRUE(rows->EndOfFile());
    EXPECT_EQ(rows->RecordCount(), 3);
    EXPECT_EQ(NumberOf([&] { rows->Field(u"Caption"); }), 3021);
    EXPECT_EQ(NumberOf([&] { rows->MoveNext(); }), 3021);
}

TEST_F(SqliteTest, BringsTheCountAlongWithTheRows) {
    const auto rows = Open()->OpenRecordset(
        u"SELECT * FROM tMessages UNION SELECT -1, COUNT(*) FROM tMessages ORDER BY ID", forwardOnly);
    EXPECT_EQ(rows->Field(u"Caption").ToInteger(), 3);
    for (const TextView expected : {u"zero", u"one", u""}) {
        rows->MoveNext();
        EXPECT_EQ(rows->Field(u"Caption").ToTextOrEmpty(), expected);
    }
}

TEST_F(SqliteTest, FindsTheFieldIndexByItsPlainName) {
    const auto rows =
        Open()->OpenRecordset(u"select AppName,Index from Registry where Index = -1", forwardOnly);
    EXPECT_EQ(rows->Field(u"Index"), Value(std::int32_t{-1}));
    EXPECT_EQ(rows->Field(u"AppName"), Value(u"Other.mra"));
}

TEST_F(SqliteTest, GivesEachKindOfValue) {
    const std::pair<TextView, Value> kinds[] = {
        {u"whole", std::int32_t{2147483647}},
        {u"least", std::numeric_limits<std::int32_t>::min()},
        {u"large", 2147483648.0},
        {u"real", 0.5},
        {u"text", u"Größe 𝄞"},
        {u"null", Null()},
        {u"empty", u""},
    };
    for (const auto& [name, expected] : kinds) {
        const Text query =
            Text(u"select Value as Result from Kinds where Name = '").append(name).append(u"'");
        EXPECT_EQ(Single(query), expected) << ToUtf8(name);
    }
}

TEST_F(SqliteTest, RefusesBinaryDataWhereItIsRead) {
    for (const auto type : {forwardOnly, dynaset}) {
        const auto rows = Open()->OpenRecordset(u"select * from Kinds where Name = 'binary'", type);
        EXPECT_EQ(rows->Field(u"Name"), Value(u"binary"));
        EXPECT_EQ(NumberOf([&] { rows->Field(u"Value"); }), 13);
    }
}

struct Refusal {
    const char16_t* query;
    DataError number;
    const char* named;  // in the description
};

class RefusedQueryTest : public SqliteTest, public testing::WithParamInterface<Refusal> {};

TEST_P(RefusedQueryTest, RaisesItsNumber) {
    const auto database = Open();
    for (const auto type : {forwardOnly, dynaset}) {
        try {
            database->OpenRecordset(GetParam().query, type);
            FAIL() << "accepted: " << ToUtf8(GetParam().query);
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number(), Number(GetParam().number)) << error.what();
            EXPECT_NE(ToUtf8(error.Description()).find(GetParam().named), std::string::npos) << error.what();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Queries, RefusedQueryTest,
    testing::Values(Refusal{u"select * from tProject", DataError::NoSuchTable,
                            "The table 'tProject' was not found in Test.mdb"},
                    Refusal{u"select Title from Registry", DataError::NoSuchQueryField, "'Title'"},
                    Refusal{u"select Index from Kinds", DataError::NoSuchQueryField, "'Index'"},
                    Refusal{u"select [Title] from Kinds", DataError::NoSuchQueryField, "'Title'"},
                    Refusal{u"select * from Kinds order by ID", DataError::NoSuchQueryField, "'ID'"},
                    Refusal{u"SELECT * FROM Kinds UNION SELECT -1, COUNT(*) FROM Kinds ORDER BY ID",
                            DataError::NoSuchQueryField, "sorted"},
                    Refusal{u"SELECT * FROM Registry UNION SELECT -1, COUNT(*) FROM Registry ORDER BY ID",
                            DataError::UnionColumns, "union"},
                    Refusal{u"select * from Kinds where Name = 'it's'", DataError::QuerySyntax, "s"},
                    Refusal{u"select * from Kinds where", DataError::QuerySyntax, "incomplete"},
                    Refusal{u"select * from Kinds; select 1", DataError::QuerySyntax, "behind"},
                    Refusal{u"", DataError::QuerySyntax, "empty"},
                    Refusal{u"delete from Kinds", DataError::QuerySyntax, "delete"},
                    Refusal{u"vacuum", DataError::QuerySyntax, "no rows"}));

TEST_F(SqliteTest, MissingFieldOfARecordSet) {
    for (const auto type : {forwardOnly, dynaset}) {
        const auto rows = Open()->OpenRecordset(u"select ID from tMessages", type);
        EXPECT_EQ(NumberOf([&] { rows->Field(u"Caption"); }), 3265);
        EXPECT_EQ(NumberOf([&] { rows->Field(u""); }), 3265);
    }
}

TEST_F(SqliteTest, ChangesTheCurrentRowAlone) {
    const auto database = Open();
    const auto rows = database->OpenRecordset(horalink, dynaset);
    ASSERT_GT(rows->RecordCount(), 0);
    rows->Edit();
    rows->SetField(u"version", Value(u"13.0.1"));
    EXPECT_EQ(rows->Field(u"Version"), Value(u"2.0"));
    rows->Update();
    EXPECT_EQ(rows->Field(u"Version"), Value(u"13.0.1"));
    EXPECT_EQ(rows->Field(u"Count"), Value(std::int32_t{2}));
    rows->MoveNext();
    EXPECT_EQ(rows->Field(u"Version"), Value(u"3.0"));
    EXPECT_EQ(Single(u"select group_concat(AppName || Version || Count || [Index]) as Result from Registry"),
              Value(u"Other.mra1.01-1,Horalink.mra13.0.120,Horalink.mra3.031"));
}

TEST_F(SqliteTest, WritesEachKindOfValueAsTheFieldTakesIt) {
    const auto rows = Open()->OpenRecordset(u"select Version as V, Count as C from Registry", dynaset);
    const auto write = [&](TextView field, const Value& value) {
        rows->Edit();
        rows->SetField(field, value);
        rows->Update();
        return rows->Field(field);
    };
    EXPECT_EQ(write(u"C", Value(u"7")), Value(std::int32_t{7}));
    EXPECT_EQ(write(u"C", Value(true)), Value(std::int32_t{-1}));
    EXPECT_EQ(write(u"C", Value(0.5)), Value(0.5));
    EXPECT_EQ(write(u"V", Value(std::int16_t{5})), Value(u"5"));
    EXPECT_EQ(write(u"V", Value(u"Größe 𝄞")), Value(u"Größe 𝄞"));
    EXPECT_EQ(write(u"V", Value(Null())), Value(Null()));
    EXPECT_EQ(NumberOf([&] { write(u"V", Value(Missing())); }), 13);
    EXPECT_EQ(NumberOf([&] { write(u"V", Value(ObjectRef())); }), 13);
    EXPECT_EQ(Single(u"select count(*) as Result from Registry where Version is null and Count = 0.5"),
              Value(std::int32_t{1}));
}

TEST_F(SqliteTest, EditsInOrderOnly) {
    const auto rows = Open()->OpenRecordset(horalink, dynaset);
    EXPECT_EQ(NumberOf([&] { rows->SetField(u"Version", Value(u"x")); }), 3020);
    EXPECT_EQ(NumberOf([&] { rows->Update(); }), 3020);
    rows->Edit();
    EXPECT_EQ(NumberOf([&] { rows->SetField(u"Nothing", Value(u"x")); }), 3265);
    rows->SetField(u"Version", Value(u"dropped"));
    rows->MoveNext();
    EXPECT_EQ(NumberOf([&] { rows->Update(); }), 3020);
    rows->MoveNext();
    EXPECT_EQ(NumberOf([&] { rows->Edit(); }), 3021);
    EXPECT_EQ(Single(u"select count(*) as Result from Registry where Version = 'dropped'"),
              Value(std::int32_t{0}));
}

TEST_F(SqliteTest, FindsNothingToEdit) {
    const auto rows = Open()->OpenRecordset(u"SELECT * FROM Registry WHERE AppName = \"None.mra\"", dynaset);
    EXPECT_EQ(rows->RecordCount(), 0);
    EXPECT_TRUE(rows->EndOfFile());
    EXPECT_EQ(NumberOf([&] { rows->Edit(); }), 3021);
}

TEST_F(SqliteTest, RowsThatAreNotThoseOfATableAreNotEdited) {
    RunElsewhere(
        "create view Shown as select * from Registry; create table Other (x, y);"
        "insert into Other values (1, 2); create table Keyed (a primary key) without rowid;"
        "insert into Keyed values (1);");
    const auto database = Open();
    for (const TextView query :
         {u"SELECT * FROM tMessages UNION SELECT -1, COUNT(*) FROM tMessages ORDER BY ID",
          u"select Registry.AppName, Other.x from Registry, Other", u"select AppName from Registry, Other",
          u"select distinct AppName from Registry", u"select AppName from Registry group by AppName",
          u"select count(*) as c from Registry", u"select * from Shown", u"select * from Keyed",
          u"select * from (select AppName from Registry limit 1)",
          u"select Version || '.' as v from Registry"}) {
        const auto rows = database->OpenRecordset(query, dynaset);
        EXPECT_EQ(rows->EndOfFile(), false) << ToUtf8(query);
        EXPECT_EQ(NumberOf([&] { rows->Edit(); }), 3027) << ToUtf8(query);
    }
    EXPECT_EQ(NumberOf([&] { database->OpenRecordset(horalink, forwardOnly)->Edit(); }), 3027);
}

TEST_F(SqliteTest, NoticesThatTheRowIsGone) {
    const auto rows = Open()->OpenRecordset(horalink, dynaset);
    rows->Edit();
    rows->SetField(u"Version", Value(u"x"));
    RunElsewhere("delete from Registry");
    EXPECT_EQ(NumberOf([&] { rows->Update(); }), 3167);
}

TEST_F(SqliteTest, LeavesTheRowAloneWhenTheTableRefusesTheValue) {
    RunElsewhere("create table Strict (a text not null, b); insert into Strict values ('a', 'b')");
    const auto rows = Open()->OpenRecordset(u"select * from Strict", dynaset);
    rows->Edit();
    rows->SetField(u"b", Value(u"new"));
    rows->SetField(u"a", Value(Null()));
    EXPECT_EQ(NumberOf([&] { rows->Update(); }), Number(DataError::ValueRefused));
    EXPECT_EQ(rows->Field(u"b"), Value(u"b"));
    rows->SetField(u"a", Value(u"A"));
    rows->Update();
    EXPECT_EQ(Single(u"select a || b as Result from Strict"), Value(u"Anew"));
}

TEST_F(SqliteTest, ReadOnlyFilesAreReadButNotEdited) {
    const auto rows = Open(true)->OpenRecordset(horalink, dynaset);
    EXPECT_EQ(rows->Field(u"Version"), Value(u"2.0"));
    EXPECT_EQ(NumberOf([&] { rows->Edit(); }), 3027);

    fs::permissions(file_, everyoneReads);
    {
        const PlainUser user;
        const auto guarded = Open()->OpenRecordset(horalink, dynaset);
        EXPECT_EQ(guarded->Field(u"Version"), Value(u"2.0"));
        EXPECT_EQ(NumberOf([&] { guarded->Edit(); }), 3027);
    }
}

TEST_F(SqliteTest, FilesInAGuardedDirectoryAreNotEdited) {
    fs::permissions(file_, fs::perms::all);
    fs::permissions(directory_.Path(), everyoneReads);
    {
        const PlainUser user;
        const auto rows = Open()->OpenRecordset(horalink, dynaset);
        rows->Edit();
        rows->SetField(u"Version", Value(u"x"));
        EXPECT_EQ(NumberOf([&] { rows->Update(); }), 3027);
    }
    fs::permissions(directory_.Path(), fs::perms::owner_all);
}

TEST_F(SqliteTest, FilesWithoutPermission) {
    fs::permissions(file_, fs::perms::none);
    {
        const PlainUser user;
        EXPECT_EQ(NumberOf([&] { Open(); }), Number(DataError::NoPermission));
    }
    fs::permissions(directory_.Path(), fs::perms::none);
    {
        const PlainUser user;
        EXPECT_EQ(NumberOf([&] { Open(); }), Number(DataError::NoPermission));
    }
    fs::permissions(directory_.Path(), fs::perms::owner_all);
}

TEST_F(SqliteTest, OpensNothingButDatabases) {
    const auto open = [&](const fs::path& file) {
        return NumberOf([&] { engine_->OpenDatabase(PathText(file)); });
    };
    EXPECT_EQ(open(directory_.Path() / "Missing.mdb"), 3024);
    EXPECT_FALSE(fs::exists(directory_.Path() / "Missing.mdb"));
    EXPECT_EQ(open(directory_.Path()), 3024);
    EXPECT_EQ(NumberOf([&] { engine_->OpenDatabase(u""); }), 3024);
    EXPECT_EQ(NumberOf([&] { engine_->OpenDatabase(u":memory:"); }), 3024);
    EXPECT_EQ(open(directory_.Write("empty", "")), 3343);
    EXPECT_EQ(open(directory_.Write("text", std::string(4096, 'x'))), 3343);
    EXPECT_EQ(open(directory_.Write("short", "SQLite format 3")), 3343);
    EXPECT_EQ(NumberOf([&] { engine_->OpenDatabase(UpperCase(PathText(file_)), true); }), 0);
}

TEST_F(SqliteTest, DamageIsFoundAtOpening) {
    std::fstream damaged(file_, std::ios::in | std::ios::out | std::ios::binary);
    damaged.seekp(100);
    damaged << std::string(200, '\x7f');
    damaged.close();
    EXPECT_EQ(NumberOf([&] { Open(); }), 3343);
}

TEST_F(SqliteTest, TellsOfLocks) {
    const auto rows = Open()->OpenRecordset(horalink, dynaset);
    OtherProgram other(file_);
    other.Run("begin exclusive");
    EXPECT_EQ(NumberOf([&] { Open(); }), 3260);
    rows->Edit();
    rows->SetField(u"Version", Value(u"x"));
    EXPECT_EQ(NumberOf([&] { rows->Update(); }), 3260);
    other.Run("rollback");
    rows->Update();
    EXPECT_EQ(rows->Field(u"Version"), Value(u"x"));
}

TEST_F(SqliteTest, TwoDynasetsDoNotBlockEachOther) {
    const auto first = Open()->OpenRecordset(horalink, dynaset);
    const auto second = Open()->OpenRecordset(horalink, dynaset);
    for (const auto* rows : {&first, &second}) {
        (*rows)->Edit();
        (*rows)->SetField(u"Version", Value(u"x"));
        EXPECT_EQ(NumberOf([&] { (*rows)->Update(); }), 0);
    }
}

template <class Set>
void ExpectClosed(Set& rows) {
    EXPECT_EQ(NumberOf([&] { rows.EndOfFile(); }), 3420);
    EXPECT_EQ(NumberOf([&] { rows.Field(u"Version"); }), 3420);
    EXPECT_EQ(NumberOf([&] { rows.MoveNext(); }), 3420);
    EXPECT_EQ(NumberOf([&] { rows.RecordCount(); }), 3420);
    EXPECT_EQ(NumberOf([&] { rows.Edit(); }), 3420);
    EXPECT_EQ(NumberOf([&] { rows.SetField(u"Version", Value(u"x")); }), 3420);
    EXPECT_EQ(NumberOf([&] { rows.Update(); }), 3420);
    EXPECT_EQ(NumberOf([&] { rows.Close(); }), 3420);
}

TEST_F(SqliteTest, ClosedRecordSets) {
    const auto database = Open();
    for (const auto type : {forwardOnly, dynaset}) {
        const auto rows = database->OpenRecordset(horalink, type);
        rows->Close();
        ExpectClosed(*rows);
    }
}

// The descriptors of this process that stand for the file.
std::ptrdiff_t OpenDescriptors(const fs::path& file) {
    return std::count_if(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator(),
                         [&](const auto& entry) {
                             std::error_code error;
                             return fs::read_symlink(entry.path(), error) == file;
                         });
}

TEST_F(SqliteTest, ClosingTheDatabaseClosesItsRecordSets) {
    for (const auto type : {forwardOnly, dynaset}) {
        const auto database = Open();
        const auto rows = database->OpenRecordset(horalink, type);
        EXPECT_EQ(OpenDescriptors(file_), 1);
        database->Close();
        EXPECT_EQ(OpenDescriptors(file_), 0);
        ExpectClosed(*rows);
        EXPECT_EQ(NumberOf([&] { database->OpenRecordset(horalink, type); }), 3420);
        EXPECT_EQ(NumberOf([&] { database->Close(); }), 3420);
    }
}

TEST_F(SqliteTest, ARecordSetKeepsTheFileThatItsDatabaseLetGo) {
    auto database = Open();
    auto rows = database->OpenRecordset(horalink, forwardOnly);
    database.reset();
    rows->MoveNext();
    EXPECT_EQ(rows->Field(u"Version"), Value(u"3.0"));
    rows.reset();
    EXPECT_EQ(OpenDescriptors(file_), 0);
}

}  // namespace
}  // namespace platform
