// Texts that are read as dates and numbers, one a line.
#include <cmath>
#include <sstream>

#include "FuzzTarget.h"
#include "platform/runtime/Date.h"
#include "platform/runtime/Value.h"

namespace {

using namespace platform;

void Read(const Text& text) {
    try {
        const Date date = DateOfText(text);
        const double difference = MakeDate(PartsOf(date)).days - date.days;
        horalink::fuzz::Require(std::abs(difference) < 1e-4, "the parts of a date make it");
    } catch (const RuntimeError&) {
    }
    try {
        Value(text).ToInteger();
    } catch (const RuntimeError&) {
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream lines(std::string(horalink::fuzz::Bytes(data, size)));
    for (std::string line; std::getline(lines, line);) Read(FromUtf8(line));
    return 0;
}
