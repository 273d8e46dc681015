#include "store/Schema.h"

namespace lng {

namespace {

bool IsConstant(std::string_view expression) {
    return !expression.empty() &&
           (std::string_view("'+-.0123456789").find(expression.front()) != std::string_view::npos ||
            SameName(expression.substr(0, 2), "x'") || SameName(expression, "null"));
}

bool IsStrict(const Connection& connection, const std::string& table) {
    Query query(connection, "SELECT strict FROM pragma_table_list(?1) WHERE schema = 'main'");
    query.Bind(0, table);
    return query.Step() && query.NumberOf(0) != 0;
}

// A column converts its default as it converts any value, so SQLite is asked for the outcome.
std::optional<Cell> StandardValue(const std::string& type, const std::string& expression, bool strict) {
    if (!IsConstant(expression)) return std::nullopt;
    try {
        Connection scratch;
        scratch.Run("CREATE TABLE t (c " + type + " DEFAULT " + expression + ")" + (strict ? " STRICT" : ""));
        scratch.Run("INSERT INTO t DEFAULT VALUES");
        Query query(scratch, "SELECT c FROM t");
        query.Step();
        return query.Column(0);
    } catch (const SqlFailure&) {
        return std::nullopt;
    }
}

}  // namespace

std::vector<Column> ColumnsOf(const Connection& connection, const std::string& table) {
    const bool strict = IsStrict(connection, table);
    std::vector<Column> columns;
    Query query(connection, "SELECT name, type, dflt_value FROM pragma_table_xinfo(?1) WHERE hidden = 0");
    query.Bind(0, table);
    while (query.Step()) {
        Column column{query.TextOf(0), query.TextOf(1), Cell(Null())};
        if (query.Column(2) != Cell(Null()))
            column.standard = StandardValue(column.type, query.TextOf(2), strict);
        columns.push_back(std::move(column));
    }
    return columns;
}

bool HasObject(const Connection& connection, const std::string& kind, const std::string& name) {
    Query query(connection, "SELECT 1 FROM sqlite_master WHERE type = ?1 AND name = ?2");
    query.Bind(0, kind);
    query.Bind(1, name);
    return query.Step();
}

}  // namespace lng
