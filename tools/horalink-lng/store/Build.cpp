#include "store/Build.h"

#include <algorithm>
#include <map>

#include "common/Fault.h"
#include "common/NewFile.h"
#include "store/Schema.h"
#include "store/Sql.h"

namespace lng {

namespace {

namespace fs = std::filesystem;

// Makes one database, and says where in the source it stopped.
class Builder {
  public:
    Builder(const std::string& path, const DatabaseSource& database, const fs::path& file)
        : path_(path), database_(database), connection_(file, false) {}

    void Build() {
        // The file takes its name only when it is whole, so a journal would help nobody.
        connection_.Run("PRAGMA journal_mode = MEMORY");
        connection_.Run("PRAGMA synchronous = OFF");
        connection_.Run("PRAGMA foreign_keys = OFF");
        connection_.Run("BEGIN");
        for (const Table& table : database_.tables) BuildTable(table);
        for (const Definition& definition : database_.definitions) BuildDefinition(definition);
        // Written so that a database without tables is a database too.
        connection_.Run("PRAGMA user_version = 0");
        connection_.Run("COMMIT");
        connection_.Close();
    }

  private:
    // What was imported has no lines.
    std::string At(int line) const {
        return path_ + (line > 0 ? ":" + std::to_string(line) : "") + ": " + database_.fileName;
    }

    // A statement makes what its heading announces, or it is refused.
    void Make(const std::string& kind, const std::string& name, const std::string& statement, int line) {
        const std::string place = At(line) + ", " + kind + " " + name + ": ";
        if (statement.empty())
            throw tools::Fault(place + "the CREATE " + Upper(kind) +
                               " statement is missing; it follows in lines with |");
        try {
            connection_.Run(statement);
        } catch (const SqlFailure& failure) {
            throw tools::Fault(place + failure.what());
        }
        if (!HasObject(connection_, kind, name))
            throw tools::Fault(place + "the statement makes no " + kind + " of this name");
    }

    static std::string Upper(std::string text) {
        for (char& c : text) c = static_cast<char>(c - 32);
        return text;
    }

    void BuildDefinition(const Definition& definition) {
        Make(definition.kind, definition.name, definition.statement, definition.line);
    }

    void BuildTable(const Table& table) {
        const bool isSequence = SameName(table.name, sequenceTable) && table.definition.empty();
        if (isSequence)
            ClearSequence(table);
        else
            Make("table", table.name, table.definition, table.line);
        const std::vector<Column> columns = ColumnsOf(connection_, table.name);
        std::map<std::string, Query> statements;
        std::size_t number = 0;
        for (const Row& row : table.rows) {
            const std::string where = ", table " + table.name + ", row " + std::to_string(++number);
            RequireFields(columns, row, where);
            Insert(table.name, row, statements, where);
        }
    }

    // SQLite keeps it itself, and has filled it along with the rows of the tables.
    void ClearSequence(const Table& table) {
        if (!HasObject(connection_, "table", std::string(sequenceTable)))
            throw tools::Fault(At(table.line) + ": no table here counts with AUTOINCREMENT, so there is no " +
                               table.name);
        connection_.Run("DELETE FROM sqlite_sequence");
    }

    void RequireFields(const std::vector<Column>& columns, const Row& row, const std::string& where) const {
        for (const Field& field : row.fields) {
            const auto found = std::find_if(columns.begin(), columns.end(), [&](const Column& column) {
                return SameName(column.name, field.name);
            });
            if (found == columns.end())
                throw tools::Fault(At(field.line) + where + ": the table has no field " + field.name);
        }
    }

    void Insert(const std::string& table, const Row& row, std::map<std::string, Query>& statements,
                const std::string& where) {
        try {
            const std::string text = InsertStatement(table, row);
            auto found = statements.find(text);
            if (found == statements.end()) found = statements.emplace(text, Query(connection_, text)).first;
            Query& statement = found->second;
            for (std::size_t i = 0; i < row.fields.size(); ++i) statement.Bind(i, row.fields[i].value);
            statement.Step();
            statement.Reset();
        } catch (const SqlFailure& failure) {
            FailRow(row, where, failure.what());
        }
    }

    static std::string InsertStatement(const std::string& table, const Row& row) {
        const std::string start = "INSERT INTO " + QuotedName(table);
        if (row.fields.empty()) return start + " DEFAULT VALUES";
        std::string names, marks;
        for (const Field& field : row.fields) {
            names += (names.empty() ? "" : ", ") + QuotedName(field.name);
            marks += marks.empty() ? "?" : ", ?";
        }
        return start + " (" + names + ") VALUES (" + marks + ")";
    }

    // SQLite names the field of a rule behind the last point of its message.
    [[noreturn]] void FailRow(const Row& row, const std::string& where, const std::string& message) const {
        const auto point = message.rfind('.');
        const std::string name = point == std::string::npos ? "" : message.substr(point + 1);
        int line = row.line;
        for (const Field& field : row.fields)
            if (SameName(field.name, name)) line = field.line;
        throw tools::Fault(At(line) + where + (name.empty() ? "" : ", field " + name) + ": " + message);
    }

    const std::string& path_;
    const DatabaseSource& database_;
    Connection connection_;
};

}  // namespace

void FillDatabase(const std::string& path, const DatabaseSource& database, const fs::path& file) {
    try {
        Builder(path, database, file).Build();
    } catch (const SqlFailure& failure) {
        throw tools::Fault(file.string() + ": " + failure.what());
    }
}

std::vector<fs::path> BuildInto(const Source& source, const fs::path& folder, bool replace) {
    std::vector<fs::path> files;
    for (const DatabaseSource& database : source.databases) files.push_back(folder / database.fileName);
    tools::MakeFiles(files, replace, [&](std::size_t i, const fs::path& file) {
        FillDatabase(source.path, source.databases[i], file);
    });
    return files;
}

void BuildAs(const Source& source, const fs::path& file, bool replace) {
    if (source.databases.size() != 1)
        throw tools::Fault(source.path + ": there are " + std::to_string(source.databases.size()) +
                           " databases in it, so the output has to be a folder");
    tools::MakeFiles({file}, replace, [&](std::size_t, const fs::path& made) {
        FillDatabase(source.path, source.databases.front(), made);
    });
}

}  // namespace lng
