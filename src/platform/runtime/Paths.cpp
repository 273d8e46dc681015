#include "platform/runtime/Paths.h"

#include <algorithm>
#include <set>
#include <string>
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

bool Exists(const fs::path& path) {
    std::error_code error;
    return fs::exists(path, error);
}

bool IsNormalFile(const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

// The entries of a directory that differ from `name` in letter case only, in a settled order.
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

// Looks for the whole route. Two directories may differ in case only, and the file lie in either, so a
// match that leads nowhere is given up for the next; the deepest one is kept in case none is whole.
class Walk {
  public:
    explicit Walk(const Route& route) : route_(route), start_(route.absolute ? "/" : ""), deepest_(start_) {}

    fs::path Find(const Spellings& spellings) {
        const bool found = std::any_of(spellings.begin(), spellings.end(), [this](const Text& spelling) {
            return DescendAlong(RouteOf(spelling));
        });
        if (!found) Descend(start_, 0);
        for (std::size_t i = depth_; i < route_.components.size(); ++i)
            deepest_ /= ToUtf8(route_.components[i]);
        return deepest_;
    }

  private:
    // Takes the known components as far as the two routes agree, and looks for the rest below them.
    bool DescendAlong(const Route& known) {
        if (known.absolute != route_.absolute) return false;
        const auto& wanted = route_.components;
        fs::path here = start_;
        std::size_t depth = 0;
        for (const Text& component : known.components) {
            if (depth == wanted.size() || !EqualsIgnoringCase(component, wanted[depth])) break;
            here /= ToUtf8(component);
            ++depth;
        }
        return Exists(here) && Descend(here, depth);
    }

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
    // Links can lead to one directory by so many ways that there would be no end to going each of them.
    std::set<std::pair<std::size_t, fs::path>> inVain_;
};

}  // namespace

fs::path RealPath(TextView path, const Spellings& spellings) {
    const Route route = RouteOf(path);
    return Walk(route).Find(spellings);
}

Text PathText(const fs::path& path) {
    Text text = FromUtf8(fs::absolute(path).native());
    std::replace(text.begin(), text.end(), u'/', u'\\');
    return text;
}

Text Dir(TextView path, const Spellings& spellings) {
    if (path.empty() || IsSeparator(path.back())) return {};
    const fs::path file = RealPath(path, spellings);
    return IsNormalFile(file) ? FromUtf8(file.filename().native()) : Text();
}

std::ifstream OpenToRead(const fs::path& file) {
    return IsNormalFile(file) ? std::ifstream(file, std::ios::binary) : std::ifstream();
}

}  // namespace platform
