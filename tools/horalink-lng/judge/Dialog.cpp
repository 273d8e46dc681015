#include "Dialog.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <algorithm>
#include <cmath>
#include <set>

#include "Lint.h"
#include "exchange/dlgAddin.h"
#include "language/FormTexts.h"
#include "pictures/comPicture.h"
#include "platform/qt/Look.h"
#include "platform/qt/QtText.h"

namespace lng {

namespace {

using namespace platform;

constexpr const char *formTable = "tForms", *controlTable = "tControls", *pictureTable = "tPicture";
constexpr std::int32_t openingTopic = 1;

// The dialog, laid out and never shown.
struct Model {
    explicit Model(Shelf& shelf)
        : desk(shelf), dialog(std::make_shared<horalink::dlgAddin>(desk.services, data)) {}
    forms::Form& Window() { return dialog->Window(); }

    Desk desk;
    horalink::ModuleData data;
    std::shared_ptr<horalink::dlgAddin> dialog;
};

// Runs a routine of the add-in with each row of a table alone, so that one fault hides no other.
template <class Routine>
void ForEachRow(const Judged& addIn, Model& model, const std::string& table, Routine routine) {
    for (const Row& row : addIn.Rows(table, {})) {
        OneRow alone(*addIn.database, row.number);
        routine(alone);
        if (const auto notice = model.desk.Notice()) addIn.Report(table, row, "", {*notice});
    }
}

// Gets the text that a property has by design. True if the operator would see words in it.
bool ShowsDesignText(const std::shared_ptr<forms::Control>& control, const char* property,
                     std::string& text) {
    ErrorState noSuchProperty;
    text.clear();
    if (control->Visible)
        Skip(noSuchProperty, "a text of a control", [&] { text = ToUtf8(Get(control, property).ToText()); });
    return std::any_of(text.begin(), text.end(),
                       [](unsigned char c) { return std::isalpha(c) || c >= 0x80; });
}

using ControlKey = std::tuple<Text, Text>;  // name and index

ControlKey KeyOf(const Row& row) {
    return {UpperCase(row.fields.at("ObjectName")), row.fields.at("Index")};
}

ControlKey KeyOf(const forms::Control& control) {
    return {UpperCase(Text(control.Name())), DecimalText(control.Index())};
}

void JudgeDesignTexts(const Judged& addIn, forms::Form& window, const std::map<ControlKey, Row>& rows) {
    for (const auto& control : window.Controls())
        for (const char* property : {"Caption", "ToolTipText"}) {
            const auto row = rows.find(KeyOf(*control));
            const bool given = row != rows.end() && row->second.fields.at(property) != u"-1";
            std::string text;
            if (given || !ShowsDesignText(control, property, text)) continue;
            Report({addIn.name, controlTable}, "the control " + ToUtf8(control->Name()) + " has no " +
                                                   property + " and shows \"" + text + "\" of its design");
        }
}

// A label cuts off what doesn't fit its line.
void JudgeWidth(const Judged& addIn, const forms::Label& label, const Row& row) {
    const QFont font = forms::ToQt(*label.Font);
    const QString family = font.families().constFirst();
    if (!QFontDatabase::hasFamily(family))
        addIn.Report(controlTable, row, "FontName",
                     {"the font " + family.toStdString() +
                      " is not installed here, so the width was measured with another"});
    const double width = QFontMetricsF(font).horizontalAdvance(ToShow(label.Caption()));
    const int place = forms::ToPixels(label.Width());
    if (width > place)
        addIn.Report(controlTable, row, "Caption",
                     {"the text is " + std::to_string(std::lround(std::ceil(width))) +
                      " pixels wide, and its place has " + std::to_string(place)});
}

void JudgeControls(const Judged& addIn, Model& model) {
    std::map<ControlKey, Row> rows;
    for (const Row& row : addIn.Rows(controlTable, {"ObjectName", "Index", "Caption", "ToolTipText"})) {
        rows.emplace(KeyOf(row), row);
        for (const char* field : {"Caption", "ToolTipText"})
            addIn.Report(controlTable, row, field, PlainTextFaults(row.fields.at(field)));
    }
    ForEachRow(addIn, model, controlTable, [&](Database& alone) {
        horalink::LoadControlsText(model.desk.headless.boxes, model.Window(), alone);
    });
    JudgeDesignTexts(addIn, model.Window(), rows);
    for (const auto& control : model.Window().Controls()) {
        const auto* label = dynamic_cast<const forms::Label*>(control.get());
        const auto row = rows.find(KeyOf(*control));
        if (label && row != rows.end()) JudgeWidth(addIn, *label, row->second);
    }
}

}  // namespace

void JudgeDialog(const Judged& addIn, Shelf& shelf) {
    Model model(shelf);
    const std::vector<Row> forms = addIn.Rows(formTable, {"Caption"});
    if (forms.empty()) Report({addIn.name, formTable}, "the row of the window is missing");
    for (const Row& row : forms)
        addIn.Report(formTable, row, "Caption", TokenFaults(row.fields.at("Caption")));
    ForEachRow(addIn, model, formTable, [&](Database& alone) {
        horalink::LoadFormText(model.desk.headless.boxes, model.Window(), alone);
    });
    JudgeControls(addIn, model);
    if (addIn.Rows(pictureTable, {}).empty())
        Report({addIn.name, pictureTable}, "there is no row, so the background sets show nothing");
    ForEachRow(addIn, model, pictureTable, [&](Database& alone) {
        horalink::LoadFormPictures(model.desk.services, model.Window(), &alone, nullptr, 0, u"\\");
    });
}

std::map<std::int32_t, std::string> NeededTopics(Shelf& shelf) {
    Model model(shelf);
    std::map<std::int32_t, std::string> topics{{openingTopic, "the opening of the help"}};
    for (const auto& control : model.Window().Controls())
        if (control->WhatsThisHelpID != 0)
            topics.try_emplace(control->WhatsThisHelpID, "the control " + ToUtf8(control->Name()));
    return topics;
}

}  // namespace lng
