// Texts between the platform and Qt; both are UTF-16.
#pragma once

#include <QString>

#include "platform/runtime/Text.h"

namespace platform {

inline QString ToQt(TextView text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

inline Text FromQt(const QString& text) {
    return text.toStdU16String();
}

}  // namespace platform
