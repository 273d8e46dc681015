#include "source/SourceReader.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#include "common/Fault.h"
#include "source/Literals.h"
#include "source/Utf8.h"

namespace lng {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// Reads line by line. What a line belongs to is the database, table, row and field that came last.
class Reader {
  public:
    explicit Reader(const std::string& path) { source_.path = path; }

    Source Read(std::string_view text) {
        if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
        while (!text.empty()) {
            const auto end = text.find('\n');
            ++line_;
            Guarded(text.substr(0, end));
            text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        }
        if (source_.databases.empty())
            throw tools::Fault(source_.path +
                               ": there is no [database ...] in this file; is it a text source?");
        return std::move(source_);
    }

  private:
    void Guarded(std::string_view line) {
        try {
            if (!IsUtf8(line)) throw tools::Fault("this line is not UTF-8; save the file in this encoding");
            if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
            ReadLine(line);
        } catch (const tools::Fault& fault) {
            throw tools::Fault(source_.path + ":" + std::to_string(line_) + ": " + Place() + fault.what());
        }
    }

    std::string Place() const {
        if (!table_) return database_ ? database_->fileName + ": " : "";
        std::string place = database_->fileName + ", table " + table_->name;
        if (!table_->rows.empty()) place += ", row " + std::to_string(table_->rows.size());
        return place + ": ";
    }

    void ReadLine(std::string_view line) {
        const std::string_view content = TrimBlanks(line);
        if (!content.empty() && content.front() == '|') return ReadBlockLine(line.substr(line.find('|') + 1));
        block_ = nullptr;
        if (content.empty() || content.front() == '#') return;
        if (content.front() == '[')
            ReadHeading(content);
        else
            ReadField(content);
    }

    void ReadBlockLine(std::string_view content) {
        if (!block_)
            throw tools::Fault("a line with | continues the line before it, which has nothing to continue");
        if (!content.empty() && content.front() == ' ') content.remove_prefix(1);
        content = content.substr(0, content.find_last_not_of(" \t") + 1);
        if (!std::exchange(blockStarts_, false)) *block_ += '\n';
        *block_ += content;
    }

    void StartBlock(std::string& text) {
        block_ = &text;
        blockStarts_ = true;
    }

    void ReadHeading(std::string_view heading) {
        if (heading.back() != ']') throw tools::Fault("the ] at the end is missing");
        std::string_view rest = TrimBlanks(heading.substr(1, heading.size() - 2));
        const std::string kind = TakeName(rest).value_or("");
        rest = TrimBlanks(rest);
        const std::optional<std::string> name = TakeName(rest);
        if (!rest.empty())
            throw tools::Fault("there is more behind the name; a name with blanks stands in quotes");
        Open(kind, name);
    }

    void Open(const std::string& kind, const std::optional<std::string>& given) {
        constexpr std::string_view others[] = {"index", "view", "trigger"};
        if (kind == "row") return OpenRow(given.has_value());
        if (kind != "database" && kind != "table" &&
            std::find(others, std::end(others), kind) == std::end(others))
            throw tools::Fault("[" + kind +
                               "] means nothing here; there are database, table, row, index, view, trigger");
        if (!given) throw tools::Fault("the name of the " + kind + " is missing");
        const std::string& name = *given;
        if (kind == "database") return OpenDatabase(name);
        if (!database_) throw tools::Fault("a [database ...] has to come first");
        if (kind == "table") return OpenTable(name);
        table_ = nullptr;
        row_ = nullptr;
        database_->definitions.push_back({kind, name, "", line_});
        StartBlock(database_->definitions.back().statement);
    }

    void OpenDatabase(const std::string& name) {
        if (name.empty() || name == "." || name == ".." ||
            name.find_first_of(std::string_view("/\0", 2)) != std::string::npos)
            throw tools::Fault("'" + name + "' is no name for a file");
        for (const DatabaseSource& other : source_.databases)
            if (SameName(other.fileName, name)) throw tools::Fault("there are two databases " + name);
        table_ = nullptr;
        row_ = nullptr;
        source_.databases.push_back({name, {}, {}, line_});
        database_ = &source_.databases.back();
    }

    void OpenTable(const std::string& name) {
        for (const Table& other : database_->tables)
            if (SameName(other.name, name)) throw tools::Fault("there are two tables " + name);
        row_ = nullptr;
        database_->tables.push_back({name, "", {}, line_});
        table_ = &database_->tables.back();
        StartBlock(table_->definition);
    }

    void OpenRow(bool named) {
        if (named) throw tools::Fault("a row has no name");
        if (!table_) throw tools::Fault("a [row] belongs to a [table ...], which has to come first");
        table_->rows.push_back({{}, line_});
        row_ = &table_->rows.back();
    }

    void ReadField(std::string_view content) {
        const bool literal = content.front() == '=';
        if (!literal && !row_) throw tools::Fault("a field belongs to a [row], which has to come first");
        if (literal) return ReadDefinition(TrimBlanks(content.substr(1)));
        const auto name = TakeName(content);
        content = TrimBlanks(content);
        if (!name || content.empty() || (content.front() != ':' && content.front() != '='))
            throw tools::Fault(
                "this is no field: write NAME: TEXT, or NAME = NUMBER, and | before each line of a long "
                "text");
        AddField(*name, content.front() == '=', TrimBlanks(content.substr(1)));
    }

    void AddField(const std::string& name, bool literal, std::string_view value) {
        for (const Field& other : row_->fields)
            if (SameName(other.name, name)) throw tools::Fault("field " + name + " stands in this row twice");
        Field field{name, std::string(value), line_};
        try {
            if (literal) field.value = ParseLiteral(value);
        } catch (const tools::Fault& fault) {
            throw tools::Fault("field " + name + ": " + fault.what());
        }
        row_->fields.push_back(std::move(field));
        if (!literal && value.empty()) StartBlock(std::get<std::string>(row_->fields.back().value));
    }

    // The statement behind a heading, in quotes where it has characters that lines can't hold.
    void ReadDefinition(std::string_view literal) {
        std::string* statement = StatementOfHeading();
        const Cell value = ParseLiteral(literal);
        if (!statement || !std::holds_alternative<std::string>(value)) throw tools::Fault("this is no field");
        *statement = std::get<std::string>(value);
    }

    std::string* StatementOfHeading() {
        if (row_ || !database_) return nullptr;
        if (table_) return &table_->definition;
        return database_->definitions.empty() ? nullptr : &database_->definitions.back().statement;
    }

    Source source_;
    int line_ = 0;
    DatabaseSource* database_ = nullptr;
    Table* table_ = nullptr;
    Row* row_ = nullptr;
    std::string* block_ = nullptr;
    bool blockStarts_ = false;
};

}  // namespace

Source ParseSource(const std::string& path, std::string_view text) {
    return Reader(path).Read(text);
}

std::string ReadWholeFile(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
        throw tools::Fault(file.string() + ": there is no such file");
    std::ifstream stream(file, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (!stream) throw tools::Fault(file.string() + ": the file can't be read");
    return text;
}

Source ReadSource(const std::filesystem::path& file) {
    return ParseSource(file.string(), ReadWholeFile(file));
}

}  // namespace lng
