// What ends a command: a fault of the files, or a call that means nothing.
#pragma once

#include <stdexcept>
#include <string>

namespace tools {

// Something is wrong with a file; the words are for the one who called. Exit status 1.
class Fault : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The command line is wrong. Exit status 2.
class WrongCall : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace tools
