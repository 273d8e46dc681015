// A control of any type, which notes what is done to it and to whatever it gives out.
#pragma once

#include <regex>

#include "harness/Desk.h"
#include "platform/forms/Form.h"

namespace desk {

struct NotedControl : platform::forms::Control {
    NotedControl(platform::forms::Form& form, std::string_view typeName, Notes& toWrite, std::string path,
                 platform::Text name = {}, std::int16_t index = -1)
        : Control(form, std::move(name), index),
          type{typeName, {}},
          notes(toWrite),
          prefix(std::move(path)) {}
    const platform::ClassDescription& Class() const override { return type; }
    platform::Value Invoke(std::string_view member, platform::InvokeKind kind,
                           platform::Arguments& arguments) override {
        if (member == "Width") return Width();
        if (member == "Height") return Height();
        if (member == "Count") return 2;
        std::string given;
        for (const platform::Value& argument : arguments)
            given += (given.empty() ? "" : ",") + Described(argument);
        const std::string name = prefix + std::string(member);
        if (kind == platform::InvokeKind::PropertyGet)
            return std::make_shared<NotedControl>(Owner(), "", notes, name + given + ".");
        return notes.push_back(name + "=" + given), platform::Value();
    }
    static std::string Described(const platform::Value& value) {
        if (!value.IsObject()) return platform::ToUtf8(value.ToText());
        const auto picture = std::dynamic_pointer_cast<platform::forms::Picture>(value.ToObject());
        return picture ? picture->Content() : "object";
    }

    const platform::ClassDescription type;
    Notes& notes;
    const std::string prefix;
};

// More rows for an INSERT, "(...), (...)", as those of the form "form".
inline std::string RowsOfForm(const std::string& rows) {
    return std::regex_replace(", " + rows, std::regex("\\("), "('form', ");
}

}  // namespace desk
