#include "horalink-setup/Market.h"

#include <algorithm>

#include "common/Fault.h"

namespace setup {

namespace {

constexpr std::size_t codeLength = 5;

bool IsAllowed(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
}

char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

std::string CheckedMarket(const std::string& code) {
    std::string market = code;
    std::transform(market.begin(), market.end(), market.begin(), Upper);
    if (market.size() != codeLength || !std::all_of(market.begin(), market.end(), IsAllowed))
        throw tools::WrongCall("'" + code + "' is no market code: it has five letters, digits, '_' or '-'");
    return market;
}

std::string ExchangeClass(const std::string& market) {
    return "SwitchDeskProj" + market + ".cPBXOle";
}

}  // namespace setup
