// Texts that are read as dates and numbers, one a line.
#include <cmath>
#include <sstream>

#include "FuzzTarget.h"
#include "platform/runtime/Date.h"
#include "platform/runtime/Value.h"

void horalink::fuzz::Try(std::string_view input) {
    using namespace platform;
    std::istringstream lines{std::string(input)};
    for (std::string line; std::getline(lines, line);) {
        const Text text = FromUtf8(line);
        ErrorOf([&] {
            const Date date = DateOfText(text);
            const double difference = MakeDate(PartsOf(date)).days - date.days;
            Require(std::abs(difference) < 1e-4, "the parts of a date make it");
        });
        ErrorOf([&] { Value(text).ToInteger(); });
    }
}
