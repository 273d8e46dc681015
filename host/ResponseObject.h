// The object through which clients read an answer.
#pragma once

#include "host/Answer.h"
#include "host/ObservedObject.h"

namespace switchdesk {

// An index outside the items reads as an empty text.
class ResponseObject : public ObservedObject {
  public:
    ResponseObject(const Observation& observation, Answer answer)
        : ObservedObject(observation), answer_(std::move(answer)) {}
    static const platform::ClassDescription& Description();
    const platform::ClassDescription& Class() const override { return Description(); }

    const std::vector<Item>& Items() const { return answer_.items; }

  private:
    template <platform::Text Item::* Field>
    platform::Text ItemText(std::int16_t index) const;
    template <auto Field>
    const auto& Content() const {
        return answer_.*Field;
    }
    std::int16_t Count() const { return static_cast<std::int16_t>(answer_.items.size()); }
    void SetMessage(const platform::Text& message) { answer_.message = message; }

    Answer answer_;
};

}  // namespace switchdesk
