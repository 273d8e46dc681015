#include "host/CallLog.h"

#include <cstdio>

#include "platform/runtime/Format.h"

namespace switchdesk {

namespace {

std::string Quoted(platform::TextView text) {
    std::string quoted = "\"";
    for (const char c : platform::ToUtf8(text)) {
        switch (c) {
            case '"':
                quoted += "\\\"";
                break;
            case '\\':
                quoted += "\\\\";
                break;
            case '\r':
                quoted += "\\r";
                break;
            case '\n':
                quoted += "\\n";
                break;
            default:
                quoted += c;
        }
    }
    return quoted + '"';
}

struct Show {
    std::string operator()(platform::Empty) const { return "Nothing"; }
    std::string operator()(platform::Null) const { return "Null"; }
    std::string operator()(platform::Missing) const { return "Missing"; }
    std::string operator()(bool value) const { return value ? "True" : "False"; }
    std::string operator()(platform::Date value) const {
        return platform::ToUtf8(platform::GeneralDateText(value));
    }
    std::string operator()(const platform::Text& value) const { return Quoted(value); }
    std::string operator()(const platform::ObjectRef& value) const { return value ? "<object>" : "Nothing"; }
    template <class Number>
    std::string operator()(Number value) const {
        return platform::ToUtf8(platform::Value(value).ToText());
    }
};

void PrintLine(std::FILE* out, const std::string& line) {
    std::fprintf(out, "%s\n", line.c_str());
    std::fflush(out);
}

}  // namespace

std::string LogText(const platform::Value& value) {
    return std::visit(Show{}, value.Stored());
}

void CallLog::Note(const std::string& text) {
    AnnounceOpenCalls();
    Line("# " + text);
}

void CallLog::Line(const std::string& text) {
    for (const Sink& sink : sinks_) sink(text);
}

void CallLog::AnnounceOpenCalls() {
    for (Entry* entry : open_) {
        if (entry->announced_) continue;
        entry->announced_ = true;
        Line("# " + entry->call_ + " is under way");
    }
}

CallLog::Entry::Entry(CallLog& log, std::string call) : log_(log), call_(std::move(call)) {
    log_.AnnounceOpenCalls();
    log_.open_.push_back(this);
}

CallLog::Entry::~Entry() {
    std::erase(log_.open_, this);
}

void CallLog::Entry::End(const std::string& call, const std::string& outcome) {
    log_.Line(call + outcome);
}

CallLog::Sink FileSink(const std::filesystem::path& file) {
    const std::shared_ptr<std::FILE> out(std::fopen(file.c_str(), "we"), [](std::FILE* f) {
        if (f) std::fclose(f);
    });
    if (!out)
        throw platform::RuntimeError(75, u"The file can't be written: " + platform::FromUtf8(file.string()));
    return [out](const std::string& line) { PrintLine(out.get(), line); };
}

CallLog::Sink StandardOutputSink() {
    return [](const std::string& line) { PrintLine(stdout, line); };
}

}  // namespace switchdesk
