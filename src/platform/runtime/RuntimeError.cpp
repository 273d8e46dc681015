#include "platform/runtime/RuntimeError.h"

#include <cstdio>
#include <cstdlib>

namespace platform {

namespace {

std::string_view Wording(ErrorNumber number) {
    switch (number) {
        case ErrorNumber::InvalidProcedureCall:
            return "Invalid procedure call or argument";
        case ErrorNumber::Overflow:
            return "Overflow";
        case ErrorNumber::SubscriptOutOfRange:
            return "Subscript out of range";
        case ErrorNumber::TypeMismatch:
            return "Type mismatch";
        case ErrorNumber::FileNotFound:
            return "File not found";
        case ErrorNumber::ObjectNotSet:
            return "Object variable is not set";
        case ErrorNumber::InvalidUseOfNull:
            return "Invalid use of Null";
        case ErrorNumber::ObjectUnloaded:
            return "The object was unloaded";
        case ErrorNumber::InvalidPropertyValue:
            return "Invalid property value";
        case ErrorNumber::ReadOnlyProperty:
            return "The property is read-only";
        case ErrorNumber::ObjectRequired:
            return "Object required";
        case ErrorNumber::CannotCreateObject:
            return "The automation server can't create the object";
        case ErrorNumber::NoSuchMember:
            return "The object doesn't support this property or method";
        case ErrorNumber::AutomationError:
            return "Automation error";
        case ErrorNumber::WrongArgumentCount:
            return "Wrong number of arguments";
        case ErrorNumber::DuplicateKey:
            return "The key is already in use in this collection";
        case ErrorNumber::ServerGone:
            return "The remote server doesn't exist or can't be reached";
        case ErrorNumber::InvalidPicture:
            return "Invalid picture";
    }
    return "Application-defined error";
}

Text Describe(ErrorNumber number, std::string_view detail) {
    std::string description(Wording(number));
    if (!detail.empty()) description.append(": ").append(detail);
    return FromUtf8(description);
}

bool IsTraceWanted() {
    const char* value = std::getenv("HORALINK_TRACE");
    return value && std::string_view(value) == "1";
}

}  // namespace

RuntimeError::RuntimeError(ErrorNumber number, std::string_view detail)
    : RuntimeError(static_cast<std::int32_t>(number), Describe(number, detail)) {}

RuntimeError::RuntimeError(std::int32_t number, Text description)
    : number_(number), description_(std::move(description)), utf8_(ToUtf8(description_)) {}

void ErrorState::Set(const RuntimeError& error) {
    number_ = error.Number();
    description_ = error.Description();
}

void ErrorState::Clear() {
    number_ = 0;
    description_.clear();
}

void Trace(std::string_view line) {
    static const bool isWanted = IsTraceWanted();
    if (isWanted) std::fprintf(stderr, "horalink: %.*s\n", static_cast<int>(line.size()), line.data());
}

void TraceSkipped(std::string_view statement, const RuntimeError& error) {
    Trace(std::string(statement) + " skipped: error " + std::to_string(error.Number()) + ", " + error.what());
}

void ReportUnhandled(const RuntimeError& error) {
    std::fprintf(stderr, "unhandled run-time error %d: %s\n", static_cast<int>(error.Number()), error.what());
}

}  // namespace platform
