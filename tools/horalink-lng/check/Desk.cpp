#include "check/Desk.h"

#include <charconv>
#include <utility>

#include "common/FatalNotice.h"

namespace lng {

namespace {

using namespace platform;

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

std::optional<Notice> NoticeIn(const std::vector<MessageBox>& boxes) {
    for (const MessageBox& box : boxes) {
        if (!box.title || *box.title != horalink::noticeTitle) continue;
        return NoticeOf(ToUtf8(box.prompt));
    }
    return std::nullopt;
}

Desk::Desk(DatabaseEngine& engine)
    : services_{headless_.app,    headless_.clock,      headless_.locale,   headless_.settings,
                engine,           headless_.automation, headless_.timers,   headless_.boxes,
                headless_.screen, headless_.toolkit,    headless_.pictures, [] {}} {
    headless_.app.path = u"ADDINS";
    headless_.pictures.hasAll = true;
}

}  // namespace lng
