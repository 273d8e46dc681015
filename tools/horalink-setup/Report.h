// What `status` found, for people and for programs.
#pragma once

#include <string>
#include <vector>

namespace setup {

struct Problem {
    std::string what;    // a sentence
    std::string remedy;  // another
};

struct DatabaseReport {
    std::string what;  // "texts of the add-in"
    std::string file;
    std::string fault;  // empty where it opens and holds what it should
};

struct InstallationReport {
    std::string market, root, language;
    bool inUse = false;
    std::vector<DatabaseReport> databases;
};

struct ClassReport {
    std::string name;
    std::string state;  // "running", "startable" or "unknown"
    std::string file;   // the service file that the bus takes, empty where there is none
};

struct Report {
    std::string version, package;
    std::vector<std::string> languages;
    std::vector<InstallationReport> installations;
    std::vector<ClassReport> classes;
    std::vector<Problem> problems;
};

std::string TextOf(const Report& report);
std::string JsonOf(const Report& report);

}  // namespace setup
