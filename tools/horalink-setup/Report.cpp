#include "horalink-setup/Report.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace setup {

namespace {

std::string Joined(const std::vector<std::string>& parts, const std::string& between) {
    std::string joined;
    for (const std::string& part : parts) joined += (joined.empty() ? "" : between) + part;
    return joined;
}

std::string Padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string StateInWords(const std::string& state) {
    if (state == "startable") return "started when it is wanted";
    return state == "running" ? "running" : "not known to the bus";
}

std::string TextOf(const InstallationReport& installation) {
    std::string text = "\nMarket " + installation.market + (installation.inUse ? ", in use" : "") + "\n";
    text += "  directory  " + installation.root + "\n";
    text += "  language   " + (installation.language.empty() ? "texts of your own" : installation.language) +
            "\n";
    for (const DatabaseReport& database : installation.databases)
        text += "  " + Padded(database.what, 22) + (database.fault.empty() ? "opens" : "FAULTY") + "\n";
    return text;
}

std::string TextOf(const std::vector<ClassReport>& classes) {
    if (classes.empty()) return {};
    std::string text = "\nClass names on the session bus\n";
    for (const ClassReport& one : classes)
        text += "  " + Padded(one.name, 30) + StateInWords(one.state) + "\n";
    return text;
}

std::string TextOf(const std::vector<Problem>& problems) {
    if (problems.empty()) return "\nNothing is wrong.\n";
    std::string text = problems.size() == 1 ? "\nOne thing is wrong:\n"
                                            : "\n" + std::to_string(problems.size()) + " things are wrong:\n";
    for (const Problem& problem : problems) text += "  - " + problem.what + "\n    " + problem.remedy + "\n";
    return text;
}

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            quoted += {'\\', c};
        } else if (static_cast<unsigned char>(c) < ' ') {
            char code[8];
            std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned char>(c));
            quoted += code;
        } else {
            quoted += c;
        }
    }
    return quoted + '"';
}

using Members = std::vector<std::pair<std::string, std::string>>;

std::string JsonObject(const Members& members) {
    std::vector<std::string> parts;
    for (const auto& [name, value] : members) parts.push_back(Quoted(name) + ": " + value);
    return "{" + Joined(parts, ", ") + "}";
}

template <class List, class Write>
std::string JsonArray(const List& list, Write&& write) {
    std::vector<std::string> parts;
    for (const auto& item : list) parts.push_back(write(item));
    return "[" + Joined(parts, ", ") + "]";
}

std::string JsonOf(const DatabaseReport& database) {
    return JsonObject({{"what", Quoted(database.what)},
                       {"file", Quoted(database.file)},
                       {"opens", database.fault.empty() ? "true" : "false"},
                       {"fault", Quoted(database.fault)}});
}

std::string JsonOf(const InstallationReport& installation) {
    return JsonObject({{"market", Quoted(installation.market)},
                       {"directory", Quoted(installation.root)},
                       {"language", Quoted(installation.language)},
                       {"inUse", installation.inUse ? "true" : "false"},
                       {"databases", JsonArray(installation.databases,
                                               [](const DatabaseReport& one) { return JsonOf(one); })}});
}

std::string JsonOf(const ClassReport& one) {
    return JsonObject(
        {{"name", Quoted(one.name)}, {"state", Quoted(one.state)}, {"serviceFile", Quoted(one.file)}});
}

std::string JsonOf(const Problem& problem) {
    return JsonObject({{"what", Quoted(problem.what)}, {"remedy", Quoted(problem.remedy)}});
}

}  // namespace

std::string TextOf(const Report& report) {
    std::string text = "Horalink " + report.version + "\n  package    " + report.package + "\n";
    if (!report.languages.empty()) text += "  languages  " + Joined(report.languages, ", ") + "\n";
    if (report.installations.empty())
        text += "\nNo market is entered for you yet. The first start does it, or 'horalink-setup add'.\n";
    for (const InstallationReport& installation : report.installations) text += TextOf(installation);
    return text + TextOf(report.classes) + TextOf(report.problems);
}

std::string JsonOf(const Report& report) {
    const auto json = [](const auto& one) { return JsonOf(one); };
    return JsonObject({{"version", Quoted(report.version)},
                       {"package", Quoted(report.package)},
                       {"languages", JsonArray(report.languages, Quoted)},
                       {"installations", JsonArray(report.installations, json)},
                       {"classes", JsonArray(report.classes, json)},
                       {"problems", JsonArray(report.problems, json)}}) +
           "\n";
}

}  // namespace setup
