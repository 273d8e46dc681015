#include "jet/JetFile.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <system_error>

#include "common/Fault.h"
#include "jet/Process.h"

namespace lng {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view nullMark = "\\N";
constexpr const char* dateFormat = "%Y-%m-%d %H:%M:%S";
constexpr std::string_view systemPrefix = "MSys";  // of what every file has
constexpr std::size_t headLength = 4096;

std::string HeadOf(const fs::path& file) {
    std::string head(headLength, '\0');
    std::ifstream stream(file, std::ios::binary);
    stream.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(stream.gcount()));
    return head;
}

void RequireJet(const fs::path& file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error)) throw tools::Fault(file.string() + ": there is no such file");
    const std::string head = HeadOf(file);
    const std::string_view kind = std::string_view(head).substr(0, 19);
    if (!kind.ends_with("Standard Jet DB") && !kind.ends_with("Standard ACE DB"))
        throw tools::Fault(file.string() + ": this is no database in the Jet format (.mdb, .accdb)");
    if (head.find("<encryption") != std::string::npos)
        throw tools::Fault(
            file.string() +
            ": the file is encrypted with a password and can't be read; take the password off in the "
            "program that made the file, then try again");
}

// More than any file can hold, with its binary data in digits and its texts unpacked. The programs write
// without end about some damaged files.
std::size_t OutputLimit(const fs::path& file) {
    constexpr std::size_t least = 1 << 20, growth = 16;
    std::error_code error;
    return least + growth * static_cast<std::size_t>(fs::file_size(file, error));
}

std::vector<std::string> LinesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const auto end = text.find('\n');
        if (const std::string line(text.substr(0, end)); line.find_first_not_of(" \r") != std::string::npos)
            lines.push_back(line);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

// "\t[NAME]\t\t\tTYPE (SIZE) NOT NULL, ", with the size and the rule left out where there is none.
JetColumn ColumnIn(const std::string& line) {
    const auto end = line.find("]\t");
    std::string type = line.substr(line.find_last_of('\t') + 1);
    for (const char* tail : {" (", " NOT NULL", ","}) type = type.substr(0, type.find(tail));
    type = type.substr(0, type.find_last_not_of(' ') + 1);
    return {line.substr(2, end - 2), type};
}

}  // namespace

JetFile::JetFile(const fs::path& file) : path_(fs::absolute(file)) {
    RequireJet(file);
    tables_ = Names({"-1"});
}

std::string JetFile::Ask(std::vector<std::string> call) const {
    const std::string program = call.front();
    const ProcessResult result = RunProcess(call, OutputLimit(path_));
    if (result.status == 0 && result.errors.empty()) return result.output;
    const auto lines = LinesOf(result.errors);
    throw tools::Fault(path_ + ": the file is damaged or encrypted: " + program + " ended with status " +
                       std::to_string(result.status) + (lines.empty() ? "" : " and says: " + lines.front()));
}

std::vector<std::string> JetFile::Names(std::vector<std::string> options) const {
    options.insert(options.begin(), "mdb-tables");
    options.push_back(path_);
    return LinesOf(Ask(std::move(options)));
}

std::vector<std::string> JetFile::OtherObjects() const {
    constexpr std::pair<const char*, const char*> kinds[] = {
        {"linkedtable", "linked tables, whose rows lie in other files"},
        {"query", "queries"},
        {"form", "forms"},
        {"report", "reports"},
        {"macro", "macros"},
        {"module", "modules"},
        {"relationship", "relations between tables"}};
    std::vector<std::string> others;
    for (const auto& [kind, wording] : kinds) {
        const auto names = Names({"-1", "-t", kind});
        const auto count = std::count_if(names.begin(), names.end(), [](const std::string& name) {
            return !name.starts_with(systemPrefix);
        });
        if (count > 0) others.push_back(std::string(wording) + ": " + std::to_string(count));
    }
    return others;
}

std::vector<JetColumn> JetFile::Columns(const std::string& table) const {
    const std::string schema = Ask({"mdb-schema", "--no-indexes", "--no-relations", "--no-default-values",
                                    "--no-comments", "-T", table, path_});
    std::vector<JetColumn> columns;
    for (const std::string& line : LinesOf(schema))
        if (line.starts_with("\t[")) columns.push_back(ColumnIn(line));
    if (columns.empty()) throw tools::Fault(path_ + ", table " + table + ": its fields can't be read");
    return columns;
}

std::vector<std::vector<CsvField>> JetFile::Rows(const std::string& table) const {
    const std::string text = Ask({"mdb-export", "-H", "-0", std::string(nullMark), "-b", "hex", "-D",
                                  dateFormat, "-T", dateFormat, path_, table});
    try {
        return ParseCsv(text, nullMark);
    } catch (const tools::Fault& fault) {
        throw tools::Fault(path_ + ", table " + table + ": " + fault.what());
    }
}

std::size_t JetFile::Count(const std::string& table) const {
    const std::string text = Ask({"mdb-count", path_, table});
    std::size_t count = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), count).ec != std::errc())
        throw tools::Fault(path_ + ", table " + table + ": its rows can't be counted");
    return count;
}

}  // namespace lng
