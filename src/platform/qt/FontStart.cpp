#include "platform/qt/FontStart.h"

#include <fontconfig/fontconfig.h>

namespace platform {

FontStart::FontStart() : reading_([] { FcInit(); }) {}

}  // namespace platform
