#include "horalink-setup/SettingsStore.h"

#include <algorithm>
#include <system_error>

#include "horalink-setup/Files.h"
#include "horalink-setup/Market.h"
#include "platform/runtime/Paths.h"

namespace setup {

namespace fs = std::filesystem;
using platform::FromUtf8;
using platform::Text;
using platform::ToUtf8;

namespace {

constexpr platform::TextView family = u"VELMORA32/";
constexpr platform::TextView installPath = u"InstallPath";
constexpr platform::TextView ownSection = u"horalink-setup", marketKey = u"Market";

Text SectionOf(const std::string& market) {
    return Text(family) + FromUtf8(market);
}

}  // namespace

SettingsStore::SettingsStore(fs::path file) : file_(std::move(file)), text_(ReadFile(file_).value_or("")) {}

std::vector<std::string> SettingsStore::Markets() const {
    std::vector<std::string> markets;
    for (const Text& section : text_.Sections()) {
        if (!platform::EqualsIgnoringCase(platform::Left(section, family.size()), family)) continue;
        const std::string market = ToUtf8(platform::UpperCase(section.substr(family.size())));
        if (Has(market) && std::find(markets.begin(), markets.end(), market) == markets.end())
            markets.push_back(market);
    }
    return markets;
}

std::optional<Text> SettingsStore::InstallPath(const std::string& market) const {
    return text_.Value(SectionOf(market), installPath);
}

std::optional<fs::path> SettingsStore::Root(const std::string& market) const {
    const auto written = InstallPath(market);
    return written ? std::optional(platform::RealPath(*written)) : std::nullopt;
}

void SettingsStore::SetRoot(const std::string& market, const fs::path& root) {
    text_.Set(SectionOf(market), installPath, platform::PathText(root) + u"\\");
}

void SettingsStore::RemoveRoot(const std::string& market) {
    text_.Remove(SectionOf(market), installPath);
}

std::string SettingsStore::MarketInUse() const {
    const auto markets = Markets();
    const auto has = [&](const std::string& market) {
        return std::find(markets.begin(), markets.end(), market) != markets.end();
    };
    if (const auto chosen = text_.Value(ownSection, marketKey); chosen && has(ToUtf8(*chosen)))
        return ToUtf8(*chosen);
    return markets.empty() || has(defaultMarket) ? defaultMarket : markets.front();
}

void SettingsStore::Use(const std::string& market) {
    text_.Set(ownSection, marketKey, FromUtf8(market));
}

void SettingsStore::ForgetUse(const std::string& market) {
    if (text_.Value(ownSection, marketKey) == FromUtf8(market)) text_.Remove(ownSection, marketKey);
}

void SettingsStore::Save() const {
    if (!text_.IsBlank()) {
        ReplaceFile(file_, text_.Content());
        return;
    }
    std::error_code ignored;
    fs::remove(file_, ignored);
    RemoveIfEmpty(file_.parent_path());
}

}  // namespace setup
