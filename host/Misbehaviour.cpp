#include "host/Misbehaviour.h"

#include <charconv>

#include "platform/runtime/RuntimeError.h"

namespace switchdesk {

namespace {

[[noreturn]] void Refuse(std::string_view value, const char* wanted) {
    throw platform::RuntimeError(5, platform::FromUtf8("\"" + std::string(value) + "\" is not " + wanted));
}

platform::Text Item::* FieldOf(std::string_view name) {
    const std::string lower = LowerCase(name);
    if (lower == "cmd") return &Item::command;
    if (lower == "firstdata") return &Item::first;
    if (lower == "seconddata") return &Item::second;
    if (lower == "extradata") return &Item::extra;
    Refuse(name, "a field of an item");
}

}  // namespace

int ParseCount(std::string_view value) {
    int count = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), count);
    if (error != std::errc() || end != value.data() + value.size() || count < 0) Refuse(value, "a number");
    return count;
}

void TakeAnswer(std::string_view value, Misbehaviour& misbehaviour) {
    constexpr std::string_view late = "late:";
    if (value.starts_with(late))
        misbehaviour.answerDelay = std::chrono::milliseconds(ParseCount(value.substr(late.size())));
    else if (value == "never")
        misbehaviour.answers = false;
    else
        Refuse(value, "\"never\" or \"late:MS\"");
}

Misbehaviour::Override ParseOverride(std::string_view value) {
    const std::size_t colon = value.find(':'), equals = value.find('=');
    if (colon == value.npos || equals == value.npos || equals < colon) Refuse(value, "I:FIELD=TEXT");
    return {static_cast<std::size_t>(ParseCount(value.substr(0, colon))),
            FieldOf(value.substr(colon + 1, equals - colon - 1)),
            platform::FromUtf8(value.substr(equals + 1))};
}

std::string LowerCase(std::string_view name) {
    std::string lower(name);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
    return lower;
}

void Misbehaviour::BeginCall(std::string_view member) {
    if (logins && member == "login" && (*logins)-- == 0) *this = {};
}

void Misbehaviour::Spoil(Answer& answer) const {
    for (const Override& entry : overrides)
        if (entry.item < answer.items.size()) answer.items[entry.item].*entry.field = entry.text;
    for (auto item = droppedItems.rbegin(); item != droppedItems.rend(); ++item)
        if (*item < answer.items.size())
            answer.items.erase(answer.items.begin() + static_cast<std::ptrdiff_t>(*item));
}

}  // namespace switchdesk
