#include "check/Desk.h"

#include <charconv>
#include <utility>

#include "language/FatalNotice.h"
#include "platform/automation/NoAutomation.h"

namespace lng {

namespace {

using namespace platform;

// Timers that never fire.
class NoScheduler : public Scheduler {
  public:
    HandleRef After(Milliseconds, std::function<void()>) override { return nullptr; }
    HandleRef Every(Milliseconds, std::function<void()>) override { return nullptr; }
};

class NoSettings : public Settings {
  public:
    Text Get(TextView, TextView, TextView, TextView fallback) const override { return Text(fallback); }
};

class NoLocale : public LocaleTexts {
  public:
    Text LongDate(Date) const override { return {}; }
    Text LongTime(Date) const override { return {}; }
    Text DayName(int) const override { return {}; }
    Text ShortDayName(int) const override { return {}; }
};

class NoWaits : public WaitBoxes {
  public:
    std::unique_ptr<WaitBox> Open(TextView, TextView, std::function<void(bool)>) override { return nullptr; }
};

class NoScreen : public Screen {
  public:
    MousePointer Pointer() const override { return MousePointer::Default; }
    void SetPointer(MousePointer) override {}
    float Width() const override { return 0; }
    float Height() const override { return 0; }
};

class AnyPictures : public PictureFiles {
  public:
    Text Dir(TextView path) const override { return Text(path); }
    forms::PictureRef LoadPicture(TextView) const override { return std::make_shared<forms::Picture>(""); }
};

// No form is ever shown.
class NoToolkit : public forms::Toolkit {
  public:
    std::unique_ptr<forms::View> MakeView(forms::Form&) override { return nullptr; }
};

// The long form has the number in its first line and the description in its second; the short form has the
// description first.
Notice NoticeOf(const std::string& prompt) {
    constexpr std::string_view longStart = "Error No: [";
    const bool isLong = prompt.starts_with(longStart);
    const std::size_t start = isLong ? longStart.size() : prompt.rfind('[') + 1;
    Notice notice;
    std::from_chars(prompt.data() + start, prompt.data() + prompt.size(), notice.number);
    const auto breakAt = prompt.find('\r');
    notice.description =
        isLong ? prompt.substr(prompt.find_first_not_of(" \r", breakAt)) : prompt.substr(0, start - 2);
    return notice;
}

}  // namespace

std::int16_t NotedBoxes::Show(const MessageBox& box) {
    shown_.push_back(box);
    return 0;
}

std::vector<MessageBox> NotedBoxes::Take() {
    return std::exchange(shown_, {});
}

std::optional<Notice> NoticeIn(const std::vector<MessageBox>& boxes) {
    for (const MessageBox& box : boxes) {
        if (!box.title || *box.title != horalink::noticeTitle) continue;
        return NoticeOf(ToUtf8(box.prompt));
    }
    return std::nullopt;
}

struct Desk::Parts {
    explicit Parts(DatabaseEngine& engine)
        : services{app,       clock, locale, settings, engine,   automation,
                   scheduler, boxes, screen, toolkit,  pictures, [] {}} {
        app.path = u"ADDINS";
    }

    Application app;
    SystemClock clock;
    NoLocale locale;
    NoSettings settings;
    NoScheduler scheduler;
    NotedBoxes boxes;
    NoWaits waits;
    NoAutomation automation{scheduler, waits, app.waits};
    NoScreen screen;
    NoToolkit toolkit;
    AnyPictures pictures;
    horalink::Services services;
};

Desk::Desk(DatabaseEngine& engine) : parts_(std::make_unique<Parts>(engine)) {}

Desk::~Desk() = default;

const horalink::Services& Desk::Services() const {
    return parts_->services;
}

Application& Desk::App() {
    return parts_->app;
}

NotedBoxes& Desk::Boxes() {
    return parts_->boxes;
}

}  // namespace lng
