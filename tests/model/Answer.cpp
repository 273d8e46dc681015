#include "model/Answer.h"

namespace model {

using namespace platform;

namespace {

const Text update = u"UPDATE_CLOCK", lookup = u"LOOKUP_CLOCK";

const Item year = {u"02", u"0", u"2026", u"OK"}, day = {u"02", u"1", u"11/18 and more", u"OK"},
           hour = {u"02", u"2", u"13:02:03", u"OK"};
const Item refusedYear = {u"02", u"0", u"2026", u"WRONG"},
           unreachedDay = {u"02", u"1", u"11/18 and more", u"LNK_TIMEOUT"},
           unreadDay = {u"02", u"1", u"LNK_TIMEOUT", u"OK"};

}  // namespace

const std::vector<AnswerKind>& AnswerKinds() {
    static const std::vector<AnswerKind> kinds = {
        {"read"},
        {"set", update},
        {.name = "refused", .tag = update, .items = {refusedYear, unreachedDay, hour}},
        {.name = "unread", .items = {year, unreadDay, hour}},
        {"of another tag", u"lookup_clock"},
        {"with ErrCode 7", lookup, std::int16_t{7}},
        {"with ErrCode 99", lookup, std::int32_t{99}, "", u"a message"},
        {"with ErrCode 0.4", lookup, 0.4},
        {"with ErrCode Null", lookup, Null{}},
        {"with ErrCode \"0\"", update, u"0"},
        {"without Count", lookup, 0, "Count"},
        {"without CMD", lookup, 0, "CMD"},
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

Answer::Answer(const AnswerKind& kind, Text login) : kind_(kind), login_(std::move(login)) {}

const ClassDescription& Answer::Class() const {
    static const ClassDescription description{"Answer", {}};
    return description;
}

bool Answer::IsGood() const {
    return !IsMissing("ErrCode") && (kind_.errCode == Value(0) || kind_.errCode == Value(u"0"));
}

Text Answer::MessageToShow() const {
    if (IsMissing("ErrCode") || IsMissing("=Message") || kind_.errCode == Value(99)) return kind_.message;
    if (IsGood()) return kind_.message.empty() ? Text(u"OK") : kind_.message;
    return u"answer error : <" + kind_.errCode.ToTextOrEmpty() + u">";
}

Value Answer::Invoke(std::string_view member, InvokeKind kind, Arguments& arguments) {
    const bool writes = kind == InvokeKind::PropertyPut;
    const std::string key = (writes ? "=" : "") + std::string(member);
    beforeRead(member);
    if (IsMissing(key)) throw RuntimeError(ErrorNumber::NoSuchMember, key);
    if (!writes) return Read(member, arguments);
    if (key != "=Message") throw RuntimeError(ErrorNumber::NoSuchMember, key);
    message_ = arguments.at(0).ToText();
    return {};
}

Value Answer::Read(std::string_view member, const Arguments& arguments) {
    static const std::vector<Item> good = {year, day, hour};
    const std::vector<Item>& items = kind_.items.empty() ? good : kind_.items;
    if (member == "Count") return static_cast<std::int16_t>(items.size());
    if (member == "ErrCode") return kind_.errCode;
    if (member == "Message") return message_;
    if (member == "LoginID") return login_;
    if (member == "Tag") return *(takenTag = kind_.tag);
    static constexpr std::string_view lists[] = {"CMD", "FirstData", "SecondData", "ExtraData"};
    for (std::size_t list = 0; list < 4; ++list) {
        if (member != lists[list]) continue;
        const auto i = static_cast<std::size_t>(arguments.at(0).ToInteger());
        const Item& item = items.at(i);
        // An item counts once its third list has been read.
        if (list == 2) taken.push_back({item[0], item[1], item[2], u""});
        if (list == 3) taken.at(i)[3] = item[3];
        return item[list];
    }
    throw RuntimeError(ErrorNumber::NoSuchMember, std::string(member));
}

namespace {

Text UpdateErrors(const std::vector<Item>& items) {
    Text errors;
    for (const Item& item : items)
        if (item[3] != u"OK")
            errors += u"\r\nCM = " + item[0] + u", FD = " + item[1] + u", SD = " + item[2] + u" " +
                      (item[3] == u"WRONG" ? Text(u"WRONG") : Text(u"no access"));
    return errors;
}

}  // namespace

std::optional<Shown> ShownFor(const std::vector<Item>& items, const Text& tag) {
    if (tag == update) {
        const Text errors = UpdateErrors(items);
        return errors.empty() ? Shown{1, u""} : Shown{2, errors};
    }
    if (tag != lookup) return std::nullopt;
    const bool isClock = items.size() == 3 && items[1][2] == day[2];
    return isClock ? Shown{0, u"2026/11/18 (d4)\r\n13:02:03"} : Shown{3, u""};
}

}  // namespace model
