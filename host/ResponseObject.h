// An answer as clients see it.
#pragma once

#include "host/Answer.h"
#include "host/ObservedObject.h"

namespace switchdesk {

// Members: Count, CMD(i), FirstData(i), SecondData(i), ExtraData(i), ErrCode, Tag, LoginID, and Message,
// which is also writable. An index outside the items reads as an empty text.
class ResponseObject : public ObservedObject {
  public:
    ResponseObject(const Observation& observation, Answer answer)
        : ObservedObject(observation), answer_(std::move(answer)) {}
    static const platform::ClassDescription& Description();
    const platform::ClassDescription& Class() const override { return Description(); }

    Answer& Content() { return answer_; }

  private:
    Answer answer_;
};

}  // namespace switchdesk
