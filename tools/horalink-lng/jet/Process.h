// Other programs, started without a shell.
#pragma once

#include <string>
#include <vector>

namespace lng {

struct ProcessResult {
    std::string output, errors;
    // The exit status, or 128 and the number of the signal that ended the program.
    int status = 0;
};

// Runs a program from the search path to its end. Raises Fault where it isn't installed or can't be started,
// and where it says nothing for a minute or more than `limit` bytes; it is ended then.
ProcessResult RunProcess(const std::vector<std::string>& words, std::size_t limit = 1 << 20);

}  // namespace lng
