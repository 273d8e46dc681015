#include "platform/forms/Control.h"

#include "platform/forms/Form.h"
#include "platform/runtime/MemberTable.h"

namespace platform::forms {

const ClassDescription& Font::Class() const {
    static const ClassDescription description{
        "Font", Slots{ReadWrite<&Font::Name>("Name"), ReadWrite<&Font::Size, &Font::SetSize>("Size"),
                      ReadWrite<&Font::Charset>("Charset")}};
    return description;
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

Slots Control::CommonMembers() {
    return {Read<&Control::Width>("Width"), Read<&Control::Height>("Height"),
            ReadWrite<&Control::Visible>("Visible"), ReadWrite<&Control::ToolTipText>("ToolTipText"),
            Method<&Control::Place>("Move", "Left", "Top", "Width", "Height")};
}

Slots FontControl::FontMembers() {
    return {CommonMembers(), Read<&FontControl::Font>("Font"), Write<&FontControl::SetFontName>("FontName"),
            Write<&FontControl::SetFontSize>("FontSize")};
}

}  // namespace platform::forms
