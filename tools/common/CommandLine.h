// The words behind the name of a command.
#pragma once

#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

class CommandLine {
  public:
    // `options` are the names of options that a command knows; those that end in "=" want a value, which
    // follows behind "=" or as the next word. Raises WrongCall for any other option, one that is given twice,
    // and a value that is missing or too much.
    CommandLine(const std::vector<std::string>& words, std::initializer_list<std::string_view> options);

    const std::vector<std::string>& Files() const { return files_; }
    bool Has(const std::string& option) const { return values_.contains(option); }
    // The value of an option, empty where it isn't given.
    std::string Value(const std::string& option) const;
    // Raises WrongCall where the option isn't given.
    std::string Required(const std::string& option) const;

  private:
    std::vector<std::string> files_;
    std::map<std::string, std::string> values_;
};

}  // namespace tools
