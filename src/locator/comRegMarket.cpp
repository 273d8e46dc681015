#include "locator/comRegMarket.h"

#include "platform/runtime/Value.h"

namespace horalink {

namespace {

using namespace platform;

constexpr TextView none = u"NONE";
constexpr TextView familyDirectory = u"VELMORA32";
constexpr std::size_t codeLength = 5;

// ...VELMORA32?ccccc?KEYWD: the family's directory, the market code, the keyword of six characters.
Text CodeAboveKeyword(TextView appPath, TextView key) {
    const Text tail = UpperCase(Right(appPath, 22));
    return Mid(tail, 1, 9) == familyDirectory && Mid(tail, 17, 6) == key ? Mid(tail, 11, codeLength)
                                                                         : Text(none);
}

// ...KEY?ccccc: any other application carries the code one level below its own directory.
Text CodeBelowKeyword(TextView appPath, TextView key, std::int16_t length) {
    const auto n = static_cast<std::size_t>(length);
    const Text tail = UpperCase(Right(appPath, n + 1 + codeLength));
    return Mid(tail, 1, n) == key ? Mid(tail, n + 2, codeLength) : Text(none);
}

}  // namespace

Text GetMarketCode(TextView appPath, TextView directory) {
    const Text key = UpperCase(directory);
    if (key == u"MORA32" || key == u"ADDINS") return CodeAboveKeyword(appPath, key);
    return CodeBelowKeyword(appPath, key, Value(static_cast<std::int32_t>(directory.size())).ToInteger());
}

}  // namespace horalink
