#include "horalink-setup/Package.h"

#include <algorithm>
#include <system_error>

#include "common/Fault.h"
#include "platform/runtime/Text.h"

namespace setup {

namespace fs = std::filesystem;

namespace {

constexpr const char* english = "en";

bool SameName(const std::string& left, const std::string& right) {
    return platform::EqualsIgnoringCase(platform::FromUtf8(left), platform::FromUtf8(right));
}

// "zh_CN.UTF-8@pinyin" names the language "zh-CN"; folders may be named either way.
std::string WithHyphens(std::string locale) {
    locale = locale.substr(0, locale.find_first_of(".@"));
    std::replace(locale.begin(), locale.end(), '_', '-');
    return locale;
}

std::string WithoutCountry(const std::string& language) {
    return language.substr(0, language.find('-'));
}

// The place with the folder of the language put in.
fs::path InLanguage(const fs::path& piece, const std::string& language) {
    return piece.parent_path() / language / piece.filename();
}

}  // namespace

Package::Package(fs::path tree) : tree_(std::move(tree)) {
    std::error_code error;
    if (!fs::is_regular_file(tree_ / place::addIn, error))
        throw tools::Fault(tree_.string() + ": this is no tree of an installed package: " + place::addIn +
                           " is missing");
}

std::vector<std::string> Package::Languages() const {
    std::vector<std::string> languages;
    const fs::path texts = place::addInTexts;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(tree_ / texts.parent_path(), error))
        if (fs::exists(entry.path() / texts.filename(), error)) languages.push_back(entry.path().filename());
    std::sort(languages.begin(), languages.end());
    return languages;
}

std::string Package::LanguageFor(const std::string& locale) const {
    const std::string wanted = WithHyphens(locale);
    const auto languages = Languages();
    const auto find = [&](auto&& fits) {
        const auto found = std::find_if(languages.begin(), languages.end(),
                                        [&](const std::string& name) { return fits(WithHyphens(name)); });
        return found == languages.end() ? std::string() : *found;
    };
    std::string language = find([&](const std::string& name) { return SameName(name, wanted); });
    if (language.empty())
        language = find(
            [&](const std::string& name) { return SameName(WithoutCountry(name), WithoutCountry(wanted)); });
    if (language.empty()) language = find([](const std::string& name) { return SameName(name, english); });
    return language.empty() && !languages.empty() ? languages.front() : language;
}

std::string Package::CheckedLanguage(const std::string& name) const {
    std::string known;
    for (const std::string& language : Languages()) {
        if (SameName(WithHyphens(language), WithHyphens(name))) return language;
        known += (known.empty() ? "" : ", ") + language;
    }
    if (known.empty()) known = "none";
    throw tools::WrongCall("there are no texts in the language '" + name + "'; there are: " + known);
}

std::vector<Link> Package::Links(const std::string& language) const {
    std::vector<Link> links;
    for (const char* piece : {place::addIn, place::host, place::backgrounds})
        links.push_back({piece, tree_ / piece});
    for (const char* piece : {place::addInTexts, place::commonTexts, place::help})
        links.push_back({piece, tree_ / (language.empty() ? fs::path(piece) : InLanguage(piece, language))});
    return links;
}

}  // namespace setup
