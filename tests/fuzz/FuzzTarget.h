// What the targets share. A fault is whatever ends the process: a crash, a sanitizer, or Require.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace horalink::fuzz {

inline std::string_view Bytes(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

// Takes the first line of the input off it; for targets of two texts.
inline std::string_view TakeLine(std::string_view& input) {
    const std::size_t end = input.find('\n');
    const std::string_view line = input.substr(0, end);
    input = end == std::string_view::npos ? std::string_view() : input.substr(end + 1);
    return line;
}

}  // namespace horalink::fuzz
