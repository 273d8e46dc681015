#include "platform/runtime/Layers.h"

#include <algorithm>
#include <optional>
#include <system_error>

#include "platform/runtime/Paths.h"

namespace platform {

namespace fs = std::filesystem;

namespace {

bool IsSame(const fs::path& file, const fs::path& other) {
    std::error_code error;
    return fs::equivalent(file, other, error);
}

std::optional<Text> BelowOneOf(const std::vector<fs::path>& trees, TextView path) {
    for (const fs::path& tree : trees)
        if (auto rest = Below(path, tree)) return rest;
    return std::nullopt;
}

}  // namespace

// The path with the folder of the first language for which any tree has the file; empty if there is none. All
// trees use that language: a user's own English file doesn't hide a shared German one.
Text Layers::InLanguage(TextView path) const {
    const std::size_t name = path.find_last_of(u'\\') + 1;  // 0 without a backslash
    for (const Text& language : languages_) {
        const Text candidate = Text(path.substr(0, name)) + language + u"\\" + Text(path.substr(name));
        const auto has = [&](const fs::path& tree) { return Exists(RealPath(candidate, tree)); };
        if (std::any_of(trees_.begin(), trees_.end(), has)) return candidate;
    }
    return {};
}

std::vector<fs::path> Layers::FindAll(TextView path) const {
    std::vector<fs::path> found;
    const auto add = [&](const fs::path& file) {
        // Trees can link to each other's files; each file is listed once.
        const auto isSame = [&](const fs::path& other) { return IsSame(file, other); };
        if (Exists(file) && std::none_of(found.begin(), found.end(), isSame)) found.push_back(file);
    };
    const auto rest = BelowOneOf(trees_, path);
    if (!rest) add(RealPath(path));
    if (!rest) return found;
    const Text inLanguage = InLanguage(*rest);
    for (const fs::path& tree : trees_) {
        if (!inLanguage.empty()) add(RealPath(inLanguage, tree));
        add(RealPath(*rest, tree));
    }
    return found;
}

fs::path Layers::Find(TextView path) const {
    const auto found = FindAll(path);
    if (!found.empty()) return found.front();
    // The place where it was looked for last, in its real spelling.
    const auto rest = BelowOneOf(trees_, path);
    return rest ? RealPath(*rest, trees_.back()) : RealPath(path);
}

fs::path Layers::OwnPlace(const fs::path& file) const {
    const auto rest = BelowOneOf(trees_, FromUtf8(file.native()));
    return rest ? RealPath(*rest, trees_.front()) : file;
}

}  // namespace platform
