// The answers of a host: what it calls back with, and what the operator has to read of it.
#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "platform/runtime/Object.h"

namespace model {

using namespace platform;

// An item of an answer: CMD, FirstData, SecondData, ExtraData.
using Item = std::array<Text, 4>;
using Items = std::vector<Item>;

struct AnswerKind {
    std::string name = {};
    Text tag = u"LOOKUP_CLOCK";
    Value errCode = std::int32_t{0};
    std::string missing = {};  // a member that can't be read; "=Message" can't be written
    Text message = {};
    Items items = {{u"02", u"0", u"2026", u"OK"},
                   {u"02", u"1", u"11/18 and more", u"OK"},
                   {u"02", u"2", u"13:02:03", u"OK"}};
};

// The first one is good; the last one is no object at all.
inline const std::vector<AnswerKind>& AnswerKinds() {
    static const Text update = u"UPDATE_CLOCK", lookup = u"LOOKUP_CLOCK";
    static const Items refused = {{u"02", u"0", u"2026", u"WRONG"},
                                  {u"02", u"1", u"11/18 and more", u"LNK_TIMEOUT"},
                                  {u"02", u"2", u"13:02:03", u"OK"}};
    static const Items unread = {{u"02", u"0", u"2026", u"OK"},
                                 {u"02", u"1", u"LNK_TIMEOUT", u"OK"},
                                 {u"02", u"2", u"13:02:03", u"OK"}};
    static const std::vector<AnswerKind> kinds = {{"read"},
                                                  {"set", update},
                                                  {.name = "refused", .tag = update, .items = refused},
                                                  {.name = "unread", .items = unread},
                                                  {"of another tag", u"lookup_clock"},
                                                  {"with ErrCode 7", lookup, std::int16_t{7}},
                                                  {"with ErrCode 99", lookup, 99, "", u"a message"},
                                                  {"with ErrCode Null", lookup, Null{}},
                                                  {"with ErrCode \"0\"", update, u"0"},
                                                  {"without Count", lookup, 0, "Count"},
                                                  {"without ExtraData", update, 0, "ExtraData"},
                                                  {"without ErrCode", lookup, 0, "ErrCode"},
                                                  {"without Tag", lookup, 0, "Tag"},
                                                  {"without Message", lookup, 0, "Message"},
                                                  {"without LoginID", lookup, 0, "LoginID"},
                                                  {"with a read-only Message", lookup, 0, "=Message"},
                                                  {"with a message", lookup, 0, "", u"a message"},
                                                  {"with nothing"}};
    return kinds;
}

// A response object of the host's own class.
class Answer : public Object {
  public:
    Answer(const AnswerKind& kind, Text login) : kind_(kind), login_(std::move(login)) {}
    const ClassDescription& Class() const override {
        static const ClassDescription description{"Answer", {}};
        return description;
    }
    Value Invoke(std::string_view member, InvokeKind kind, Arguments& arguments) override {
        const bool writes = kind == InvokeKind::PropertyPut;
        const std::string key = (writes ? "=" : "") + std::string(member);
        beforeRead(member);
        if (IsMissing(key) || (writes && key != "=Message"))
            throw RuntimeError(ErrorNumber::NoSuchMember, key);
        if (!writes) return Read(member, arguments);
        message_ = arguments.at(0).ToText();
        return {};
    }

    bool IsMissing(std::string_view member) const { return kind_.missing == member; }
    // True where its ErrCode can be read and is 0.
    bool IsGood() const {
        return !IsMissing("ErrCode") && (kind_.errCode == Value(0) || kind_.errCode == Value(u"0"));
    }
    Value ErrCode() const { return kind_.errCode; }
    Text Login() const { return login_; }
    // What `Message` has to be by the time the host hears of the answer.
    Text MessageToShow() const {
        const bool stays = IsMissing("ErrCode") || IsMissing("=Message") || kind_.errCode == Value(99);
        if (stays || (IsGood() && !kind_.message.empty())) return kind_.message;
        return IsGood() ? u"OK" : u"answer error : <" + kind_.errCode.ToTextOrEmpty() + u">";
    }

    // What the add-in has read: the items as far as it got, and the tag where it came to that.
    Items taken;
    std::optional<Text> takenTag;
    std::function<void(std::string_view)> beforeRead;  // what happens inside each call

  private:
    Value Read(std::string_view member, const Arguments& arguments) {
        if (member == "Count") return static_cast<std::int16_t>(kind_.items.size());
        if (member == "ErrCode") return kind_.errCode;
        if (member == "Message") return message_;
        if (member == "LoginID") return login_;
        if (member == "Tag") return *(takenTag = kind_.tag);
        static constexpr std::string_view lists[] = {"CMD", "FirstData", "SecondData", "ExtraData"};
        const auto list = std::size_t(std::find(lists, std::end(lists), member) - lists);
        const auto i = static_cast<std::size_t>(arguments.at(0).ToInteger());
        const Item& item = kind_.items.at(i);
        // An item counts once its third list has been read.
        if (list == 2) taken.push_back({item[0], item[1], item[2], u""});
        if (list == 3) taken.at(i)[3] = item[3];
        return item.at(list);
    }

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
inline std::optional<Shown> ShownFor(const Items& items, const Text& tag) {
    Text errors;
    for (const Item& item : items)
        if (item[3] != u"OK")
            errors += u"\r\nCM = " + item[0] + u", FD = " + item[1] + u", SD = " + item[2] + u" " +
                      (item[3] == u"WRONG" ? u"WRONG" : u"no access");
    if (tag == u"UPDATE_CLOCK") return errors.empty() ? Shown{1, u""} : Shown{2, errors};
    if (tag != u"LOOKUP_CLOCK") return std::nullopt;
    const bool isClock = items.size() == 3 && items[1][2] != u"LNK_TIMEOUT";
    return isClock ? Shown{0, u"2026/11/18 (d4)\r\n13:02:03"} : Shown{3, u""};
}

}  // namespace model
