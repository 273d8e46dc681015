// The signs in message boxes.
#pragma once

#include <QPixmap>

namespace platform {

enum class BoxSign { None, Critical, Question, Exclamation, Information };

// A sign in a square of `side` logical pixels, sharp on a screen of that ratio; null for no sign.
QPixmap SignPixmap(BoxSign sign, int side, qreal devicePixelRatio);

}  // namespace platform
