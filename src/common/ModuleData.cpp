#include "common/ModuleData.h"

namespace horalink {

using namespace platform;

const Text& MessageTexts::operator[](std::size_t index) const {
    if (index >= texts.size())
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange, "message " + std::to_string(index));
    return texts[index];
}

}  // namespace horalink
