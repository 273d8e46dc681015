// The platform without a machine, with databases in memory.
#pragma once

#include "common/ModuleData.h"
#include "harness/MemoryDatabases.h"
#include "platform/headless/Headless.h"

namespace desk {

using Notes = std::vector<std::string>;

struct Desk : platform::headless::Headless {
    // The boxes that were shown since this was asked last, each "prompt|buttons|title|help file|help
    // context", with "-" for a part that was left out.
    Notes Boxes() {
        Notes all;
        for (const platform::MessageBox& box : boxes.Take()) {
            const auto text = [](const auto& part) { return part ? platform::ToUtf8(*part) : "-"; };
            all.push_back(platform::ToUtf8(box.prompt) + "|" + std::to_string(box.buttons) + "|" +
                          text(box.title) + "|" + text(box.helpFile) + "|" + std::to_string(box.helpContext));
        }
        return all;
    }

    harness::MemoryDatabases databases;
    horalink::Services services{app,       clock,      locale,   settings,
                                databases, automation, timers,   boxes,
                                screen,    toolkit,    pictures, [] { throw std::logic_error("End"); }};
};

// The box of a failure in its two forms.
inline std::string Short(const std::string& description, int number) {
    return description + " [" + std::to_string(number) + "]|16|System Fatal Notice|-|0";
}
inline std::string Long(const std::string& description, int number) {
    return "Error No: [" + std::to_string(number) + "]\r    " + description + "|16|System Fatal Notice|-|0";
}

}  // namespace desk
