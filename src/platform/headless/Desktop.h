// A desktop without a screen, which records what it would show.
#pragma once

#include <map>
#include <utility>
#include <vector>

#include "platform/automation/Automation.h"
#include "platform/desktop/Desktop.h"
#include "platform/runtime/Format.h"

namespace platform::headless {

struct Boxes : MessageBoxes {
    std::int16_t Show(const MessageBox& box) override;
    bool IsOpen() const { return open > 0; }
    // Returns and forgets the boxes shown since the last call.
    std::vector<MessageBox> Take() { return std::exchange(shown, {}); }
    std::string LastPrompt() const { return shown.empty() ? "" : ToUtf8(shown.back().prompt); }

    std::vector<MessageBox> shown;
    int open = 0;
    std::function<void()> whileOpen;  // called while each box is open
    std::int16_t answer = 1;
};

// Wait boxes, which stay open until answered.
class WaitBoxes : public platform::WaitBoxes {
  public:
    std::unique_ptr<WaitBox> Open(TextView title, TextView text, std::function<void(bool)> answered) override;
    bool IsOpen() const;
    // Closes the newest open box with this answer.
    void Answer(bool giveUp);

    struct Opened {
        Text title, text;
        std::function<void(bool)> answered;  // null once called
        std::weak_ptr<void> box;
        bool IsOpen() const { return answered && !box.expired(); }
    };
    std::vector<Opened> opened;
    std::function<bool()> decide;  // if set, answers each box as it opens

  private:
    struct Box;
};

struct Screen : platform::Screen {
    MousePointer Pointer() const override { return pointer; }
    void SetPointer(MousePointer shape) override { pointer = shape; }
    float Width() const override { return 15000; }
    float Height() const override { return 12000; }

    MousePointer pointer = MousePointer::Default;
};

struct Settings : platform::Settings {
    Text Get(TextView application, TextView section, TextView key, TextView fallback) const override;

    std::map<Text, Text> values;  // by application/section/key
};

struct Locale : LocaleTexts {
    Text LongDate(Date date) const override { return u"long " + GeneralDateText(date); }
    Text LongTime(Date time) const override { return u"long " + GeneralDateText(time); }
    Text DayName(int weekday) const override { return u"day " + DecimalText(weekday); }
    Text ShortDayName(int weekday) const override { return u"d" + DecimalText(weekday); }
};

struct PictureFiles : platform::PictureFiles {
    Text Dir(TextView path) const override;
    forms::PictureRef LoadPicture(TextView path) const override;

    std::map<Text, std::string> files;  // content by path; empty for an invalid picture
    bool hasAll = false;                // any other path is a picture too
};

}  // namespace platform::headless
