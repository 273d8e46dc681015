#include "check/FormChecks.h"

#include <algorithm>
#include <limits>
#include <set>

#include "check/DialogModel.h"
#include "check/Lint.h"
#include "check/PictureKind.h"
#include "check/TextChecks.h"
#include "language/FormTexts.h"
#include "pictures/comPicture.h"
#include "platform/runtime/Paths.h"

namespace lng {

namespace {

using platform::FromUtf8;
using platform::Text;
using platform::Value;
using ReadRow = std::map<Text, Value>;

constexpr const char *formTable = "tForms", *controlTable = "tControls", *pictureTable = "tPicture",
                     *nameTable = "PictureFileName";
constexpr const char* textProperties[] = {"Caption", "ToolTipText"};
constexpr std::string_view noValue = "-1";

// Rows that the query for the dialog doesn't find belong to a form that isn't there.
void ReportOtherForms(const CheckedDatabase& database, const std::string& table, const std::string& field,
                      const std::string& formName) {
    for (const StoredRow& row : database.RowsOf(table))
        if (!SameName(row.Text(field), formName))
            database.Report(table, row.key, field, "the add-in has no form of this name");
}

// Keys compare as the forms do, without regard to case.
class SeenKeys {
  public:
    bool Add(const RowKey& key) { return seen_.insert(platform::UpperCase(FromUtf8(KeyText(key)))).second; }

  private:
    std::set<Text> seen_;
};

// --- controls -------------------------------------------------------------------------------------------

// The texts that rows give to controls, "-1" among them not counting.
class GivenTexts {
  public:
    void Add(const ReadRow& row, const platform::forms::Form& form) {
        platform::ErrorState error;
        Skip(error, "a property of a control", [&] {
            const auto control = form.Item(row.at(u"ObjectName").ToText(), row.at(u"Index").ToInteger());
            for (const char* property : textProperties) {
                const Value& text = row.at(FromUtf8(property));
                if (text.IsNull() || text.ToText() != FromUtf8(noValue))
                    given_.insert({control.get(), property});
            }
        });
    }
    bool Has(const platform::forms::Control& control, const std::string& property) const {
        return given_.contains({&control, property});
    }

  private:
    std::set<std::pair<const platform::forms::Control*, std::string>> given_;
};

// The text that the design gives to a property, where an operator reads it.
std::string DesignText(const std::shared_ptr<platform::forms::Control>& control, const char* property) {
    std::string text;
    platform::ErrorState noSuchProperty;
    if (control->Visible)
        Skip(noSuchProperty, "a text of a control",
             [&] { text = platform::ToUtf8(platform::Get(control, property).ToText()); });
    const bool readable = std::any_of(text.begin(), text.end(), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || static_cast<unsigned char>(c) >= 0x80;
    });
    return readable ? text : "";
}

void ReportDesignTexts(const CheckedDatabase& database, platform::forms::Form& form,
                       const GivenTexts& given) {
    for (const auto& control : form.Controls())
        for (const char* property : textProperties) {
            const std::string text = given.Has(*control, property) ? "" : DesignText(control, property);
            if (text.empty()) continue;
            const RowKey key{{"FormName", platform::ToUtf8(form.Name())},
                             {"ObjectName", platform::ToUtf8(control->Name())},
                             {"Index", std::to_string(control->Index())}};
            database.Report(controlTable, key, property,
                            "there is no text, so the control shows \"" + text + "\" of its design");
        }
}

// --- pictures -------------------------------------------------------------------------------------------

void CheckFile(const CheckedDatabase& database, const std::string& table, const RowKey& key,
               const std::string& name, const std::optional<std::filesystem::path>& folder) {
    if (!folder || name.empty()) return;
    const Text path = platform::PathText(*folder) + u"\\" + FromUtf8(name);
    if (platform::Dir(path).empty())
        database.Report(table, key, "FileName", "the picture file " + name + " is missing");
    else if (!IsPicture(platform::RealPath(path)))
        database.Report(table, key, "FileName", "the file " + name + " is no picture");
}

void CheckSetNumber(const CheckedDatabase& database, const StoredRow& row) {
    const auto id = NumberIn(row["ID"]);
    const bool fits = id && *id >= std::numeric_limits<std::int16_t>::min() &&
                      *id <= std::numeric_limits<std::int16_t>::max();
    if (!fits) database.Report(nameTable, row.key, "ID", "it has to be a number of 16 bits");
    if (fits && *id == 0)
        database.Report(nameTable, row.key, "ID",
                        "set 0 shows the default pictures, so this row is never used");
}

}  // namespace

