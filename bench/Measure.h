// What the measuring programs share: each prints a line of numbers for each run.
#pragma once

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace bench {

template <std::size_t Count>
void PrintRun(const std::array<double, Count>& numbers) {
    for (const double number : numbers) std::printf("%.4f ", number);
    std::puts("");
}

// The microseconds that each call takes, on average over `times` rounds of all of them in turn.
template <typename... Calls>
std::array<double, sizeof...(Calls)> TimesOf(int times, Calls... calls) {
    std::array<double, sizeof...(Calls)> sums{};
    const auto add = [](double& sum, auto& call) {
        const auto start = std::chrono::steady_clock::now();
        call();
        sum += std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
    };
    for (int i = 0; i < times; ++i) {
        std::size_t next = 0;
        (add(sums[next++], calls), ...);
    }
    for (double& sum : sums) sum /= times;
    return sums;
}

// Runs a program's work, and returns its status.
template <typename Work>
int Measure(Work work) {
    try {
        work();
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return EXIT_FAILURE;
    }
}

}  // namespace bench
