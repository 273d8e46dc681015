// What is alike in the tools: words in, an exit status out.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

using Words = std::vector<std::string>;

// Exit statuses. 1: something is wrong with what the call is about. 2: the call means nothing.
constexpr int done = 0, faulty = 1, wrongCall = 2;

struct Command {
    std::string_view name;
    std::function<int(const Words& words)> run;
    // Its words are another program's, which may have a --help of its own.
    bool passesWordsOn = false;
};

struct Program {
    std::string_view name, usage, version;
    std::vector<Command> commands;
};

// Runs the command that the first word names, or shows usage or version, and returns the exit status. Tells
// of every Fault and WrongCall on the standard error stream.
int Run(const Program& program, const Words& words);

// To the standard output stream. Raises Fault where it can't be written.
void Print(std::string_view text);

// A line on the standard error stream, behind the name of the program that says it.
void Tell(std::string_view program, std::string_view text);

}  // namespace tools
