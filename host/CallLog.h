// A log of all calls that the host receives, one line each, in order.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/runtime/Object.h"

namespace switchdesk {

// A value as the log shows it: strings in double quotes with \" \\ \r \n, objects as <object>, a null
// object or no result as Nothing.
std::string LogText(const platform::Value& value);

class CallLog {
  public:
    // Gets each line, and must write it before it returns: only then does the call continue.
    using Sink = std::function<void(const std::string& line)>;
    void AddSink(Sink sink) { sinks_.push_back(std::move(sink)); }

    // Logs an action of the host itself, after "# ".
    void Note(const std::string& text);

    // A call's line is written when it ends. If another call arrives meanwhile, a note announces the outer
    // one first, so that the log keeps the order of the calls.
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

// Overwrites the file. Raises 75 if that fails.
CallLog::Sink FileSink(const std::filesystem::path& file);
CallLog::Sink StandardOutputSink();

}  // namespace switchdesk
