// What the targets share. A fault is whatever ends the process: a crash, a sanitizer, or Require.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "harness/Cases.h"

namespace horalink::fuzz {

// Takes one input. Each target defines it.
void Try(std::string_view input);

inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

}  // namespace horalink::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    horalink::fuzz::Try({reinterpret_cast<const char*>(data), size});
    return 0;
}
