#include "language/FormTexts.h"

#include <memory>

#include "common/FatalNotice.h"
#include "language/ControlFonts.h"
#include "language/TextTokens.h"

namespace horalink {

namespace {

using namespace platform;

constexpr TextView noValue = u"-1";
constexpr std::int32_t noIndex = -1;

bool IsNoValue(const Value& value) {
    return !value.IsNull() && value.ToText() == noValue;
}

void DressForm(MessageBoxes& boxes, const std::shared_ptr<Object>& form, const Recordset& row) {
    Text none;
    Put(form, "Caption", ExpandTextTokens(boxes, row.Field(u"Caption").ToText(), none));
    if (form->Class().name == "MDIForm") return;
    const ObjectRef font = Get(form, "Font").ToObject();
    Put(font, "Name", row.Field(u"FontName"));
    Put(font, "Size", row.Field(u"FontSize"));
}

ObjectRef ControlOf(const forms::Form& form, const Recordset& row) {
    const std::int32_t index = row.Field(u"Index").ToLong();
    return form.Item(row.Field(u"ObjectName").ToText(),
                     index == noIndex ? std::int16_t{-1} : Value(index).ToInteger());
}

void PutText(const ObjectRef& control, std::string_view property, const Value& text) {
    if (text.IsNull())
        Put(control, property, u"");
    else if (!IsNoValue(text))
        Put(control, property, text);
}

void DressControl(forms::Form& form, const Recordset& row) {
    const ObjectRef control = ControlOf(form, row);
    PutText(control, "Caption", row.Field(u"Caption"));
    const Value fontName = row.Field(u"FontName");
    if (!fontName.IsNull() && !IsNoValue(fontName))
        SetControlFont(form, control, fontName, row.Field(u"FontSize"));
    PutText(control, "ToolTipText", row.Field(u"ToolTipText"));
}

// Applies a step to each row of a query, in the database's order.
template <class Step>
bool ForEachRow(MessageBoxes& boxes, Database& database, const Text& query, Step step) {
    try {
        const auto rows = database.OpenRecordset(query, RecordsetType::ForwardOnly);
        for (; !rows->EndOfFile(); rows->MoveNext()) step(*rows);
        rows->Close();
        return true;
    } catch (const RuntimeError& error) {
        ShowShortNotice(boxes, error);
        return false;
    }
}

}  // namespace

bool LoadFormText(MessageBoxes& boxes, forms::Form& form, Database& database) {
    const Text query =
        u"select Caption,FontName,FontSize from tForms where ObjectName = '" + form.Name() + u"'";
    return ForEachRow(boxes, database, query,
                      [&](const Recordset& row) { DressForm(boxes, form.shared_from_this(), row); });
}

bool LoadControlsText(MessageBoxes& boxes, forms::Form& form, Database& database) {
    const Text query =
        u"select ObjectName,Index,Caption,FontName,FontSize,ToolTipText from tControls"
        u" where FormName = '" +
        form.Name() + u"'";
    return ForEachRow(boxes, database, query, [&](const Recordset& row) { DressControl(form, row); });
}

}  // namespace horalink
