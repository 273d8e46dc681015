#include "locator/comRegMora32.h"

#include "locator/comRegMarket.h"

namespace horalink {

namespace {

using namespace platform;

constexpr TextView noPath = u"30000";
constexpr TextView none = u"NONE";
constexpr TextView installPath = u"InstallPath";

struct Place {
    TextView appPath;
    const Settings& settings;
    Text base, market, family, root;
};

Text RootOf(const Place& place) {
    Text root = place.settings.Get(place.family, place.market, installPath, none);
    if (root == none) return Text(place.appPath) + u"\\";
    if (place.base == u"MORA32") return root + u"MORA32\\";
    if (place.base == u"ADDINS") return root + u"ADDINS\\";
    return root;
}

// The directory of another application of the family, under its own market code.
Text OtherApplication(const Place& place, TextView name) {
    const Text code = place.settings.Get(place.family, place.market, name, none);
    if (code.size() == 5) return place.settings.Get(name, code, installPath, u"\\");
    return Text(place.appPath) + u"\\";
}

Text ByKeyword(const Place& place, TextView directory) {
    const Text keyword = UpperCase(directory);
    const bool core = place.base == u"MORA32", addIns = place.base == u"ADDINS";
    if (keyword == u"ME") return place.root;
    if (keyword == u"HELP" || keyword == u"REPORT" || keyword == u"DATABASE")
        return place.root + keyword + u"\\";
    if (keyword == u"ACROBATRD") return core ? place.root + u"READER\\" : Text(noPath);
    if (keyword == u"REGDBOFMORA32") {
        if (core) return place.root + u"DATABASE\\";
        return addIns ? place.root + u"..\\MORA32\\DATABASE\\" : Text(noPath);
    }
    if (keyword == u"BACKGRND") return core || addIns ? place.root + u"..\\BACKGRND\\" : Text(noPath);
    return OtherApplication(place, directory);
}

}  // namespace

Text ResolveDirectory(TextView appPath, const Settings& settings, TextView base, TextView directory) {
    Place place{appPath, settings, UpperCase(base), {}, {}, {}};
    place.market = GetMarketCode(appPath, place.base);
    place.family = place.base == u"ADDINS" || place.base == u"MORA32" ? Text(u"VELMORA32") : place.base;
    place.root = RootOf(place);
    return UpperCase(ByKeyword(place, directory));
}

}  // namespace horalink
