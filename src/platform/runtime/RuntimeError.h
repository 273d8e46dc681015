// Run-time errors: the one exception that carries a failure, and what is done with one that goes no further.
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

// The error state of a routine that is marked to skip: set by a skipped failure until it is cleared.
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

// Writes a line on what the program passes over to standard error, where the environment has
// HORALINK_TRACE=1.
void Trace(std::string_view line);
void TraceSkipped(std::string_view statement, const RuntimeError& error);

// Runs one statement. A run-time error abandons it, is noted in `state` and traced under `name`, and the
// caller goes on.
template <class Statement>
void Skip(ErrorState& state, std::string_view name, Statement&& statement) {
    try {
        statement();
    } catch (const RuntimeError& error) {
        state.Set(error);
        TraceSkipped(name, error);
    }
}

// Writes a failure that no routine has met to standard error.
void ReportUnhandled(const RuntimeError& error);

// Where a call from outside enters: runs an event. A run-time error that no routine has met ends the event
// and is reported; the process goes on. `End` is no run-time error and passes.
template <class Event>
void Guard(Event&& event) {
    try {
        event();
    } catch (const RuntimeError& error) {
        ReportUnhandled(error);
    }
}

}  // namespace platform
