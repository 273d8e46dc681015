#include "platform/desktop/IniText.h"

#include <algorithm>

namespace platform {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string_view WithoutBlanks(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

Text Name(std::string_view written) {
    return FromUtf8(WithoutBlanks(written));
}

}  // namespace

bool IniText::Line::Holds(TextView inSection, TextView name) const {
    return kind == Kind::Value && EqualsIgnoringCase(section, inSection) && EqualsIgnoringCase(key, name);
}

IniText::IniText(std::string_view content) {
    if (content.starts_with(byteOrderMark)) {
        mark_ = byteOrderMark;
        content.remove_prefix(byteOrderMark.size());
    }
    Text section;
    while (!content.empty()) {
        const auto end = content.find('\n');
        const std::size_t length = end == content.npos ? content.size() : end + 1;
        lines_.push_back(Read(content.substr(0, length), section));
        section = lines_.back().section;
        content.remove_prefix(length);
    }
    if (!lines_.empty() && lines_.front().written.ends_with("\r\n")) lineEnd_ = "\r\n";
}

IniText::Line IniText::Read(std::string_view written, const Text& section) const {
    Line line{Kind::Other, section, {}, {}, std::string(written)};
    const std::string_view text = WithoutBlanks(written);
    if (text.empty()) {
        line.kind = Kind::Blank;
    } else if (text.front() == '[') {
        line.kind = Kind::Section;
        // A head that isn't closed begins a section that nobody asks for.
        line.section = text.back() == ']' ? Name(text.substr(1, text.size() - 2)) : Text();
    } else if (const auto sign = text.find('=');
               sign != text.npos && text.front() != ';' && text.front() != '#') {
        line.kind = Kind::Value;
        line.key = Name(text.substr(0, sign));
        line.value = Name(text.substr(sign + 1));
    }
    return line;
}

IniText::Line IniText::MakeLine(const Text& section, std::string_view text) const {
    return Read(std::string(text) + lineEnd_, section);
}

// The place of its line, or the number of lines where there is none.
std::size_t IniText::FindKey(TextView section, TextView key) const {
    const auto found = std::find_if(lines_.begin(), lines_.end(),
                                    [&](const Line& line) { return line.Holds(section, key); });
    return static_cast<std::size_t>(found - lines_.begin());
}

std::optional<Text> IniText::Value(TextView section, TextView key) const {
    const std::size_t found = FindKey(section, key);
    return found == lines_.size() ? std::nullopt : std::optional(lines_[found].value);
}

std::vector<Text> IniText::Sections() const {
    std::vector<Text> names;
    for (const Line& line : lines_)
        if (line.kind == Kind::Section && !line.section.empty()) names.push_back(line.section);
    return names;
}

void IniText::EndLastLine() {
    if (!lines_.empty() && !lines_.back().written.ends_with('\n')) lines_.back().written += lineEnd_;
}

void IniText::Set(TextView section, TextView key, TextView value) {
    const std::string text = ToUtf8(key) + "=" + ToUtf8(value);
    if (const std::size_t found = FindKey(section, key); found != lines_.size()) {
        lines_[found] = MakeLine(lines_[found].section, text);
        return;
    }
    EndLastLine();
    const auto last = std::find_if(lines_.rbegin(), lines_.rend(), [&](const Line& line) {
        return line.kind != Kind::Blank && EqualsIgnoringCase(line.section, section);
    });
    auto at = last.base();
    if (last == lines_.rend()) {
        if (!lines_.empty() && lines_.back().kind != Kind::Blank) lines_.push_back(MakeLine({}, ""));
        lines_.push_back(MakeLine({}, "[" + ToUtf8(section) + "]"));
        at = lines_.end();
    }
    lines_.insert(at, MakeLine(Text(section), text));
}

void IniText::Remove(TextView section, TextView key) {
    std::erase_if(lines_, [&](const Line& line) { return line.Holds(section, key); });
    DropIfEmpty(section);
}

void IniText::DropIfEmpty(TextView section) {
    const auto isHere = [&](const Line& line) { return EqualsIgnoringCase(line.section, section); };
    const bool holdsSomething = std::any_of(lines_.begin(), lines_.end(), [&](const Line& line) {
        return isHere(line) && (line.kind == Kind::Value || line.kind == Kind::Other);
    });
    if (holdsSomething) return;
    const bool wasLast = !lines_.empty() && isHere(lines_.back());
    std::erase_if(lines_, isHere);
    if (wasLast) DropBlankEnd();
}

// The blank line that stood before a section at the end.
void IniText::DropBlankEnd() {
    while (!lines_.empty() && lines_.back().kind == Kind::Blank) lines_.pop_back();
}

bool IniText::IsBlank() const {
    return std::all_of(lines_.begin(), lines_.end(),
                       [](const Line& line) { return line.kind == Kind::Blank; });
}

std::string IniText::Content() const {
    std::string content = mark_;
    for (const Line& line : lines_) content += line.written;
    return content;
}

}  // namespace platform
