// A file in the Jet format, read through the programs of mdbtools.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "jet/Csv.h"

namespace lng {

struct JetColumn {
    std::string name;
    std::string type;  // as mdb-schema names it, without a size: "Long Integer"
};

class JetFile {
  public:
    // Raises Fault for a file that is none, that is encrypted, or whose catalogue can't be read.
    explicit JetFile(const std::filesystem::path& file);

    const std::vector<std::string>& Tables() const { return tables_; }
    // What the catalogue names and no import can take along, such as "2 queries".
    std::vector<std::string> OtherObjects() const;
    std::vector<JetColumn> Columns(const std::string& table) const;
    // Dates as "2026-11-18 13:02:03", binary data in hexadecimal digits.
    std::vector<std::vector<CsvField>> Rows(const std::string& table) const;
    // The number of rows that the table's head tells.
    std::size_t Count(const std::string& table) const;

  private:
    // Runs one of the programs and returns what it writes. Raises Fault where it fails or complains.
    std::string Ask(std::vector<std::string> call) const;
    std::vector<std::string> Names(std::vector<std::string> options) const;

    std::string path_;
    std::vector<std::string> tables_;
};

}  // namespace lng
