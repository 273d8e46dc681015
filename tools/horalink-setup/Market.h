// Market codes, and the names that hold one.
#pragma once

#include <string>

namespace setup {

// The market that programs work for where nothing tells another one.
inline constexpr const char* defaultMarket = "10001";

// The code as programs read it out of their path, in upper case. Five letters, digits, "_" or "-": it is a
// directory, a section of the settings store and a part of a name on the bus. Raises WrongCall for any other.
std::string CheckedMarket(const std::string& code);

// The class of the exchange object of a market's host.
std::string ExchangeClass(const std::string& market);

inline constexpr const char* addInClass = "Horalink10013.cOLELayer";

}  // namespace setup
