// The step from a path with backslashes to a real one.
#include "FuzzTarget.h"
#include "platform/runtime/Paths.h"

void horalink::fuzz::Try(std::string_view input) {
    const platform::Text text = platform::FromUtf8(input);
    const std::filesystem::path path = platform::RealPath(text);
    if (path.is_absolute()) {
        for (const auto& component : path) Require(component != "..", "no step upwards is left");
        Require(platform::RealPath(platform::PathText(path)) == path, "a real path stays what it is");
    }
    platform::Dir(text);
}
