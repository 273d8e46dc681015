#include "Judged.h"

#include <algorithm>
#include <iostream>

#include "common/FatalNotice.h"

namespace lng {

using namespace platform;

void Report(const Place& place, const std::string& message) {
    std::string words = message;
    std::replace_if(words.begin(), words.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    std::cout << place.database << '\t' << place.table << '\t'
              << (place.row ? std::to_string(*place.row) : "") << '\t' << place.field << '\t' << words
              << '\n';
}

std::vector<Row> Judged::Rows(const std::string& table, const std::vector<std::string>& fields) const {
    std::string query = "select rowid as RowNumber";
    for (const std::string& field : fields) query += ", " + field;
    std::vector<Row> rows;
    const auto found =
        database->OpenRecordset(FromUtf8(query + " from " + table), RecordsetType::ForwardOnly);
    for (; !found->EndOfFile(); found->MoveNext()) {
        Row row{found->Field(u"RowNumber").ToLong(), {}};
        for (const std::string& field : fields)
            row.fields[field] = found->Field(FromUtf8(field)).ToTextOrEmpty();
        rows.push_back(std::move(row));
    }
    return rows;
}

void Judged::Report(const std::string& table, const Row& row, const std::string& field,
                    const std::vector<std::string>& faults) const {
    for (const std::string& fault : faults) lng::Report({name, table, row.number, field}, fault);
}

DatabaseRef Shelf::OpenDatabase(TextView path, bool) {
    const TextView file = path.substr(path.find_last_of(u"\\/") + 1);
    const auto found = databases.find(ToUtf8(UpperCase(file)));
    if (found == databases.end()) throw MakeDataError(DataError::FileNotFound);
    return found->second;
}

std::unique_ptr<Recordset> OneRow::OpenRecordset(TextView query, RecordsetType type) {
    return database_.OpenRecordset(Text(query) + u" and rowid = " + DecimalText(row_), type);
}

Desk::Desk(DatabaseEngine& engine)
    : services{headless.app,    headless.clock,      headless.locale,   headless.settings,
               engine,          headless.automation, headless.timers,   headless.boxes,
               headless.screen, headless.toolkit,    headless.pictures, [] {}} {
    headless.app.path = u"ADDINS";
    headless.pictures.hasAll = true;
}

std::optional<std::string> Desk::Notice() {
    for (const MessageBox& box : headless.boxes.Take())
        if (box.title && *box.title == horalink::noticeTitle)
            return "the add-in fails: " + ToUtf8(box.prompt);
    return std::nullopt;
}

}  // namespace lng
