// The answers of a host: what it calls back with, and what the operator has to read of it.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "platform/runtime/Object.h"

namespace model {

using platform::Text;

enum class AnswerKind {
    Read,      // a clock
    Set,       // an update that was accepted
    Refused,   // an update with one item refused, one not reached, one accepted
    Unread,    // a lookup that failed at the exchange
    OtherTag,  // a good answer to nothing that is known
    Code7,
    Code99,
    CodeFraction,
    CodeNull,
    CodeText,
    NoCount,
    NoCmd,
    NoExtraData,
    NoErrCode,
    NoTag,
    NoMessage,
    NoLoginID,
    MessageIsReadOnly,
    WithMessage,
    Nothing,  // no object at all
};
inline constexpr int answers = 20;
enum class LoginKind { Current, GivenUp, Nobodys };
inline constexpr int logins = 3;

inline AnswerKind AnswerOf(int n) {
    return static_cast<AnswerKind>(n / logins);
}
inline LoginKind LoginOf(int n) {
    return static_cast<LoginKind>(n % logins);
}
constexpr int Of(AnswerKind kind, LoginKind login) {
    return static_cast<int>(kind) * logins + static_cast<int>(login);
}
const char* NameOf(AnswerKind kind);
const char* NameOf(LoginKind kind);

// An item of an answer: CMD, FirstData, SecondData, ExtraData.
using Item = std::array<Text, 4>;

// A response object of the host's own class.
class Answer : public platform::Object {
  public:
    Answer(AnswerKind kind, Text login);
    const platform::ClassDescription& Class() const override;
    platform::Value Invoke(std::string_view member, platform::InvokeKind kind,
                           platform::Arguments& arguments) override;

    bool IsMissing(std::string_view member) const { return missing_ == member; }
    // True where its ErrCode can be read and is 0.
    bool IsGood() const;
    platform::Value ErrCode() const { return errCode_; }
    Text Message() const { return message_; }
    Text Login() const { return login_; }
    // What `Message` has to be by the time the host hears of the answer.
    Text MessageToShow() const;

    // What the add-in has read: the items as far as it got, and the tag where it came to that.
    std::vector<Item> taken;
    std::optional<Text> takenTag;
    std::function<void(std::string_view)> beforeRead;  // what happens inside each call

  private:
    platform::Value Read(std::string_view member, const platform::Arguments& arguments);

    std::vector<Item> items_;
    platform::Value errCode_ = std::int32_t{0};
    Text tag_, login_, message_, first_;
    std::string_view missing_;
};

// What the operator reads in the box of a good answer: the number of the box and its values, by what was
// taken of the answer. Nothing for a tag that no request has.
struct Shown {
    int box = 0;
    Text values;
};
std::optional<Shown> ShownFor(const std::vector<Item>& items, const Text& tag);

}  // namespace model
