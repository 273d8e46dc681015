// What a check has found.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "source/Source.h"

namespace lng {

// The fields that tell a row from the others of its table, with what they hold.
using RowKey = std::vector<std::pair<std::string, std::string>>;

// Where something is. Table, row and field stay empty for what concerns all of them.
struct Place {
    std::string database;
    std::string table = {};
    RowKey row = {};
    std::string field = {};
};

struct Finding {
    Place place;
    std::string message;
    int line = 0;  // in the source; 0 where there is none
};

class Findings {
  public:
    // The same finding twice counts once.
    void Add(const Place& place, const std::string& message);
    // What was not looked at, and why.
    void Note(const std::string& text) { notes_.push_back(text); }
    // Gives each finding the line that it has in the source which the databases were made of, and puts them
    // into the order of their lines.
    void FindLines(const Source& source);

    const std::vector<Finding>& All() const { return findings_; }
    const std::vector<std::string>& Notes() const { return notes_; }

    // Lines of "[FILE:LINE: ]DATABASE: table T, row KEY, field F: message".
    std::string AsText(const std::string& sourcePath) const;
    // One object with "faults" and "notes".
    std::string AsJson(const std::string& sourcePath) const;

  private:
    std::vector<Finding> findings_;
    std::vector<std::string> notes_;
};

// "MsgNo 2" or "ObjectName cmdButton, Index 1".
std::string KeyText(const RowKey& key);

}  // namespace lng
