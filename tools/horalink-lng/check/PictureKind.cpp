#include "check/PictureKind.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <string_view>

namespace lng {

namespace {

constexpr std::size_t startLength = 1024;

std::string StartOf(const std::filesystem::path& file) {
    std::string start(startLength, '\0');
    std::ifstream stream(file, std::ios::binary);
    stream.read(start.data(), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<std::size_t>(stream.gcount()));
    return start;
}

}  // namespace

bool IsPicture(const std::filesystem::path& file) {
    constexpr std::string_view starts[] = {"\x89PNG", "\xFF\xD8\xFF", "GIF8", "BM",
                                           std::string_view("\0\0\1\0", 4)};
    const std::string start = StartOf(file);
    return start.find("<svg") != std::string::npos ||
           std::any_of(std::begin(starts), std::end(starts),
                       [&](std::string_view known) { return start.starts_with(known); });
}

}  // namespace lng
