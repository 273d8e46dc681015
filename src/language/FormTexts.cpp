#include "language/FormTexts.h"

#include <memory>
#include <optional>

#include "common/FatalNotice.h"
#include "language/TextTokens.h"

namespace horalink {

namespace {

using namespace platform;

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

// Calls a function for each row of a query, in the database's order.
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

namespace {

using namespace platform;

enum class FontHolder { OwnProperties, FontObject, CaptionFont, FontList };

using Charset = std::optional<std::int16_t>;

struct Rule {
    std::string_view types;  // with a blank around each
    FontHolder holder;
    Charset charset;
    std::vector<std::string_view> fonts = {};
};

const Rule rules[] = {
    {" ComboBox ListBox FileListBox DriveListBox DirListBox ", FontHolder::OwnProperties, std::nullopt},
    {" CommandButton Label MSFlexGrid Frame OptionButton vsFlexArray TextBox ", FontHolder::OwnProperties,
     forms::cyrillic},
    {" SSCommand SSCheck SSOption SSFrame SSRibbon SSPanel ", FontHolder::OwnProperties, forms::shiftJis},
    {" SSTree ListView TreeView SSDBDropDown SSTab ", FontHolder::FontObject, forms::shiftJis},
    {" SSListBar ", FontHolder::CaptionFont, std::nullopt},
    {" SSDBGrid ",
     FontHolder::FontList,
     forms::cyrillic,
     {"HeadFont", "PageFooterFont", "PageHeaderFont", "Font"}},
    {" SSDBCombo ", FontHolder::FontList, forms::shiftJis, {"Font", "HeadFont"}},
};
const Rule anyOther{"", FontHolder::FontObject, std::nullopt};

const Rule& RuleOf(std::string_view type) {
    const std::string word = " " + std::string(type) + " ";
    for (const Rule& rule : rules)
        if (rule.types.find(word) != std::string_view::npos) return rule;
    return anyOther;
}

struct FontValues {
    const Value& name;
    const Value& size;
    Charset charset;
};

void SetFont(const ObjectRef& font, const FontValues& values) {
    Put(font, "Name", values.name);
    Put(font, "Size", values.size);
    if (values.charset) Put(font, "Charset", *values.charset);
}

void SetOwnProperties(const ObjectRef& control, const FontValues& values) {
    Put(control, "FontName", values.name);
    Put(control, "FontSize", values.size);
    if (values.charset) Put(Get(control, "Font").ToObject(), "Charset", *values.charset);
}

void SetStyleSets(const ObjectRef& control, const FontValues& values) {
    const ObjectRef sets = Get(control, "StyleSets").ToObject();
    const std::int16_t count = Get(sets, "Count").ToInteger();
    for (std::int16_t i = 0; i < count; ++i)
        SetFont(Get(Get(control, "StyleSets", i).ToObject(), "Font").ToObject(), values);
}

void SetFontList(const ObjectRef& control, const Rule& rule, const FontValues& values) {
    for (const std::string_view font : rule.fonts) SetFont(Get(control, font).ToObject(), values);
    SetStyleSets(control, values);
}

}  // namespace

void SetControlFont(forms::Form& form, const ObjectRef& control, const Value& name, const Value& size) {
    const std::string_view type = control->Class().name;
    const Rule& rule = RuleOf(type);
    const FontValues values{name, size, rule.charset};
    switch (rule.holder) {
        case FontHolder::OwnProperties:
            SetOwnProperties(control, values);
            break;
        case FontHolder::FontObject:
            SetFont(Get(control, "Font").ToObject(), values);
            break;
        case FontHolder::CaptionFont:
            SetFont(Get(control, "CaptionFont").ToObject(), values);
            break;
        case FontHolder::FontList:
            SetFontList(control, rule, values);
            break;
    }
    if (type == "SSTab") form.Refresh();
}

}  // namespace horalink
