// The answers of a host: what it calls back with, and what the operator has to read of it.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "platform/runtime/Object.h"

namespace model {

using platform::Text;

// An item of an answer: CMD, FirstData, SecondData, ExtraData.
using Item = std::array<Text, 4>;

struct AnswerKind {
    std::string name = {};
    Text tag = u"LOOKUP_CLOCK";
    platform::Value errCode = std::int32_t{0};
    std::string missing = {};  // a member that can't be read; "=Message" can't be written
    Text message = {};
    std::vector<Item> items = {};  // those of a good answer where it is empty
};
// The first one is good; the last one is no object at all.
const std::vector<AnswerKind>& AnswerKinds();

// A response object of the host's own class.
class Answer : public platform::Object {
  public:
    Answer(const AnswerKind& kind, Text login);
    const platform::ClassDescription& Class() const override;
    platform::Value Invoke(std::string_view member, platform::InvokeKind kind,
                           platform::Arguments& arguments) override;

    bool IsMissing(std::string_view member) const { return kind_.missing == member; }
    // True where its ErrCode can be read and is 0.
    bool IsGood() const;
    platform::Value ErrCode() const { return kind_.errCode; }
    Text Login() const { return login_; }
    // What `Message` has to be by the time the host hears of the answer.
    Text MessageToShow() const;

    // What the add-in has read: the items as far as it got, and the tag where it came to that.
    std::vector<Item> taken;
    std::optional<Text> takenTag;
    std::function<void(std::string_view)> beforeRead;  // what happens inside each call

  private:
    platform::Value Read(std::string_view member, const platform::Arguments& arguments);

    const AnswerKind kind_;
    const Text login_;
    Text message_ = kind_.message;
};

// What the operator reads in the box of a good answer: the number of the box and its values, by what was
// taken of the answer. Nothing for a tag that no request has.
struct Shown {
    int box = 0;
    Text values;
};
std::optional<Shown> ShownFor(const std::vector<Item>& items, const Text& tag);

}  // namespace model
