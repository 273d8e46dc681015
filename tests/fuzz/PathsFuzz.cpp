// The step from a path with backslashes to a real one.
#include "FuzzTarget.h"
#include "platform/desktop/Paths.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace horalink;
    const platform::Text text = platform::FromUtf8(fuzz::Bytes(data, size));
    const std::filesystem::path path = platform::RealPath(text);
    if (path.is_absolute()) {
        for (const auto& component : path) fuzz::Require(component != "..", "no step upwards is left");
        fuzz::Require(platform::RealPath(platform::PathText(path)) == path, "a real path stays what it is");
    }
    platform::Dir(text);
    return 0;
}
