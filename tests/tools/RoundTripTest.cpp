// From a database to a text source and back: nothing is gained, nothing is lost.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

#include "TemporaryDirectory.h"
#include "source/SourceReader.h"
#include "source/SourceWriter.h"
#include "store/Build.h"
#include "store/Dump.h"
#include "store/Schema.h"

namespace {

using namespace lng;
namespace fs = std::filesystem;

// Everything that two databases have to agree in.
std::vector<std::vector<Cell>> ContentOf(const fs::path& file) {
    const Connection connection(file, true);
    std::vector<std::vector<Cell>> content;
    const auto add = [&](const std::string& text, std::size_t columns) {
        Query query(connection, text);
        while (query.Step())
            for (std::size_t i = 0; i < columns; ++i)
                (i == 0 ? content.emplace_back() : content.back()).push_back(query.Column(i));
    };
    const std::string schema = "SELECT type, name, tbl_name, sql FROM sqlite_master WHERE type ";
    add(schema + "= 'table' ORDER BY rowid", 4);
    add(schema + "<> 'table' ORDER BY type, name", 4);
    Query tables(connection, "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name");
    while (tables.Step()) {
        const std::string table = tables.TextOf(0);
        add("SELECT * FROM " + QuotedName(table) + " NOT INDEXED", ColumnsOf(connection, table).size());
    }
    return content;
}

// Databases with every kind of column, name and value.
class Generator {
  public:
    explicit Generator(std::uint32_t seed) : random_(seed) {}

    void Fill(const fs::path& file) {
        std::ofstream(file).close();
        Connection connection(file, false);
        connection.Run("PRAGMA user_version = 0");
        connection.Run("BEGIN");
        for (std::size_t i = Below(4); i > 0; --i) FillTable(connection, Name() + std::to_string(i));
        connection.Run("COMMIT");
    }

  private:
    std::size_t Below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
    }

    template <class Item, std::size_t count>
    const Item& One(const Item (&items)[count]) {
        return items[Below(count)];
    }

    std::string Name() {
        constexpr const char* names[] = {"tForms", "a b",   "Index", "quote\"d", "äö",
                                         "[x]",    "a:b=c", "#",     "null",     "x'"};
        return One(names);
    }

    std::string ColumnText() {
        constexpr const char* columns[] = {"",
                                           " TEXT",
                                           " NUMERIC",
                                           " REAL DEFAULT 8.25",
                                           " BLOB DEFAULT x'00ff'",
                                           " INTEGER NOT NULL DEFAULT -1",
                                           " TEXT COLLATE NOCASE DEFAULT '-1'",
                                           " VARCHAR(20) DEFAULT (1 + 2)",
                                           " TEXT DEFAULT CURRENT_TIMESTAMP",
                                           " INTEGER CHECK (typeof(1) = 'integer')",
                                           " TEXT NOT NULL DEFAULT 'it''s & more' -- a comment\n"};
        return One(columns);
    }

    void FillTable(Connection& connection, const std::string& name) {
        constexpr const char* keys[] = {"id INTEGER PRIMARY KEY", "id INTEGER PRIMARY KEY AUTOINCREMENT",
                                        "id INTEGER"};
        std::string columns = One(keys);
        std::vector<std::string> names(1 + Below(6));
        for (std::size_t i = 0; i < names.size(); ++i) {
            names[i] = Name() + std::to_string(i);
            columns += ", " + QuotedName(names[i]) + ColumnText();
        }
        if (Below(4) == 0) columns += ", twice AS (id * 2)";
        connection.Run("CREATE TABLE " + QuotedName(name) + " (" + columns + ")");
        for (std::size_t i = Below(12); i > 0; --i) AddRow(connection, name, names);
        const std::string quoted = QuotedName(name), first = QuotedName(names.front());
        const std::string others[] = {
            "CREATE INDEX " + QuotedName("i " + name) + " ON " + quoted + " (id, " + first + ")",
            "CREATE VIEW " + QuotedName("v " + name) + " AS SELECT id FROM " + quoted,
            "DELETE FROM " + quoted + " WHERE id % 3 = 0"};
        for (const std::string& other : others)
            if (Below(3) == 0) connection.Run(other);
    }

    void AddRow(Connection& connection, const std::string& table, const std::vector<std::string>& names) {
        std::string fields, marks;
        std::vector<Cell> values;
        for (const std::string& name : names) {
            if (Below(4) == 0) continue;
            fields += (fields.empty() ? "" : ", ") + QuotedName(name);
            marks += marks.empty() ? "?" : ", ?";
            values.push_back(Value());
        }
        Query insert(connection,
                     "INSERT OR IGNORE INTO " + QuotedName(table) +
                         (fields.empty() ? " DEFAULT VALUES" : " (" + fields + ") VALUES (" + marks + ")"));
        for (std::size_t i = 0; i < values.size(); ++i) insert.Bind(i, values[i]);
        insert.Step();
    }

    Cell Value() {
        const auto real = std::bit_cast<double>(Bits());
        const Cell values[] = {Null(), static_cast<std::int64_t>(Bits() >> Below(64)),
                               std::isnan(real) ? 0.1 : real, Blob{Text()}, Text()};
        return One(values);
    }

    std::uint64_t Bits() { return std::uniform_int_distribution<std::uint64_t>()(random_); }

    std::string Text() {
        using namespace std::string_view_literals;
        constexpr std::string_view pieces[] = {
            "word", " ",     "\n",   "\r\n", "\t",   "\0"sv,         "\"", "\\",       "|",
            "#",    "[row]", "\xFF", "é",    "中文", "\xED\xA0\x80", "😀", "\xC2\x85", "\xE2\x80\xA8",
            "null", "-1",    "'",    ":",    "= 1",  "\x7F"};
        std::string text;
        for (std::size_t i = Below(6); i > 0; --i) text += One(pieces);
        return text;
    }

    std::mt19937 random_;
};

std::string DumpText(const fs::path& file) {
    return WriteSource({"", {DumpDatabase(file).source}});
}

TEST(RoundTrip, KeepsRandomDatabases) {
    const platform::TemporaryDirectory scratch;
    for (std::uint32_t seed = 1; seed <= 200; ++seed) {
        SCOPED_TRACE(seed);
        const auto original = scratch.Path() / ("a" + std::to_string(seed) + ".db");
        const auto folder = scratch.Path() / "b";
        Generator(seed).Fill(original);
        const std::string text = DumpText(original);
        const auto made = BuildInto(ParseSource("dump", text), folder, true);
        ASSERT_EQ(made.size(), 1U);
        ASSERT_EQ(ContentOf(made.front()), ContentOf(original)) << text;
        ASSERT_EQ(DumpText(made.front()), text);
    }
}

TEST(RoundTrip, NamesWhatASourceCantHold) {
    const platform::TemporaryDirectory scratch;
    const auto file = scratch.Write("d.db");
    Connection(file, false).Run("CREATE VIRTUAL TABLE search USING fts5(c)");
    const DumpedDatabase dumped = DumpDatabase(file);
    EXPECT_TRUE(dumped.source.tables.empty());
    EXPECT_EQ(dumped.notKept.at(0), "the virtual table search");
}

}  // namespace
