#include "check/Findings.h"

#include <algorithm>

#include "source/Literals.h"
#include "source/Utf8.h"

namespace lng {

namespace {

bool operator==(const Place& left, const Place& right) {
    return left.database == right.database && left.table == right.table && left.row == right.row &&
           left.field == right.field;
}

std::string PlaceText(const Place& place) {
    std::string text = place.database;
    if (!place.table.empty()) text += ", table " + place.table;
    if (!place.row.empty()) text += ", row " + KeyText(place.row);
    if (!place.field.empty()) text += ", field " + place.field;
    return text;
}

template <class Items>
auto* Named(Items& items, const std::string& name) {
    const auto found =
        std::find_if(items.begin(), items.end(), [&](const auto& item) { return SameName(item.name, name); });
    return found == items.end() ? nullptr : &*found;
}

std::string TextOf(const Cell& cell) {
    const auto* text = std::get_if<std::string>(&cell);
    return text ? *text : LiteralOf(cell);
}

// A field that the source doesn't name has its default, which the key may be.
bool Has(const Row& row, const RowKey& key) {
    return std::all_of(key.begin(), key.end(), [&](const auto& part) {
        const Field* field = Named(row.fields, part.first);
        return !field || TextOf(field->value) == part.second;
    });
}

int LineIn(const Table& table, const Place& place) {
    if (place.row.empty()) return table.line;
    const auto row = std::find_if(table.rows.begin(), table.rows.end(),
                                  [&](const Row& candidate) { return Has(candidate, place.row); });
    if (row == table.rows.end()) return table.line;
    const Field* field = Named(row->fields, place.field);
    return field ? field->line : row->line;
}

int LineOf(const Source& source, const Place& place) {
    for (const DatabaseSource& database : source.databases) {
        if (!SameName(database.fileName, place.database)) continue;
        const Table* table = Named(database.tables, place.table);
        return table ? LineIn(*table, place) : database.line;
    }
    return 0;
}

std::string JsonText(std::string_view text) {
    std::string result = "\"";
    AllCodePoints(text, [&](const CodePoint& c) {
        if (c.valid && c.value < 0x20) {
            constexpr char digits[] = "0123456789abcdef";
            result += std::string("\\u00") + digits[c.value >> 4U] + digits[c.value & 15U];
        } else if (c.value == '"' || c.value == '\\') {
            result += std::string("\\") + static_cast<char>(c.value);
        } else {
            AppendCodePoint(result, c.valid ? c.value : 0xFFFD);
        }
        return true;
    });
    return result + "\"";
}

class JsonObject {
  public:
    void Add(const std::string& name, const std::string& json) {
        text_ += (text_.empty() ? "" : ", ") + JsonText(name) + ": " + json;
    }
    std::string Text() const { return "{" + text_ + "}"; }

  private:
    std::string text_;
};

std::string JsonOf(const Finding& finding, const std::string& sourcePath) {
    JsonObject key, object;
    for (const auto& [name, value] : finding.place.row) key.Add(name, JsonText(value));
    object.Add("database", JsonText(finding.place.database));
    object.Add("table", JsonText(finding.place.table));
    object.Add("row", key.Text());
    object.Add("field", JsonText(finding.place.field));
    if (finding.line > 0) object.Add("source", JsonText(sourcePath));
    if (finding.line > 0) object.Add("line", std::to_string(finding.line));
    object.Add("message", JsonText(finding.message));
    return object.Text();
}

template <class Items, class Convert>
std::string JsonList(const Items& items, Convert convert) {
    std::string list;
    for (const auto& item : items) list += (list.empty() ? "\n    " : ",\n    ") + convert(item);
    return list.empty() ? "[]" : "[" + list + "\n  ]";
}

}  // namespace

std::string KeyText(const RowKey& key) {
    std::string text;
    for (const auto& [name, value] : key) text += (text.empty() ? "" : ", ") + name + " " + value;
    return text;
}

void Findings::Add(const Place& place, const std::string& message) {
    const bool known = std::any_of(findings_.begin(), findings_.end(), [&](const Finding& finding) {
        return finding.place == place && finding.message == message;
    });
    if (!known) findings_.push_back({place, message});
}

void Findings::FindLines(const Source& source) {
    for (Finding& finding : findings_) finding.line = LineOf(source, finding.place);
    std::stable_sort(findings_.begin(), findings_.end(),
                     [](const Finding& left, const Finding& right) { return left.line < right.line; });
}

std::string Findings::AsText(const std::string& sourcePath) const {
    std::string text;
    for (const Finding& finding : findings_) {
        if (finding.line > 0) text += sourcePath + ":" + std::to_string(finding.line) + ": ";
        text += PlaceText(finding.place) + ": " + finding.message + "\n";
    }
    return text;
}

std::string Findings::AsJson(const std::string& sourcePath) const {
    const auto faults =
        JsonList(findings_, [&](const Finding& finding) { return JsonOf(finding, sourcePath); });
    return "{\n  \"faults\": " + faults + ",\n  \"notes\": " + JsonList(notes_, JsonText) + "\n}\n";
}

}  // namespace lng
