#include "store/Dump.h"

#include <algorithm>
#include <fstream>
#include <map>

#include "common/Fault.h"
#include "store/Schema.h"
#include "store/Sql.h"

namespace lng {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view databaseStart("SQLite format 3\0", 16);

class Dumper {
  public:
    explicit Dumper(const fs::path& file) : connection_(file, true) {
        result_.source.fileName = file.filename().string();
    }

    DumpedDatabase Dump() {
        connection_.Run("BEGIN");
        const auto kinds = TableKinds();
        Query query(connection_, "SELECT type, name, sql FROM sqlite_master ORDER BY rowid");
        while (query.Step()) {
            const std::string type = query.TextOf(0), name = query.TextOf(1), statement = query.TextOf(2);
            if (type == "table")
                AddTable(name, statement, kinds.at(name));
            else if (!statement.empty())  // the index of a key is made along with its table
                result_.source.definitions.push_back({type, name, statement});
        }
        SequenceLast();
        return std::move(result_);
    }

  private:
    std::map<std::string, std::string> TableKinds() const {
        std::map<std::string, std::string> kinds;
        Query query(connection_, "SELECT name, type FROM pragma_table_list WHERE schema = 'main'");
        while (query.Step()) kinds[query.TextOf(0)] = query.TextOf(1);
        return kinds;
    }

    void AddTable(const std::string& name, const std::string& statement, const std::string& kind) {
        const bool isSequence = name == sequenceTable;
        if (kind == "virtual" || kind == "shadow") return NotKept("the " + kind + " table " + name);
        if (name.starts_with("sqlite_") && !isSequence) return NotKept("SQLite's own table " + name);
        result_.source.tables.push_back({name, isSequence ? "" : statement, RowsOf(name)});
    }

    void NotKept(const std::string& what) { result_.notKept.push_back(what); }

    std::vector<Row> RowsOf(const std::string& table) const {
        const std::vector<Column> columns = ColumnsOf(connection_, table);
        std::string names;
        for (const Column& column : columns) names += (names.empty() ? "" : ", ") + QuotedName(column.name);
        // An index could serve the rows in an order of its own, and the order is part of the table.
        Query query(connection_, "SELECT " + names + " FROM " + QuotedName(table) + " NOT INDEXED");
        std::vector<Row> rows;
        while (query.Step()) rows.push_back(RowOf(columns, query));
        return rows;
    }

    static Row RowOf(const std::vector<Column>& columns, const Query& query) {
        Row row;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            Cell value = query.Column(i);
            if (columns[i].standard == value) continue;
            row.fields.push_back({columns[i].name, std::move(value)});
        }
        return row;
    }

    // Its rows count what the other tables were given, and those must all be there.
    void SequenceLast() {
        std::stable_partition(result_.source.tables.begin(), result_.source.tables.end(),
                              [](const Table& table) { return table.name != sequenceTable; });
    }

    Connection connection_;
    DumpedDatabase result_;
};

}  // namespace

DumpedDatabase DumpDatabase(const fs::path& file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error)) throw tools::Fault(file.string() + ": there is no such file");
    if (!IsDatabaseFile(file)) throw tools::Fault(file.string() + ": this is no SQLite database");
    try {
        return Dumper(file).Dump();
    } catch (const SqlFailure& failure) {
        throw tools::Fault(file.string() + ": the database can't be read: " + failure.what());
    }
}

bool IsDatabaseFile(const fs::path& file) {
    std::string start(databaseStart.size(), '\0');
    std::ifstream stream(file, std::ios::binary);
    stream.read(start.data(), static_cast<std::streamsize>(start.size()));
    return stream && start == databaseStart;
}

}  // namespace lng
