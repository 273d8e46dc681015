#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "horalink-setup/Market.h"
#include "horalink-setup/Status.h"

namespace {

constexpr const char* usage =
    R"(Usage: horalink-setup status
       horalink-setup market CODE
       horalink-setup --help | --version

  status   shows what a start of the add-in would use: each file, what it hides,
           its language, whether the register can be written, and who serves
           the classes on the session bus; and what is wrong, with a remedy
  market   makes hosts get the add-in of another market: those of every user
           where root runs it, your own otherwise; 10001 is the usual one

The exit status is 0 when all is well, 1 when something is wrong, and 2 for an
unknown command. See horalink-setup(1) for more.
)";

int Show(const std::string& text, int status = 0) {
    std::fputs(text.c_str(), stdout);
    return status;
}

int Run(const std::vector<std::string>& words) {
    const std::string command = words.empty() ? "" : words[0];
    if (words.size() == 1 && (command == "--help" || command == "-h")) return Show(usage);
    if (words.size() == 1 && command == "--version") return Show("horalink-setup " HORALINK_VERSION "\n");
    if (words.size() == 2 && command == "market")
        return Show(setup::ChooseMarket(setup::CheckedMarket(words[1])) + "\n");
    if (words.size() != 1 || command != "status") throw std::invalid_argument("unknown command");
    bool isWell = true;
    const std::string status = setup::Status(isWell);
    return Show(status, isWell ? 0 : 1);
}

int Complain(const std::string& why, int status) {
    std::fprintf(stderr, "horalink-setup: %s\n", why.c_str());
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run({argv + 1, argv + argc});
    } catch (const std::invalid_argument& error) {
        return Complain(error.what() + std::string("; see horalink-setup --help"), 2);
    } catch (const std::exception& error) {
        return Complain(error.what(), 1);
    }
}
