#include "host/Options.h"

#include <charconv>

#include "host/Store.h"
#include "platform/runtime/RuntimeError.h"

namespace switchdesk {

namespace {

using platform::FromUtf8;

[[noreturn]] void Refuse(const std::string& why) {
    throw platform::RuntimeError(5, FromUtf8(why));
}

double Minutes(const std::string& text) {
    double minutes = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), minutes);
    if (error != std::errc() || end != text.data() + text.size())
        Refuse("--offset wants minutes, not " + text);
    return minutes;
}

bool TakeSwitch(const std::string& name, Options& options) {
    if (name == "service") return options.service = true;
    if (name == "verbose") return options.verbose = true;
    if (name == "trace") return options.trace = true;
    if (name == "help") return options.help = true;
    return false;
}

bool TakeValue(const std::string& name, const std::string& value, Options& options) {
    if (name == "exchange") return options.exchanges.push_back(FromUtf8(value)), true;
    if (name == "open") return options.open = FromUtf8(value), true;
    if (name == "market") return options.market = value, true;
    if (name == "offset") return options.minutesAhead = Minutes(value), true;
    if (name == "store") return options.store = value, true;
    if (name == "log") return options.log = value, true;
    return false;
}

bool IsPlain(const std::string& name) {
    return name == "exchange" || name == "open" || name == "market" || name == "offset" || name == "store" ||
           name == "log";
}

// One option: "--name=value", or the plain ones also as "--name value". Gives how many arguments it took.
std::size_t TakeOption(const std::vector<std::string>& arguments, std::size_t at, Options& options) {
    const std::string& argument = arguments[at];
    if (!argument.starts_with("--")) Refuse("\"" + argument + "\" is no option; see --help");
    const std::size_t equals = argument.find('=');
    const std::string name = argument.substr(2, equals == argument.npos ? equals : equals - 2);
    if (equals == argument.npos) {
        if (TakeSwitch(name, options)) return 1;
        if (!IsPlain(name)) Refuse("--" + name + " is no option, or lacks its value; see --help");
        if (at + 1 == arguments.size()) Refuse("--" + name + " lacks its value");
        TakeValue(name, arguments[at + 1], options);
        return 2;
    }
    const std::string value = argument.substr(equals + 1);
    if (!TakeValue(name, value, options) && !TakeMisbehaviour(name, value, options.misbehaviour))
        Refuse("--" + name + " is no option, or can't be \"" + value + "\"; see --help");
    return 1;
}

}  // namespace

Options ParseOptions(const std::vector<std::string>& arguments) {
    Options options;
    options.store = DefaultStoreFile();
    for (std::size_t at = 0; at < arguments.size();) at += TakeOption(arguments, at, options);
    if (options.exchanges.empty()) options.exchanges = {u"Main Office", u"Warehouse", u"Branch 3"};
    return options;
}

std::string HelpText() {
    return std::string(R"(switchdesk: a small host of telephone exchanges, with simulated exchanges behind it

  --exchange NAME         an exchange; repeat it for more. Without it: Main Office, Warehouse, Branch 3
  --open NAME             opens the clock add-in for this exchange at the start
  --offset MINUTES        how far the exchanges' clocks are ahead of this computer's at the start
  --market CODE           market code in the class name of the exchange object; 10001 without it
  --store FILE            keeps the add-ins' named values there instead of the user's data directory
  --log FILE              writes every call that the host sees into a file, one line each
  --verbose               writes them to the standard output too
  --trace                 makes the add-in report ignored failures on its standard error, which goes to the log
                          of the bus that starts it
  --service               serves the exchange object without a window, and ends when nobody holds one
  --help                  this text

Options with a value take it behind a blank or behind "="; those below behind "=" only.

)") + std::string(MisbehaviourHelp());
}

}  // namespace switchdesk
