// Run-time errors: the one exception type for failures, and the functions that skip or report them.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "platform/runtime/Text.h"

namespace platform {

// Numbers of run-time errors that the platform raises.
enum class ErrorNumber : std::int32_t {
    InvalidProcedureCall = 5,
    Overflow = 6,
    SubscriptOutOfRange = 9,
    TypeMismatch = 13,
    FileNotFound = 53,
    ObjectNotSet = 91,
    InvalidUseOfNull = 94,
    ObjectUnloaded = 364,
    InvalidPropertyValue = 380,
    ReadOnlyProperty = 383,
    ObjectRequired = 424,
    CannotCreateObject = 429,
    NoSuchMember = 438,
    AutomationError = 440,
    WrongArgumentCount = 450,
    DuplicateKey = 457,
    ServerGone = 462,
    InvalidPicture = 481,
};

class RuntimeError : public std::exception {
  public:
    // With the platform's own wording for `number`; `detail`, if given, says what it concerns.
    explicit RuntimeError(ErrorNumber number, std::string_view detail = {});
    RuntimeError(std::int32_t number, Text description);

    std::int32_t Number() const { return number_; }
    const Text& Description() const { return description_; }
    const char* what() const noexcept override { return utf8_.c_str(); }

  private:
    std::int32_t number_;
    Text description_;
    std::string utf8_;
};

// The error state of a routine that skips failures: the last one skipped, until it is cleared.
class ErrorState {
  public:
    bool IsSet() const { return number_ != 0; }
    std::int32_t Number() const { return number_; }
    const Text& Description() const { return description_; }
    void Set(const RuntimeError& error);
    void Clear();

  private:
    std::int32_t number_ = 0;
    Text description_;
};

// Writes a diagnostic line to standard error if HORALINK_TRACE=1 is set in the environment.
void Trace(std::string_view line);
void TraceSkipped(std::string_view statement, const RuntimeError& error);

// Runs one statement. A run-time error ends it, is stored in `state` and traced with `name`; the caller
// continues.
template <class Statement>
void Skip(ErrorState& state, std::string_view name, Statement&& statement) {
    try {
        statement();
    } catch (const RuntimeError& error) {
        state.Set(error);
        TraceSkipped(name, error);
    }
}

// Writes a failure that no routine has handled to standard error.
void ReportUnhandled(const RuntimeError& error);

// Runs an event, at the point where a call from outside enters. A run-time error that no routine has handled
// ends the event and is reported; the process continues. Other exceptions pass through.
template <class Event>
void Guard(Event&& event) {
    try {
        event();
    } catch (const RuntimeError& error) {
        ReportUnhandled(error);
    }
}

}  // namespace platform
