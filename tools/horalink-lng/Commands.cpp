#include "Commands.h"

#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>

#include "CommandLine.h"
#include "Fault.h"
#include "Version.h"
#include "check/Check.h"
#include "jet/Import.h"
#include "source/SourceReader.h"
#include "source/SourceWriter.h"
#include "store/Build.h"
#include "store/Dump.h"
#include "store/NewFile.h"

namespace lng {

namespace {

namespace fs = std::filesystem;

constexpr int done = 0, faulty = 1, wrongCall = 2;

constexpr const char* usage =
    R"(Usage: horalink-lng build SOURCE --output PATH [--force]
       horalink-lng dump DATABASE... [--output FILE] [--force]
       horalink-lng check SOURCE | DATABASE... [--backgrounds DIR] [--json]
                          [--common FILE] [--help-file FILE]
       horalink-lng import FILE... --output PATH [--force]
       horalink-lng --help | --version

Makes the databases of Horalink out of texts that an editor can change.

  build   makes the databases of a text source. PATH is a folder; for a source
          with one database it can also be the name of the file.
  dump    writes the text source of databases, by default to the terminal.
  check   reads a set of databases as Horalink does and reports every fault.
  import  copies the files of an existing installation (.mdb, .accdb) into
          databases of ours, table by table.

  --output PATH       where the result goes
  --force             replace files that are there already
  --backgrounds DIR   look for the picture files here
  --common FILE       the common texts, where they have another name
  --help-file FILE    the help file, where it has another name
  --json              report for programs

The exit status is 0 when all is well, 1 when a fault was found, and 2 for a
call that means nothing. See horalink-lng(1) for more.
)";

void Print(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        throw Fault("the output can't be written");
}

void Tell(const std::string& text) {
    std::fprintf(stderr, "horalink-lng: %s\n", text.c_str());
}

void RequireFiles(const CommandLine& line, const char* what) {
    if (line.Files().empty()) throw WrongCall(std::string(what) + " is missing");
}

// A path that is a folder already, or that can only be one.
bool MeansFolder(const std::string& path) {
    std::error_code error;
    return path.back() == '/' || fs::is_directory(path, error);
}

int Build(const std::vector<std::string>& words) {
    const CommandLine line(words, {"--output=", "--force"});
    RequireFiles(line, "the source");
    if (line.Files().size() > 1) throw WrongCall("there is more than one source");
    const std::string output = line.Required("--output");
    const Source source = ReadSource(line.Files().front());
    if (source.databases.size() > 1 || MeansFolder(output))
        BuildInto(source, output, line.Has("--force"));
    else
        BuildAs(source, output, line.Has("--force"));
    return done;
}

int Dump(const std::vector<std::string>& words) {
    const CommandLine line(words, {"--output=", "--force"});
    RequireFiles(line, "the database");
    Source source;
    for (const std::string& file : line.Files()) {
        DumpedDatabase dumped = DumpDatabase(file);
        for (const std::string& what : dumped.notKept) Tell(file + ": not kept: " + what);
        for (const DatabaseSource& other : source.databases)
            if (SameName(other.fileName, dumped.source.fileName))
                throw Fault(file + ": a database of this name was given before");
        source.databases.push_back(std::move(dumped.source));
    }
    const std::string text = WriteSource(source);
    if (!line.Has("--output")) {
        Print(text);
        return done;
    }
    NewFile result(line.Required("--output"), line.Has("--force"));
    result.Write(text);
    result.Commit();
    return done;
}

std::optional<fs::path> PathOf(const CommandLine& line, const std::string& option) {
    if (!line.Has(option)) return std::nullopt;
    return line.Required(option);
}

int Check(const std::vector<std::string>& words) {
    const CommandLine line(words, {"--backgrounds=", "--common=", "--help-file=", "--json"});
    RequireFiles(line, "the source or database");
    const CheckedFiles files{{line.Files().begin(), line.Files().end()},
                             PathOf(line, "--common"),
                             PathOf(line, "--help-file"),
                             PathOf(line, "--backgrounds")};
    const Findings findings = CheckSet(files);
    if (line.Has("--json")) {
        Print(findings.AsJson(files.SourcePath()));
    } else {
        Print(findings.AsText(files.SourcePath()));
        for (const std::string& note : findings.Notes()) Tell(note);
    }
    return findings.All().empty() ? done : faulty;
}

void TellOf(const ImportedDatabase& imported) {
    const std::string& name = imported.source.fileName;
    for (const Table& table : imported.source.tables)
        Print(name + ": table " + table.name + ": " + std::to_string(table.rows.size()) + " rows\n");
    for (const std::string& what : imported.notKept) Tell(name + ": not kept: " + what);
}

std::vector<fs::path> ImportTargets(const std::vector<std::string>& files, const std::string& output) {
    if (files.size() == 1 && !MeansFolder(output)) return {output};
    std::vector<fs::path> targets;
    for (const std::string& file : files) targets.push_back(fs::path(output) / fs::path(file).filename());
    return targets;
}

int Import(const std::vector<std::string>& words) {
    const CommandLine line(words, {"--output=", "--force"});
    RequireFiles(line, "the file to import");
    const std::string output = line.Required("--output");
    std::vector<ImportedDatabase> imported;
    for (const std::string& file : line.Files()) imported.push_back(ImportJet(file));
    MakeFiles(ImportTargets(line.Files(), output), line.Has("--force"),
              [&](std::size_t i, const fs::path& file) {
                  FillDatabase(line.Files()[i], imported[i].source, file);
                  RequireAllRows(imported[i].source, file);
              });
    bool lost = false;
    for (const ImportedDatabase& database : imported) {
        TellOf(database);
        lost |= database.lostValues;
    }
    return lost ? faulty : done;
}

struct Command {
    std::string_view name;
    int (*run)(const std::vector<std::string>& words);
};

constexpr Command commands[] = {{"build", Build}, {"check", Check}, {"dump", Dump}, {"import", Import}};

bool AsksForHelp(const std::vector<std::string>& words) {
    for (const std::string& word : words)
        if (word == "--help" || word == "-h") return true;
    return false;
}

int Dispatch(const std::vector<std::string>& words) {
    if (AsksForHelp(words)) {
        Print(usage);
        return done;
    }
    if (words.empty()) throw WrongCall("the command is missing");
    if (words.front() == "--version") {
        Print(std::string("horalink-lng ") + version + "\n");
        return done;
    }
    for (const Command& command : commands)
        if (command.name == words.front()) return command.run({words.begin() + 1, words.end()});
    throw WrongCall("'" + words.front() + "' is no command");
}

}  // namespace

int RunTool(const std::vector<std::string>& words) {
    try {
        return Dispatch(words);
    } catch (const WrongCall& call) {
        Tell(std::string(call.what()) + "; see horalink-lng --help");
        return wrongCall;
    } catch (const std::exception& failure) {
        Tell(failure.what());
        return faulty;
    }
}

}  // namespace lng
