// Reading the text of the settings store.
#include "FuzzTarget.h"
#include "platform/desktop/IniSettings.h"

void horalink::fuzz::Try(std::string_view input) {
    const platform::Text section = u"VELMORA32/10001", key = u"InstallPath";
    const auto value = platform::IniValue(input, section, key);
    Require(!value || value->find(u'\n') == value->npos, "a value is a part of one line");
    // What comes after the first value doesn't matter.
    const std::string more = std::string(input) + "\n[VELMORA32/10001]\nInstallPath=\\SOMEWHERE\\\n";
    Require(platform::IniValue(more, section, key) == value.value_or(u"\\SOMEWHERE\\"),
            "the first value counts");
}