void CheckForms(CheckedDatabase& database) {
    DialogModel dialog(database);
    const std::size_t rows = database.RunForEachRow(
        dialog.Boxes(), [&] { horalink::LoadFormText(dialog.Boxes(), dialog.Window(), database.Watched()); },
        [&](const RowKey&, const ReadRow&) {});
    if (!database.Watched().Last().opened) return;
    if (rows == 0) database.Report(formTable, {{"ObjectName", dialog.Name()}}, "", "the row is missing");
    if (rows > 1)
        database.Report(formTable, {{"ObjectName", dialog.Name()}}, "", "the form has more than one row");
    ReportOtherForms(database, formTable, "ObjectName", dialog.Name());
    for (const StoredRow& row : database.RowsOf(formTable)) {
        for (const std::string& fault : TokenFaults(row.Text("Caption")))
            database.Report(formTable, row.key, "Caption", fault);
        for (const char* field : {"Caption", "FontName"})
            if (row.Text(field) == noValue || row.Text(field).empty())
                database.Report(formTable, row.key, field,
                                "a form has to have one; \"-1\" has no meaning here");
    }
}

void CheckControls(CheckedDatabase& database) {
    DialogModel dialog(database);
    GivenTexts given;
    SeenKeys seen;
    database.RunForEachRow(
        dialog.Boxes(),
        [&] { horalink::LoadControlsText(dialog.Boxes(), dialog.Window(), database.Watched()); },
        [&](const RowKey& key, const ReadRow& row) {
            if (!seen.Add(key)) database.Report(controlTable, key, "", "another row is for the same control");
            given.Add(row, dialog.Window());
        });
    if (!database.Watched().Last().opened) return;
    ReportOtherForms(database, controlTable, "FormName", dialog.Name());
    for (const StoredRow& row : database.RowsOf(controlTable))
        for (const char* field : textProperties)
            for (const std::string& fault : PlainTextFaults(row.Text(field)))
                database.Report(controlTable, row.key, field, fault);
    // The dialog has been dressed by now; what its rows didn't reach is as it was designed.
    ReportDesignTexts(database, dialog.Window(), given);
}

void CheckPictures(CheckedDatabase& database, const std::optional<std::filesystem::path>& folder) {
    DialogModel dialog(database);
    const std::size_t rows = database.RunForEachRow(
        dialog.Boxes(),
        [&] {
            horalink::LoadFormPictures(dialog.Services(), dialog.Window(), &database.Watched(), nullptr, 0,
                                       u"\\");
        },
        [&](const RowKey&, const ReadRow&) {});
    if (!database.Watched().Last().opened) return;
    if (rows == 0)
        database.Report(pictureTable, {}, "",
                        "there is no row for the dialog, so the background sets show nothing");
    ReportOtherForms(database, pictureTable, "FormName", dialog.Name());
    for (const StoredRow& row : database.RowsOf(pictureTable))
        if (row.Text("FileName") != noValue)
            CheckFile(database, pictureTable, row.key, row.Text("FileName"), folder);
}

void CheckPictureNames(CheckedDatabase& database, const std::optional<std::filesystem::path>& folder) {
    if (!database.HasTable(nameTable)) return database.Report(nameTable, {}, "", "the table is missing");
    for (const char* field : {"ID", "DefaultName", "FileName"})
        if (!database.HasField(nameTable, field))
            return database.Report(nameTable, {}, field, "the field is missing");
    SeenKeys seen;
    for (const StoredRow& row : database.RowsOf(nameTable)) {
        CheckSetNumber(database, row);
        for (const char* field : {"FileName", "DefaultName"})
            if (row.Text(field).empty())
                database.Report(nameTable, row.key, field, "the name of the picture is missing");
        if (!seen.Add(row.key))
            database.Report(nameTable, row.key, "", "another row has the same picture in the same set");
        CheckFile(database, nameTable, row.key, row.Text("FileName"), folder);
    }
}

}  // namespace lng
