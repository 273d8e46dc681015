// Looks up an exchange's answer text; the floor is one pass of memcmp over as many texts.
#include <benchmark/benchmark.h>

#include <cstring>
#include <iterator>

#include "request/comTools.h"

namespace {

using platform::TextView;

// Known texts from both ends and the middle of the table, and two unknown ones: one differs from the first
// letter on, one only in its last.
constexpr TextView asked[] = {u"DIGIT ERROR",
                              u"OK",
                              u"COMMAND=",
                              u"LNK_MEM OVERFLOW",
                              u"LNK_STN_ZOLANIP",
                              u"11/18 WED",
                              u"LNK_INVALID FILENAM?",
                              u"PADDING PADDING LNK_STN_NOT ASSIGNED"};

// A table of as many texts, of their median length.
constexpr std::size_t tableSize = 57, middleLength = 12;
char16_t table[tableSize][middleLength];

void LookUp(benchmark::State& state) {
    std::size_t next = 0;
    for (auto _ : state) {
        TextView text = asked[next++ % std::size(asked)];
        benchmark::DoNotOptimize(text);
        benchmark::DoNotOptimize(horalink::LookupAnswerText(text));
    }
}

void Memcmp(benchmark::State& state) {
    for (auto& entry : table) std::memcpy(entry, u"LNK_ANSWER__", sizeof entry);
    std::size_t next = 0;
    for (auto _ : state) {
        char16_t padded[middleLength] = {};
        asked[next++ % std::size(asked)].copy(padded, middleLength);
        std::size_t bytes = sizeof padded;
        std::size_t found = 0;
        for (const auto& entry : table) {
            benchmark::DoNotOptimize(bytes);  // with a constant length memcmp would be inlined
            if (std::memcmp(entry, padded, bytes) == 0) ++found;
        }
        benchmark::DoNotOptimize(found);
    }
}

}  // namespace

BENCHMARK(LookUp);
BENCHMARK(Memcmp);
BENCHMARK_MAIN();
