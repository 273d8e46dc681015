#include "language/ControlFonts.h"

#include <optional>

namespace horalink {

namespace {

using namespace platform;

enum class Place { OwnProperties, FontObject, CaptionFont, FontList };

using Charset = std::optional<std::int16_t>;
constexpr std::int16_t cyrillic = 204, shiftJis = 128;

struct Rule {
    std::string_view types;  // each with a blank at both ends
    Place place;
    Charset charset;
    std::vector<std::string_view> fonts = {};
};

const Rule rules[] = {
    {" ComboBox ListBox FileListBox DriveListBox DirListBox ", Place::OwnProperties, std::nullopt},
    {" CommandButton Label MSFlexGrid Frame OptionButton vsFlexArray TextBox ", Place::OwnProperties,
     cyrillic},
    {" SSCommand SSCheck SSOption SSFrame SSRibbon SSPanel ", Place::OwnProperties, shiftJis},
    {" SSTree ListView TreeView SSDBDropDown SSTab ", Place::FontObject, shiftJis},
    {" SSListBar ", Place::CaptionFont, std::nullopt},
    {" SSDBGrid ", Place::FontList, cyrillic, {"HeadFont", "PageFooterFont", "PageHeaderFont", "Font"}},
    {" SSDBCombo ", Place::FontList, shiftJis, {"Font", "HeadFont"}},
};
const Rule anyOther{"", Place::FontObject, std::nullopt};

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
    switch (rule.place) {
        case Place::OwnProperties:
            SetOwnProperties(control, values);
            break;
        case Place::FontObject:
            SetFont(Get(control, "Font").ToObject(), values);
            break;
        case Place::CaptionFont:
            SetFont(Get(control, "CaptionFont").ToObject(), values);
            break;
        case Place::FontList:
            SetFontList(control, rule, values);
            break;
    }
    if (type == "SSTab") form.Refresh();
}

}  // namespace horalink
