#include "source/SourceWriter.h"

#include "source/Literals.h"

namespace lng {

namespace {

std::string BlockOf(std::string_view text, std::string_view indent) {
    std::string result;
    for (;;) {
        const auto end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        result.append(indent).append(line.empty() ? "|" : "| ").append(line).append("\n");
        if (end == std::string_view::npos) return result;
        text.remove_prefix(end + 1);
    }
}

std::string StatementText(const std::string& statement) {
    if (statement.empty()) return "";
    return IsPlainBlock(statement) ? BlockOf(statement, "") : "= " + Quoted(statement) + "\n";
}

std::string FieldText(const Field& field) {
    const std::string name = NameText(field.name);
    if (const auto* text = std::get_if<std::string>(&field.value)) {
        if (text->empty()) return name + ":\n";
        if (IsPlainText(*text)) return name + ": " + *text + "\n";
        if (text->find('\n') != std::string::npos && IsPlainBlock(*text))
            return name + ":\n" + BlockOf(*text, "  ");
    }
    return name + " = " + LiteralOf(field.value) + "\n";
}

std::string TableText(const Table& table) {
    std::string result = "\n[table " + NameText(table.name) + "]\n" + StatementText(table.definition);
    for (const Row& row : table.rows) {
        result += "\n[row]\n";
        for (const Field& field : row.fields) result += FieldText(field);
    }
    return result;
}

}  // namespace

std::string WriteSource(const Source& source) {
    std::string result;
    for (const DatabaseSource& database : source.databases) {
        result += (result.empty() ? "" : "\n") + ("[database " + NameText(database.fileName) + "]\n");
        for (const Table& table : database.tables) result += TableText(table);
        for (const Definition& definition : database.definitions)
            result += "\n[" + definition.kind + " " + NameText(definition.name) + "]\n" +
                      StatementText(definition.statement);
    }
    return result;
}

}  // namespace lng
