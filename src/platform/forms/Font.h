// The font object of a form or control.
#pragma once

#include "platform/forms/Property.h"
#include "platform/runtime/Object.h"

namespace platform::forms {

// Numbers of character sets.
inline constexpr std::int16_t cyrillic = 204, shiftJis = 128;

class Font : public Object {
  public:
    static constexpr float largestSize = 2160;

    explicit Font(Watched& owner, Text name = u"MS Sans Serif", float size = 8.25F, bool bold = false)
        : Name(owner, std::move(name)), Size(owner, size), Bold(owner, bold), Charset(owner, 0) {}
    const ClassDescription& Class() const override;

    Property<Text> Name;
    Property<float> Size;  // points
    // Raises 380 unless the size is above 0 and at most `largestSize`.
    void SetSize(float points);
    Property<bool> Bold;
    Property<std::int16_t> Charset;  // only stored; views ignore it
};

}  // namespace platform::forms
