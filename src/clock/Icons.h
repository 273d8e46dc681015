// The pictures of the dialog's own design, as SVG. The build makes the definitions out of data/icons.
#pragma once

#include <string_view>

namespace horalink::icons {

extern const std::string_view hide, update, updateDisabled, lookup, lookupDisabled, horalink;

}  // namespace horalink::icons
