#include "clock/WindowPlacement.h"

#include "platform/runtime/Object.h"

namespace horalink {

namespace {

using namespace platform;

constexpr const char16_t* ownName = u"Horalink";

struct StoredPlace {
    Text left, top;
};

StoredPlace LoadPlace(const ObjectRef& host) {
    ErrorState error;
    Text key = u"MOVE", value;
    Skip(error, "GetComData", [&] { Call(host, "GetComData", ownName, ByRef(key), ByRef(value)); });
    const auto comma = value.find(u',');
    if (comma == Text::npos) return {value, {}};
    const auto end = value.find(u',', comma + 1);
    return {value.substr(0, comma), value.substr(comma + 1, end == Text::npos ? end : end - comma - 1)};
}

}  // namespace

void RestorePlace(forms::Form& form, const Screen& screen, const ObjectRef& host) {
    const StoredPlace stored = LoadPlace(host);
    if (stored.left.empty() && stored.top.empty()) {
        form.Move((screen.Width() - form.Width) / 2, (screen.Height() - form.Height) / 2);
        return;
    }
    ErrorState error;
    Skip(error, "moving to the stored place", [&] {
        const float left = Value(stored.left).ToSingle();
        form.Move(left, Value(stored.top).ToSingle());
    });
}

void SavePlace(const forms::Form& form, const ObjectRef& host) {
    ErrorState error;
    Text key = u"MOVE";
    Text value = Value(form.Left()).ToText() + u"," + Value(form.Top()).ToText();
    Skip(error, "REGComData", [&] { Call(host, "REGComData", ownName, ByRef(key), ByRef(value)); });
}

}  // namespace horalink
