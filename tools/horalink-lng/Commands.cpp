#include "Commands.h"

#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>

#include "Version.h"
#include "check/Check.h"
#include "common/CommandLine.h"
#include "common/Fault.h"
#include "common/NewFile.h"
#include "common/Program.h"
#include "jet/Import.h"
#include "source/SourceReader.h"
#include "source/SourceWriter.h"
#include "store/Build.h"
#include "store/Dump.h"

namespace lng {

namespace {

namespace fs = std::filesystem;

using tools::done;
using tools::faulty;
using tools::Print;

constexpr std::string_view programName = "horalink-lng";

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

void Tell(const std::string& text) {
    tools::Tell(programName, text);
}

void RequireFiles(const tools::CommandLine& line, const char* what) {
    if (line.Files().empty()) throw tools::WrongCall(std::string(what) + " is missing");
}

// A path that is a folder already, or that can only be one.
bool MeansFolder(const std::string& path) {
    std::error_code error;
    return path.back() == '/' || fs::is_directory(path, error);
}

int Build(const std::vector<std::string>& words) {
    const tools::CommandLine line(words, {"--output=", "--force"});
    RequireFiles(line, "the source");
    if (line.Files().size() > 1) throw tools::WrongCall("there is more than one source");
    const std::string output = line.Required("--output");
    const Source source = ReadSource(line.Files().front());
    if (source.databases.size() > 1 || MeansFolder(output))
        BuildInto(source, output, line.Has("--force"));
    else
        BuildAs(source, output, line.Has("--force"));
    return done;
}

int Dump(const std::vector<std::string>& words) {
    const tools::CommandLine line(words, {"--output=", "--force"});
    RequireFiles(line, "the database");
    Source source;
    for (const std::string& file : line.Files()) {
        DumpedDatabase dumped = DumpDatabase(file);
        for (const std::string& what : dumped.notKept) Tell(file + ": not kept: " + what);
        for (const DatabaseSource& other : source.databases)
            if (SameName(other.fileName, dumped.source.fileName))
                throw tools::Fault(file + ": a database of this name was given before");
        source.databases.push_back(std::move(dumped.source));
    }
    const std::string text = WriteSource(source);
    if (!line.Has("--output")) {
        Print(text);
        return done;
    }
    tools::NewFile result(line.Required("--output"), line.Has("--force"));
    result.Write(text);
    result.Commit();
    return done;
}

std::optional<fs::path> PathOf(const tools::CommandLine& line, const std::string& option) {
    if (!line.Has(option)) return std::nullopt;
    return line.Required(option);
}

int Check(const std::vector<std::string>& words) {
    const tools::CommandLine line(words, {"--backgrounds=", "--common=", "--help-file=", "--json"});
    RequireFiles(line, "the source or database");
    const CheckedFiles files{{line.Files().begin(), line.Files().end()},
                             PathOf(line, "--common"),
                             PathOf(line, "--help-file"),
                             PathOf(line, "--backgrounds")};
    const Findings findings = CheckSet(files);
    if (line.Has("--json")) {
        Print(findings.AsJson(files.SourcePath()));
    } else {
        Print(findings.All().empty() ? "No fault was found.\n" : findings.AsText(files.SourcePath()));
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
    const tools::CommandLine line(words, {"--output=", "--force"});
    RequireFiles(line, "the file to import");
    const std::string output = line.Required("--output");
    std::vector<ImportedDatabase> imported;
    for (const std::string& file : line.Files()) imported.push_back(ImportJet(file));
    tools::MakeFiles(ImportTargets(line.Files(), output), line.Has("--force"),
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

}  // namespace

int RunTool(const std::vector<std::string>& words) {
    return tools::Run({programName,
                       usage,
                       version,
                       {{"build", Build}, {"check", Check}, {"dump", Dump}, {"import", Import}}},
                      words);
}

}  // namespace lng
