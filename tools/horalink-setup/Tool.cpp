#include "horalink-setup/Tool.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <optional>
#include <system_error>

#include "common/CommandLine.h"
#include "common/Fault.h"
#include "common/Program.h"
#include "horalink-setup/Commands.h"
#include "horalink-setup/Market.h"
#include "horalink-setup/Status.h"
#include "platform/automation/dbus/SessionBusNames.h"
#include "platform/data/sqlite/SqliteEngine.h"

namespace setup {

using tools::CommandLine;
using tools::done;
using tools::faulty;
using tools::Print;
using tools::Words;
using tools::WrongCall;

namespace {

constexpr const char* usage =
    R"(Usage: horalink-setup add [--market CODE] [--root DIRECTORY] [--language LANGUAGE]
                          [--from TREE] [--force]
       horalink-setup remove [--market CODE]
       horalink-setup use CODE
       horalink-setup language LANGUAGE [--market CODE] [--force]
       horalink-setup status [--json]
       horalink-setup start [--market CODE] horalink|switchdesk [ARGUMENT...]
       horalink-setup --help | --version

Enters Horalink for you, and tells what is wrong with it. Nothing of it needs to
be done by hand after the packages are installed: the first start enters market
10001 in the language of your desktop.

  add       enters a market, or mends and changes one that is entered
  remove    takes a market away again
  use       tells which market's add-in hosts get
  language  changes the language
  status    shows what is installed, and what is wrong in plain words
  start     runs a program of the market in use; enters it first if need be

  --market CODE        five letters, digits, '_' or '-'
  --root DIRECTORY     VELMORA32/CODE is made in it; your data directory by default
  --language LANGUAGE  a language that 'status' lists
  --from TREE          the installed tree to link to
  --force              replace files of your own and a register that can't be read,
                       and move a market that is entered
  --json               for programs

The exit status is 0 when all is well, 1 when something is wrong, and 2 for a
call that means nothing. See horalink-setup(1) for more.
)";

int PrintTold(const Told& told) {
    for (const std::string& sentence : told) Print(sentence + "\n");
    return done;
}

std::optional<std::string> ValueOf(const CommandLine& line, const std::string& option) {
    if (!line.Has(option)) return std::nullopt;
    return line.Required(option);
}

std::optional<std::string> MarketOf(const CommandLine& line) {
    const auto code = ValueOf(line, "--market");
    return code ? std::optional(CheckedMarket(*code)) : std::nullopt;
}

void RequireNoWords(const CommandLine& line) {
    if (!line.Files().empty()) throw WrongCall("'" + line.Files().front() + "' is too much");
}

std::string OnlyWord(const CommandLine& line, const std::string& what) {
    if (line.Files().empty()) throw WrongCall(what + " is missing");
    if (line.Files().size() > 1) throw WrongCall("'" + line.Files()[1] + "' is too much");
    return line.Files().front();
}

int RunAdd(const Context& context, const Words& words) {
    const CommandLine line(words, {"--market=", "--root=", "--language=", "--from=", "--force"});
    RequireNoWords(line);
    AddRequest request;
    request.market = MarketOf(line).value_or(defaultMarket);
    if (const auto root = ValueOf(line, "--root")) request.root = *root;
    if (const auto from = ValueOf(line, "--from")) request.from = *from;
    request.language = ValueOf(line, "--language");
    request.force = line.Has("--force");
    return PrintTold(Add(context, request));
}

int RunRemove(const Context& context, const Words& words) {
    const CommandLine line(words, {"--market="});
    RequireNoWords(line);
    return PrintTold(Remove(context, MarketOf(line)));
}

int RunUse(const Context& context, const Words& words) {
    const CommandLine line(words, {});
    return PrintTold(Use(context, CheckedMarket(OnlyWord(line, "the market code"))));
}

int RunLanguage(const Context& context, const Words& words) {
    const CommandLine line(words, {"--market=", "--force"});
    return PrintTold(
        ChangeLanguage(context, OnlyWord(line, "the language"), MarketOf(line), line.Has("--force")));
}

int RunStatus(const Context& context, const Words& words) {
    const CommandLine line(words, {"--json"});
    RequireNoWords(line);
    const Report report = Inspect(context);
    Print(line.Has("--json") ? JsonOf(report) : TextOf(report));
    return report.problems.empty() ? done : faulty;
}

// The words ahead of the program are the tool's own; all behind it are the program's, whatever they look
// like.
std::vector<std::string> StartCommand(const Context& context, const Words& words) {
    std::size_t own = 0;
    while (own < words.size() && words[own].starts_with("--")) own += words[own] == "--market" ? 2 : 1;
    own = std::min(own, words.size());
    const auto program = words.begin() + static_cast<std::ptrdiff_t>(own);
    const CommandLine line({words.begin(), program}, {"--market="});
    if (program == words.end()) throw WrongCall("the program is missing");
    if (*program != "horalink" && *program != "switchdesk")
        throw WrongCall("'" + *program + "' is no program of this installation");
    return CommandToStart(context, MarketOf(line), *program, {program + 1, words.end()});
}

int RunStart(const Context& context, const Words& words, const Execute& execute) {
    const auto command = StartCommand(context, words);
    execute(command);
    throw tools::Fault(command.front() + ": " + std::generic_category().message(errno));
}

// What the commands work on is looked up when one of them runs: a call for the usage needs no home and no
// bus.
template <typename Run>
std::function<int(const Words&)> InContext(Run run) {
    return [run](const Words& words) {
        const Places places = PlacesOfEnvironment();
        const auto engine = platform::MakeSqliteEngine();
        const auto bus = platform::MakeSessionBusNames();
        return run(Context{places, *engine, *bus}, words);
    };
}

}  // namespace

int RunTool(const std::vector<std::string>& words, const Execute& execute) {
    const auto start = [&](const Context& context, const Words& own) {
        return RunStart(context, own, execute);
    };
    return tools::Run({"horalink-setup",
                       usage,
                       HORALINK_VERSION,
                       {{"add", InContext(RunAdd)},
                        {"remove", InContext(RunRemove)},
                        {"use", InContext(RunUse)},
                        {"language", InContext(RunLanguage)},
                        {"status", InContext(RunStatus)},
                        {"start", InContext(start), true}}},
                      words);
}

}  // namespace setup
