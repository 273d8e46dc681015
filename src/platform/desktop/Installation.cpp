#include "platform/desktop/Installation.h"

#include <algorithm>
#include <system_error>

#include "platform/desktop/BaseDirectories.h"
#include "platform/runtime/Paths.h"
#include "platform/runtime/ProgramFile.h"

namespace platform {

namespace fs = std::filesystem;

namespace {

constexpr TextView family = u"VELMORA32";

// The locale of the messages category.
std::string MessagesLocale() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (std::string value = Variable(name); !value.empty()) return value;
    return "C";
}

// The list in LANGUAGE, which counts only if a locale is set; otherwise the locale alone.
std::string LanguageList() {
    const std::string locale = MessagesLocale(), list = Variable("LANGUAGE");
    return list.empty() || locale == "C" || locale == "POSIX" ? locale : list;
}

void Add(std::vector<Text>& languages, const Text& language) {
    // The language becomes the name of a folder.
    const bool isName = !language.empty() && language != u"C" && language != u"POSIX" &&
                        language.find_first_of(u"/\\") == language.npos;
    const bool isNew = std::find(languages.begin(), languages.end(), language) == languages.end();
    if (isName && isNew) languages.push_back(language);
}

void Add(std::vector<fs::path>& trees, const fs::path& tree) {
    if (!tree.empty() && std::find(trees.begin(), trees.end(), tree) == trees.end()) trees.push_back(tree);
}

fs::path UserTree(TextView market) {
    const fs::path data = UserDirectory("XDG_DATA_HOME", ".local/share");
    if (data.empty() || market.empty()) return {};
    return RealPath(Text(family).append(u"\\").append(market), data);
}

// The tree that the setting names. Ignores paths that can't be used here, such as one with a drive letter.
fs::path NamedTree(const Settings& settings, const Text& market) {
    const fs::path named =
        RealPath(settings.Get(family, market.empty() ? Text(u"NONE") : market, u"InstallPath", u""));
    return named.is_absolute() && named.has_relative_path() ? named : fs::path();
}

fs::path Real(const fs::path& file) {
    std::error_code error;
    return fs::canonical(file, error);
}

}  // namespace

std::vector<Text> WantedLanguages(TextView setting) {
    std::vector<Text> languages;
    for (const std::string& locale : Entries(setting.empty() ? LanguageList() : ToUtf8(setting))) {
        // de_AT.UTF-8@euro: the codeset and the variant don't matter.
        const Text language = FromUtf8(locale.substr(0, locale.find_first_of(".@")));
        Add(languages, language);
        Add(languages, language.substr(0, language.find(u'_')));
    }
    Add(languages, u"en");
    return languages;
}

Installation FindInstallation(const fs::path& program, const Settings& settings) {
    Installation found;
    found.market = FromUtf8(FamilyTree(program).filename().native());
    std::vector<fs::path> trees;
    Add(trees, UserTree(found.market));
    Add(trees, NamedTree(settings, found.market));
    Add(trees, program.parent_path().parent_path());
    Add(trees, FamilyTree(Real(program)));
    found.layers = Layers(trees, WantedLanguages(settings.Get(family, found.market, u"Language", u"")));
    return found;
}

}  // namespace platform
