#include "Report.h"

#include <algorithm>
#include <iostream>

namespace lng {

void Report(const Place& place, const std::string& message) {
    std::string words = message;
    std::replace_if(
        words.begin(), words.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    std::cout << place.database << '\t' << place.table << '\t' << (place.row ? std::to_string(*place.row) : "")
              << '\t' << place.field << '\t' << words << '\n';
}

}  // namespace lng
