#include "host/Misbehaviour.h"

#include <charconv>
#include <csignal>
#include <map>

#include "platform/runtime/RuntimeError.h"

namespace switchdesk {

namespace {

using platform::FromUtf8;

constexpr std::int32_t raisedByDefault = 1004;

template <class Number>
bool Parse(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

// The part of `text` behind `prefix`, if it begins so.
std::optional<std::string_view> Behind(std::string_view prefix, std::string_view text) {
    if (!text.starts_with(prefix)) return std::nullopt;
    return text.substr(prefix.size());
}

bool TakeReply(std::string_view value, ForcedReply& reply) {
    if (value == "hang") {
        reply.kind = ForcedReply::Kind::Hang;
    } else if (value == "raise") {
        reply = {ForcedReply::Kind::Raise, {}, raisedByDefault};
    } else if (const auto number = Behind("raise:", value)) {
        reply.kind = ForcedReply::Kind::Raise;
        return Parse(*number, reply.number);
    } else {
        reply = {ForcedReply::Kind::Text, value == "empty" ? platform::Text() : FromUtf8(value), 0};
    }
    return true;
}

bool TakeAnswer(std::string_view value, Misbehaviour& misbehaviour) {
    if (const auto delay = Behind("late:", value)) {
        int milliseconds = 0;
        if (!Parse(*delay, milliseconds) || milliseconds < 0) return false;
        misbehaviour.answerDelay = std::chrono::milliseconds(milliseconds);
        return true;
    }
    misbehaviour.answers = value != "never";
    misbehaviour.answersTwice = value == "twice";
    return !misbehaviour.answers || misbehaviour.answersTwice;
}

platform::Text Item::* FieldOf(std::string_view name) {
    const std::string lower = LowerCase(name);
    if (lower == "cmd") return &Item::command;
    if (lower == "firstdata") return &Item::first;
    if (lower == "seconddata") return &Item::second;
    if (lower == "extradata") return &Item::extra;
    return nullptr;
}

// I:FIELD=TEXT
bool TakeOverride(std::string_view value, Misbehaviour& misbehaviour) {
    const std::size_t colon = value.find(':'), equals = value.find('=');
    if (colon == value.npos || equals == value.npos || equals < colon) return false;
    Misbehaviour::Override entry;
    entry.field = FieldOf(value.substr(colon + 1, equals - colon - 1));
    entry.text = FromUtf8(value.substr(equals + 1));
    if (!entry.field || !Parse(value.substr(0, colon), entry.item)) return false;
    misbehaviour.overrides.push_back(std::move(entry));
    return true;
}

bool TakeDrop(std::string_view value, Misbehaviour& misbehaviour) {
    std::size_t item = 0;
    if (!Parse(value, item)) return false;
    misbehaviour.droppedItems.insert(item);
    return true;
}

bool TakeErrCode(std::string_view value, Misbehaviour& misbehaviour) {
    return Parse(value, misbehaviour.errCode.emplace());
}

bool TakeName(std::string_view value, std::set<std::string>& names) {
    names.insert(LowerCase(value));
    return !value.empty();
}

bool TakeLeave(std::string_view value, Misbehaviour& misbehaviour) {
    // A client reads the count of items as the first thing of an answer.
    static const std::map<std::string, std::string> steps{
        {"connect", "connecttopbx"}, {"send", "sendrequest"}, {"callback", "count"}};
    std::string step = LowerCase(value);
    std::erase(step, '-');
    const auto known = steps.find(step);
    misbehaviour.leaveAt = known == steps.end() ? step : known->second;
    return !step.empty();
}

bool TakeCallbackDuring(std::string_view value, Misbehaviour& misbehaviour) {
    misbehaviour.callbackDuring = value;
    return value == "login" || value == "send";
}

bool TakeLogins(std::string_view value, Misbehaviour& misbehaviour) {
    return Parse(value, misbehaviour.logins.emplace()) && *misbehaviour.logins >= 0;
}

bool TakeBusy(std::string_view value, Misbehaviour& misbehaviour) {
    return Parse(value, misbehaviour.busyLogins) && misbehaviour.busyLogins >= 0;
}

}  // namespace

std::string LowerCase(std::string_view name) {
    std::string lower(name);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
    return lower;
}

bool TakeMisbehaviour(std::string_view name, std::string_view value, Misbehaviour& misbehaviour) {
    if (name == "login") return TakeReply(value, misbehaviour.login);
    if (name == "send") return TakeReply(value, misbehaviour.send);
    if (name == "answer") return TakeAnswer(value, misbehaviour);
    if (name == "errcode") return TakeErrCode(value, misbehaviour);
    if (name == "message") return misbehaviour.message = FromUtf8(value), true;
    if (name == "tag") return misbehaviour.tag = FromUtf8(value), true;
    if (name == "item") return TakeOverride(value, misbehaviour);
    if (name == "drop-item") return TakeDrop(value, misbehaviour);
    if (name == "raise") return TakeName(value, misbehaviour.raising);
    if (name == "lack") return TakeName(value, misbehaviour.lacking);
    if (name == "wrong-type") return TakeName(value, misbehaviour.wrongType);
    if (name == "leave") return TakeLeave(value, misbehaviour);
    if (name == "callback-during") return TakeCallbackDuring(value, misbehaviour);
    if (name == "logins") return TakeLogins(value, misbehaviour);
    if (name == "busy") return TakeBusy(value, misbehaviour);
    return false;
}

std::string_view MisbehaviourHelp() {
    return R"(Misbehaviour, for those who test a client. MEMBER is any member of the host object, the exchange
object or an answer.
  --login=REPLY           what Login gives: BUSY, ERROR, empty, raise (error 1004), raise:NUMBER, hang (no
                          answer at all), or any other text, which then is the key of the login
  --send=REPLY            the same for SendRequest; a text other than BUSY, ERROR and empty accepts
  --answer=late:MS        calls CallBack after so many milliseconds instead of 100
  --answer=never          takes requests and never answers
  --answer=twice          calls CallBack a second time with the same answer
  --errcode=N             ErrCode of every answer
  --message=TEXT          Message of every answer
  --tag=TEXT              Tag of every answer, instead of the request's
  --item=I:FIELD=TEXT     puts a text into an item of every answer, counted from 0; FIELD is CMD,
                          FirstData, SecondData or ExtraData
  --drop-item=I           leaves this item out of every answer
  --raise=MEMBER          raises error 1004 there
  --lack=MEMBER           acts as if there were no such member (error 438)
  --wrong-type=MEMBER     gives an object where a value is wanted, a text where an object is
  --leave=STEP            kills this process at a step: connect, login, send, waiting (instead of the
                          answer), callback (as the answer is read), answered (after CallBack), or in a
                          member, such as show-results, logout or regcomdata
  --callback-during=CALL  calls CallBack from inside login or send
  --logins=N              all this for the first N logins only
  --busy=N                refuses Login N times as busy; a client comes again every 200 milliseconds
)";
}

bool Misbehaviour::RefusesAsBusy(std::string_view member) {
    if (member != "login" || busyLogins == 0) return false;
    --busyLogins;
    return true;
}

void Misbehaviour::BeginCall(std::string_view member) {
    if (logins && member == "login" && (*logins)-- == 0) *this = {};
}

void Misbehaviour::Spoil(Answer& answer) const {
    for (const Override& entry : overrides)
        if (entry.item < answer.items.size()) answer.items[entry.item].*entry.field = entry.text;
    for (auto item = droppedItems.rbegin(); item != droppedItems.rend(); ++item)
        if (*item < answer.items.size())
            answer.items.erase(answer.items.begin() + static_cast<std::ptrdiff_t>(*item));
    answer.errCode = errCode.value_or(answer.errCode);
    answer.message = message.value_or(answer.message);
    answer.tag = tag.value_or(answer.tag);
}

void Misbehaviour::LeaveAt(std::string_view step, CallLog& log) const {
    if (leaveAt.empty() || leaveAt != LowerCase(step)) return;
    log.Note("leaves the bus");
    std::raise(SIGKILL);
}

}  // namespace switchdesk
