#include "locator/comRegMora32.h"

#include "locator/comRegMarket.h"

namespace horalink {

namespace {

using namespace platform;

constexpr TextView noPath = u"30000";
constexpr TextView missing = u"NONE";
constexpr TextView installPath = u"InstallPath";

struct Lookup {
    TextView appPath;
    const Settings& settings;
    Text base, market, family, root;
};

Text RootOf(const Lookup& lookup) {
    Text root = lookup.settings.Get(lookup.family, lookup.market, installPath, missing);
    if (root == missing) return Text(lookup.appPath) + u"\\";
    if (lookup.base == u"MORA32") return root + u"MORA32\\";
    if (lookup.base == u"ADDINS") return root + u"ADDINS\\";
    return root;
}

// The directory of another application of the family, under its own market code.
Text OtherApplication(const Lookup& lookup, TextView name) {
    const Text code = lookup.settings.Get(lookup.family, lookup.market, name, missing);
    if (code.size() == 5) return lookup.settings.Get(name, code, installPath, u"\\");
    return Text(lookup.appPath) + u"\\";
}

Text ByKeyword(const Lookup& lookup, TextView directory) {
    const Text keyword = UpperCase(directory);
    const bool core = lookup.base == u"MORA32", addIns = lookup.base == u"ADDINS";
    if (keyword == u"ME") return lookup.root;
    if (keyword == u"HELP" || keyword == u"REPORT" || keyword == u"DATABASE")
        return lookup.root + keyword + u"\\";
    if (keyword == u"ACROBATRD") return core ? lookup.root + u"READER\\" : Text(noPath);
    if (keyword == u"REGDBOFMORA32") {
        if (core) return lookup.root + u"DATABASE\\";
        return addIns ? lookup.root + u"..\\MORA32\\DATABASE\\" : Text(noPath);
    }
    if (keyword == u"BACKGRND") return core || addIns ? lookup.root + u"..\\BACKGRND\\" : Text(noPath);
    return OtherApplication(lookup, directory);
}

}  // namespace

Text ResolveDirectory(TextView appPath, const Settings& settings, TextView base, TextView directory) {
    Lookup lookup{appPath, settings, UpperCase(base), {}, {}, {}};
    lookup.market = GetMarketCode(appPath, lookup.base);
    lookup.family = lookup.base == u"ADDINS" || lookup.base == u"MORA32" ? Text(u"VELMORA32") : lookup.base;
    lookup.root = RootOf(lookup);
    return UpperCase(ByKeyword(lookup, directory));
}

}  // namespace horalink
