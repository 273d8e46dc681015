// The text of an INI file: what its lines mean, and changes that leave everything else as it was.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/Text.h"

namespace platform {

class IniText {
  public:
    explicit IniText(std::string_view content);

    // The value of a key, the first where it stands there more than once. Names compare without regard to
    // case; blanks around names and values don't count.
    std::optional<Text> Value(TextView section, TextView key) const;

    // The names of the sections, in the order of the file.
    std::vector<Text> Sections() const;

    // Changes the value where the key stands, or adds it behind the last one of its section.
    void Set(TextView section, TextView key, TextView value);

    // Takes a key away wherever it stands, and the head of its section where nothing is left below it.
    void Remove(TextView section, TextView key);

    // Nothing but blank lines.
    bool IsBlank() const;

    std::string Content() const;

  private:
    enum class Kind { Blank, Other, Section, Value };
    struct Line {
        Kind kind = Kind::Blank;
        Text section;  // the one that the line lies in, or opens
        Text key, value;
        std::string written;  // with its line end

        bool Holds(TextView inSection, TextView name) const;
    };

    Line Read(std::string_view written, const Text& section) const;
    Line MakeLine(const Text& section, std::string_view text) const;
    void EndLastLine();
    void DropIfEmpty(TextView section);
    void DropBlankEnd();
    std::size_t FindKey(TextView section, TextView key) const;

    std::vector<Line> lines_;
    std::string lineEnd_ = "\n", mark_;
};

}  // namespace platform
