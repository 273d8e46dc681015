// The text of the settings store: reading it, and changes that leave the rest alone.
#include "FuzzTarget.h"
#include "platform/desktop/IniText.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace platform;
    using horalink::fuzz::Require;
    IniText ini(horalink::fuzz::Bytes(data, size));
    const std::string before = ini.Content();
    Require(before == horalink::fuzz::Bytes(data, size), "what isn't changed stays byte by byte");
    for (const Text& section : ini.Sections()) ini.Value(section, u"InstallPath");
    ini.Set(u"VELMORA32/10001", u"InstallPath", u"\\SOMEWHERE\\");
    Require(ini.Value(u"VELMORA32/10001", u"InstallPath") == u"\\SOMEWHERE\\", "what is set is found");
    const IniText reread(ini.Content());
    Require(reread.Value(u"VELMORA32/10001", u"InstallPath") == u"\\SOMEWHERE\\", "and found in the file");
    ini.Remove(u"VELMORA32/10001", u"InstallPath");
    Require(!ini.Value(u"VELMORA32/10001", u"InstallPath"), "what is removed is gone");
    return 0;
}
