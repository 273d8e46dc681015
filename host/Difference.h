// How far an exchange's clock is from this PC's, in words.
#pragma once

#include <QString>

#include "host/Exchange.h"

namespace switchdesk {

// "right", "0.4 s fast", "12 min slow".
QString DifferenceText(const Exchange::Reading& reading);

}  // namespace switchdesk
