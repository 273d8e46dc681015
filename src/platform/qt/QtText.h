// Texts between the platform and Qt; both are UTF-16.
#pragma once

#include <QString>

#include "platform/runtime/Text.h"

namespace platform {

inline QString ToQt(TextView text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

// A text for the screen, cut with an ellipsis beyond what anybody would read. A title of megabytes would end
// the process by a display error, and a prompt of megabytes would take seconds to lay out.
inline QString ToShow(TextView text) {
    constexpr std::size_t longest = 4000;
    if (text.size() <= longest) return ToQt(text);
    const bool splitsPair = QChar::isHighSurrogate(text[longest - 1]) && QChar::isLowSurrogate(text[longest]);
    return ToQt(text.substr(0, splitsPair ? longest - 1 : longest)) + QChar(0x2026);
}

inline Text FromQt(const QString& text) {
    return text.toStdU16String();
}

}  // namespace platform
