#include "platform/forms/Control.h"

#include "platform/forms/Form.h"

namespace platform::forms {

namespace {

const ClassDescription& FontClass() {
    static const ClassDescription description = [] {
        ClassDescription font{"Font", {}};
        AddProperty<&Font::Name>(font.members, "Name");
        font.members.push_back(
            {"Size", InvokeKind::PropertyGet, {}, ValueType::Single, Bind<Font>([](Font& self, Arguments&) {
                 return self.Size();
             })});
        font.members.push_back({"Size",
                                InvokeKind::PropertyPut,
                                {{"Value", ValueType::Single}},
                                ValueType::None,
                                Bind<Font>([](Font& self, Arguments& a) { self.SetSize(a[0].ToSingle()); })});
        AddProperty<&Font::Bold>(font.members, "Bold");
        AddProperty<&Font::Charset>(font.members, "Charset");
        return font;
    }();
    return description;
}

}  // namespace

const ClassDescription& Font::Class() const {
    return FontClass();
}

const ClassDescription& Picture::Class() const {
    static const ClassDescription description{"Picture", {}};
    return description;
}

void Font::SetSize(float points) {
    if (!(points > 0 && points <= largestSize)) throw RuntimeError(ErrorNumber::InvalidPropertyValue, "Size");
    Size = points;
}

void Control::Changed() {
    form_.ControlChanged(*this);
}

void Control::Place(float left, float top, float width, float height) {
    Left = left;
    Top = top;
    Width = width;
    Height = height;
}

std::vector<Member> Control::CommonMembers() {
    std::vector<Member> members;
    members.push_back({"Name",
                       InvokeKind::PropertyGet,
                       {},
                       ValueType::String,
                       Bind<Control>([](Control& control, Arguments&) { return control.Name(); })});
    members.push_back({"Index",
                       InvokeKind::PropertyGet,
                       {},
                       ValueType::Integer,
                       Bind<Control>([](Control& control, Arguments&) { return control.Index(); })});
    AddProperty<&Control::Left>(members, "Left");
    AddProperty<&Control::Top>(members, "Top");
    AddProperty<&Control::Width>(members, "Width");
    AddProperty<&Control::Height>(members, "Height");
    AddProperty<&Control::Visible>(members, "Visible");
    AddProperty<&Control::Enabled>(members, "Enabled");
    AddProperty<&Control::ToolTipText>(members, "ToolTipText");
    const Parameter left{"Left", ValueType::Single}, top{"Top", ValueType::Single},
        width{"Width", ValueType::Single}, height{"Height", ValueType::Single};
    members.push_back({"Move",
                       InvokeKind::Method,
                       {left, top, width, height},
                       ValueType::None,
                       Bind<Control>([](Control& control, Arguments& a) {
                           control.Place(a[0].ToSingle(), a[1].ToSingle(), a[2].ToSingle(), a[3].ToSingle());
                       })});
    return members;
}

std::vector<Member> FontControl::FontMembers() {
    std::vector<Member> members = CommonMembers();
    members.push_back({"Font",
                       InvokeKind::PropertyGet,
                       {},
                       ValueType::Object,
                       Bind<FontControl>([](FontControl& control, Arguments&) { return control.Font; })});
    members.push_back(
        {"FontName",
         InvokeKind::PropertyPut,
         {{"Value", ValueType::String}},
         ValueType::None,
         Bind<FontControl>([](FontControl& c, Arguments& a) { c.Font->Name = a[0].ToText(); })});
    members.push_back(
        {"FontSize",
         InvokeKind::PropertyPut,
         {{"Value", ValueType::Single}},
         ValueType::None,
         Bind<FontControl>([](FontControl& c, Arguments& a) { c.Font->SetSize(a[0].ToSingle()); })});
    return members;
}

}  // namespace platform::forms
