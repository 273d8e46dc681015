#include "platform/runtime/Paths.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

namespace platform {

namespace {

namespace fs = std::filesystem;

bool IsSeparator(char16_t c) {
    return c == u'\\' || c == u'/';
}

struct Route {
    bool absolute = false;
    std::vector<Text> components;
};

void AddComponent(Route& route, TextView component) {
    if (component.empty() || component == u".") return;
    auto& components = route.components;
    if (component != u"..") {
        components.emplace_back(component);
    } else if (!components.empty() && components.back() != u"..") {
        components.pop_back();
    } else if (!route.absolute) {
        components.emplace_back(component);
    }
}

Route RouteOf(TextView path) {
    Route route;
    route.absolute = !path.empty() && IsSeparator(path.front());
    while (!path.empty()) {
        const auto end = std::find_if(path.begin(), path.end(), IsSeparator);
        const auto length = static_cast<std::size_t>(end - path.begin());
        AddComponent(route, path.substr(0, length));
        path.remove_prefix(std::min(length + 1, path.size()));
    }
    return route;
}

bool IsNormalFile(const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

// The entries of a directory that differ from `name` only in letter case, sorted.
std::vector<fs::path> Lookalikes(const fs::path& directory, const Text& name) {
    std::vector<fs::path> found;
    std::error_code error;
    fs::directory_iterator entry(directory.empty() ? fs::path(".") : directory, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const fs::path file = entry->path().filename();
        const Text spelling = FromUtf8(file.native());
        if (spelling != name && EqualsIgnoringCase(spelling, name)) found.push_back(directory / file);
    }
    std::sort(found.begin(), found.end());
    return found;
}

// Searches for the whole route. If two directories differ only in case, the file may be in either, so the
// search backtracks from a match that leads nowhere. If no match is complete, the deepest one is used.
class Walk {
  public:
    Walk(const Route& route, fs::path start) : route_(route), start_(std::move(start)), deepest_(start_) {}

    fs::path Find() {
        Descend(start_, 0);
        for (std::size_t i = depth_; i < route_.components.size(); ++i)
            deepest_ /= ToUtf8(route_.components[i]);
        return deepest_;
    }

  private:
    bool Descend(const fs::path& here, std::size_t depth) {
        if (depth > depth_) {
            depth_ = depth;
            deepest_ = here;
        }
        if (depth == route_.components.size()) return true;
        if (WasInVain(here, depth)) return false;
        const Text& name = route_.components[depth];
        const fs::path exact = here / ToUtf8(name);
        if (Exists(exact) && Descend(exact, depth + 1)) return true;
        const auto others = Lookalikes(here, name);
        if (std::any_of(others.begin(), others.end(),
                        [&](const fs::path& other) { return Exists(other) && Descend(other, depth + 1); }))
            return true;
        inVain_.emplace(depth, Place(here));
        return false;
    }

    bool WasInVain(const fs::path& here, std::size_t depth) const {
        return !inVain_.empty() && inVain_.contains({depth, Place(here)});
    }

    static fs::path Place(const fs::path& here) {
        std::error_code error;
        const fs::path place = fs::canonical(here.empty() ? "." : here, error);
        return error ? here : place;
    }

    const Route& route_;
    const fs::path start_;
    fs::path deepest_;
    std::size_t depth_ = 0;
    // Directories searched without success, by depth. Links can lead to one directory in so many ways that
    // trying all of them would never end.
    std::set<std::pair<std::size_t, fs::path>> inVain_;
};

}  // namespace

bool Exists(const fs::path& path) {
    std::error_code error;
    return fs::exists(path, error);
}

fs::path RealPath(TextView path, const fs::path& from) {
    const Route route = RouteOf(path);
    return Walk(route, route.absolute ? "/" : from).Find();
}

std::optional<Text> Below(TextView path, const fs::path& directory) {
    const Route route = RouteOf(path), above = RouteOf(FromUtf8(directory.native()));
    const auto isSame = [](const Text& a, const Text& b) { return EqualsIgnoringCase(a, b); };
    const auto& [isAbsolute, components] = route;
    if (!isAbsolute || !above.absolute || components.size() <= above.components.size() ||
        !std::equal(above.components.begin(), above.components.end(), components.begin(), isSame))
        return std::nullopt;
    Text rest;
    for (std::size_t i = above.components.size(); i < components.size(); ++i)
        rest.append(rest.empty() ? u"" : u"\\").append(components[i]);
    return rest;
}

Text PathText(const fs::path& path) {
    Text text = FromUtf8(fs::absolute(path).native());
    std::replace(text.begin(), text.end(), u'/', u'\\');
    return text;
}

Text Dir(TextView path, const Find& find) {
    if (path.empty() || IsSeparator(path.back())) return {};
    const fs::path file = find(path);
    return IsNormalFile(file) ? FromUtf8(file.filename().native()) : Text();
}

// Avoids C++ streams, which would add 0.4 MiB to the process.
std::optional<std::string> FileContent(const fs::path& file) {
    if (!IsNormalFile(file)) return std::nullopt;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> opened(std::fopen(file.c_str(), "rbe"),
                                                                 std::fclose);
    if (!opened) return std::nullopt;
    std::string content;
    std::array<char, 4096> part{};
    while (const std::size_t length = std::fread(part.data(), 1, part.size(), opened.get()))
        content.append(part.data(), length);
    if (std::ferror(opened.get())) return std::nullopt;
    return content;
}

}  // namespace platform
