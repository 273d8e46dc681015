// Describes in words how an exchange's clock differs from this PC's.
#pragma once

#include <QString>

#include "host/Exchange.h"

namespace switchdesk {

// "right", "0.4 s fast", "12 min slow".
QString DifferenceText(const Exchange::Reading& reading);

}  // namespace switchdesk
