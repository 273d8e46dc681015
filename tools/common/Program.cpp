#include "common/Program.h"

#include <algorithm>
#include <cstdio>

#include "common/Fault.h"

namespace tools {

namespace {

bool IsHelp(const std::string& word) {
    return word == "--help" || word == "-h";
}

const Command* Find(const Program& program, const std::string& name) {
    const auto found = std::find_if(program.commands.begin(), program.commands.end(),
                                    [&](const Command& command) { return command.name == name; });
    return found == program.commands.end() ? nullptr : &*found;
}

int Dispatch(const Program& program, const Words& words) {
    if (words.empty()) throw WrongCall("the command is missing");
    const Command* command = Find(program, words.front());
    const auto own = command && command->passesWordsOn ? words.begin() : words.end();
    if (IsHelp(words.front()) || std::any_of(words.begin(), own, IsHelp)) return Print(program.usage), done;
    if (words.front() == "--version")
        return Print(std::string(program.name) + " " + std::string(program.version) + "\n"), done;
    if (!command) throw WrongCall("'" + words.front() + "' is no command");
    return command->run({words.begin() + 1, words.end()});
}

}  // namespace

int Run(const Program& program, const Words& words) {
    try {
        return Dispatch(program, words);
    } catch (const WrongCall& call) {
        Tell(program.name, std::string(call.what()) + "; see " + std::string(program.name) + " --help");
        return wrongCall;
    } catch (const std::exception& failure) {
        Tell(program.name, failure.what());
        return faulty;
    }
}

void Print(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        throw Fault("the output can't be written");
}

void Tell(std::string_view program, std::string_view text) {
    std::fprintf(stderr, "%.*s: %.*s\n", static_cast<int>(program.size()), program.data(),
                 static_cast<int>(text.size()), text.data());
}

}  // namespace tools
