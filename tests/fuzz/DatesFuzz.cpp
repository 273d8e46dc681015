// Texts that are read as dates and numbers.
#include "FuzzTarget.h"
#include "platform/runtime/Date.h"
#include "platform/runtime/Value.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace platform;
    const Text text = FromUtf8(horalink::fuzz::Bytes(data, size));
    try {
        const Date date = DateOfText(text);
        const DateParts parts = PartsOf(date);
        const Date again = MakeDate(parts);
        const double difference = again.days - date.days;
        horalink::fuzz::Require(difference < 1e-4 && difference > -1e-4, "the parts of a date make it");
    } catch (const RuntimeError&) {
    }
    try {
        Value(text).ToInteger();
    } catch (const RuntimeError&) {
    }
    return 0;
}
