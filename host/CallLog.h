// Every call that the host sees, one line each, in the order in which they came.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/runtime/Object.h"

namespace switchdesk {

// A value as the log shows it: strings in double quotes with \" \\ \r \n, objects as <object>, no object
// and no result as Nothing.
std::string LogText(const platform::Value& value);

class CallLog {
  public:
    // Where the lines go; each has left before the call that made it goes on.
    using Sink = std::function<void(const std::string& line)>;
    void AddSink(Sink sink) { sinks_.push_back(std::move(sink)); }

    // A line of the host's own doings, behind "# ".
    void Note(const std::string& text);

    // A call's line is written when it ends. Where another call comes in meanwhile, a note tells first
    // that the outer one is under way, so that the lines stay in the order of the calls.
    class Entry {
      public:
        Entry(CallLog& log, std::string call);
        ~Entry();
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;
        void End(const std::string& call, const std::string& outcome);

      private:
        friend class CallLog;
        CallLog& log_;
        std::string call_;
        bool announced_ = false;
    };

  private:
    void Line(const std::string& text);
    void AnnounceOpenCalls();

    std::vector<Sink> sinks_;
    std::vector<Entry*> open_;
};

// Sinks. The file is made anew; raises 75 where that fails.
CallLog::Sink FileSink(const std::filesystem::path& file);
CallLog::Sink StandardOutputSink();

}  // namespace switchdesk
