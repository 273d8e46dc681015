#include "common/CommandLine.h"

#include <algorithm>
#include <optional>

#include "common/Fault.h"

namespace tools {

namespace {

struct Word {
    std::string name;
    std::optional<std::string> value;
};

Word Split(const std::string& word) {
    const auto sign = word.find('=');
    if (sign == std::string::npos) return {word, std::nullopt};
    return {word.substr(0, sign), word.substr(sign + 1)};
}

}  // namespace

CommandLine::CommandLine(const std::vector<std::string>& words,
                         std::initializer_list<std::string_view> options) {
    const auto knows = [&](const std::string& name) {
        return std::find(options.begin(), options.end(), name) != options.end();
    };
    bool onlyFiles = false;
    for (auto word = words.begin(); word != words.end(); ++word) {
        if (onlyFiles || word->size() < 2 || word->front() != '-') {
            files_.push_back(*word);
            continue;
        }
        if ((onlyFiles = *word == "--")) continue;
        auto [name, value] = Split(*word);
        const bool wantsValue = knows(name + "=");
        if (!wantsValue && !knows(name)) throw WrongCall("'" + name + "' is no option of this command");
        if (!wantsValue && value) throw WrongCall(name + " takes no value");
        if (wantsValue && !value) {
            if (++word == words.end()) throw WrongCall(name + " wants a value");
            value = *word;
        }
        if (!values_.emplace(name, value.value_or("")).second) throw WrongCall(name + " is given twice");
    }
}

std::string CommandLine::Value(const std::string& option) const {
    const auto found = values_.find(option);
    return found == values_.end() ? "" : found->second;
}

std::string CommandLine::Required(const std::string& option) const {
    const std::string value = Value(option);
    if (value.empty()) throw WrongCall(option + " is missing");
    return value;
}

}  // namespace tools
