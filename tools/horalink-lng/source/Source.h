// The text source of a set of databases, as read from a file or out of the databases.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace lng {

struct Null {
    friend bool operator==(Null, Null) = default;
};
struct Blob {
    std::string bytes;
    friend bool operator==(const Blob&, const Blob&) = default;
};

// What a field holds. Text is the bytes of the database, nearly always UTF-8.
using Cell = std::variant<Null, std::int64_t, double, std::string, Blob>;

// Lines count from 1; 0 where it came from a database.
struct Field {
    std::string name;
    Cell value;
    int line = 0;
};

// Fields that are not named have the default of their column.
struct Row {
    std::vector<Field> fields;
    int line = 0;
};

// `definition` is the statement that makes the table. sqlite_sequence, which SQLite makes itself, has none.
struct Table {
    std::string name;
    std::string definition;
    std::vector<Row> rows;
    int line = 0;
};

// An index, a view or a trigger: `kind` is that word.
struct Definition {
    std::string kind;
    std::string name;
    std::string statement;
    int line = 0;
};

struct DatabaseSource {
    std::string fileName;
    std::vector<Table> tables;
    std::vector<Definition> definitions;
    int line = 0;
};

struct Source {
    std::string path;  // for what is said about it
    std::vector<DatabaseSource> databases;
};

// Names of tables and fields compare as SQLite compares them: ASCII letters without regard to case.
bool SameName(std::string_view left, std::string_view right);

}  // namespace lng
