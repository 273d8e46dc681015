// The text of the settings store: reading it, and changes that leave the rest alone.
#include "FuzzTarget.h"
#include "platform/desktop/IniText.h"

void horalink::fuzz::Try(std::string_view input) {
    using platform::IniText, platform::Text;
    const Text section = u"VELMORA32/10001", key = u"InstallPath", value = u"\\SOMEWHERE\\";
    IniText ini(input);
    Require(ini.Content() == input, "what isn't changed stays byte by byte");
    for (const Text& each : ini.Sections()) ini.Value(each, key);
    ini.Set(section, key, value);
    Require(ini.Value(section, key) == value, "what is set is found");
    Require(IniText(ini.Content()).Value(section, key) == value, "and found in the file");
    ini.Remove(section, key);
    Require(!ini.Value(section, key), "what is removed is no longer there");
}
