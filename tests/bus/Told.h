// Messages as texts, for tests that look at all of them. The contract's names are written out here once more.
#pragma once

#include <bit>
#include <string>

#include "platform/automation/dbus/Handles.h"

namespace platform::test {

inline constexpr char factoryPath[] = "/Factory", factoryInterface[] = "org.velmora.Automation1.Factory";
inline constexpr char objectInterface[] = "org.velmora.Automation1.Object";
inline constexpr char errorName[] = "org.velmora.Automation1.Error";
inline constexpr char busyErrorName[] = "org.velmora.Automation1.Error.Busy";

// One value of a basic type: a text or path as itself, anything else with the letter of its type.
inline std::string ToldBasic(sd_bus_message* message, char type) {
    std::uint64_t raw = 0;
    sd_bus_message_read_basic(message, type, &raw);
    if (type == 's') return "'" + std::string(std::bit_cast<const char*>(raw)) + "'";
    if (type == 'o' || type == 'g') return std::bit_cast<const char*>(raw);
    if (type == 'd') return "d" + std::to_string(std::bit_cast<double>(raw));
    const auto number = type == 'n'   ? static_cast<std::int16_t>(raw)
                        : type == 'i' ? static_cast<std::int32_t>(raw)
                                      : static_cast<std::int64_t>(raw);
    return type + std::to_string(number);
}

// What is left of a message or container.
inline std::string ToldContent(sd_bus_message* message) {
    std::string all;
    char type = 0;
    const char* contents = nullptr;
    while (sd_bus_message_peek_type(message, &type, &contents) > 0) {
        if (!all.empty()) all += ' ';
        if (!contents) {
            all += ToldBasic(message, type);
            continue;
        }
        sd_bus_message_enter_container(message, type, contents);
        const std::string inside = ToldContent(message);
        sd_bus_message_exit_container(message);
        all += type == 'v' ? "<" + inside + ">" : type == 'a' ? "[" + inside + "]" : "(" + inside + ")";
    }
    return all;
}

// A description without the words that its number has in any case.
inline std::string Detail(const std::string& description) {
    const auto colon = description.find(": ");
    return colon == std::string::npos ? description : description.substr(colon + 2);
}

// An answer as its content, an error as name, number and detail, a call with path and member, and "!" where
// it wants no answer.
inline std::string Told(const MessageRef& shared) {
    sd_bus_message* message = shared.get();
    sd_bus_message_rewind(message, true);
    const std::string content = ToldContent(message);
    if (const sd_bus_error* error = sd_bus_message_get_error(message)) {
        const std::string name = error->name;
        return name.substr(name.rfind('.') + 1) + ' ' + content.substr(content.rfind(' ') + 1) + ' ' +
               Detail(error->message);
    }
    if (sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0) return content;
    return std::string(sd_bus_message_get_path(message)) + ' ' + sd_bus_message_get_member(message) +
           (sd_bus_message_get_expect_reply(message) > 0 ? "" : "!") + (content.empty() ? "" : " " + content);
}

}  // namespace platform::test
