#include "model/Answer.h"

namespace model {

using namespace platform;

namespace {

const Item good[] = {{u"02", u"0", u"2026", u"OK"},
                     {u"02", u"1", u"11/18 and more", u"OK"},
                     {u"02", u"2", u"13:02:03", u"OK"}};

bool IsUpdate(AnswerKind kind) {
    return kind == AnswerKind::Set || kind == AnswerKind::Refused || kind == AnswerKind::CodeText ||
           kind == AnswerKind::NoExtraData;
}

}  // namespace

const char* NameOf(AnswerKind kind) {
    static constexpr const char* names[] = {"read",
                                            "set",
                                            "refused",
                                            "unread",
                                            "of another tag",
                                            "with ErrCode 7",
                                            "with ErrCode 99",
                                            "with ErrCode 0.4",
                                            "with ErrCode Null",
                                            "with ErrCode \"0\"",
                                            "without Count",
                                            "without CMD",
                                            "without ExtraData",
                                            "without ErrCode",
                                            "without Tag",
                                            "without Message",
                                            "without LoginID",
                                            "with a read-only Message",
                                            "with a message",
                                            "with nothing"};
    return names[static_cast<std::size_t>(kind)];
}

const char* NameOf(LoginKind kind) {
    static constexpr const char* names[] = {"current login", "login given up", "nobody's login"};
    return names[static_cast<std::size_t>(kind)];
}

Answer::Answer(AnswerKind kind, Text login)
    : items_(std::begin(good), std::end(good)),
      tag_(IsUpdate(kind) ? u"UPDATE_CLOCK" : u"LOOKUP_CLOCK"),
      login_(std::move(login)) {
    using enum AnswerKind;
    if (kind == Refused) {
        items_[0][3] = u"WRONG";
        items_[1][3] = u"LNK_TIMEOUT";
    }
    if (kind == Unread) items_[1][2] = u"LNK_TIMEOUT";
    if (kind == OtherTag) tag_ = u"lookup_clock";
    if (kind == Code7) errCode_ = std::int16_t{7};
    if (kind == Code99) errCode_ = std::int32_t{99};
    if (kind == CodeFraction) errCode_ = 0.4;
    if (kind == CodeNull) errCode_ = Null{};
    if (kind == CodeText) errCode_ = u"0";
    if (kind == WithMessage || kind == Code99) message_ = u"a message";
    if (kind >= NoCount && kind <= MessageIsReadOnly) {
        static constexpr std::string_view names[] = {"Count", "CMD",     "ExtraData", "ErrCode",
                                                     "Tag",   "Message", "LoginID",   "=Message"};
        missing_ = names[static_cast<std::size_t>(kind) - static_cast<std::size_t>(NoCount)];
    }
    first_ = message_;
}

const ClassDescription& Answer::Class() const {
    static const ClassDescription description{"Answer", {}};
    return description;
}

bool Answer::IsGood() const {
    return !IsMissing("ErrCode") && (errCode_ == Value(std::int32_t{0}) || errCode_ == Value(u"0"));
}

Text Answer::MessageToShow() const {
    if (IsMissing("ErrCode") || IsMissing("=Message") || errCode_ == Value(std::int32_t{99})) return first_;
    if (IsGood()) return first_.empty() ? Text(u"OK") : first_;
    return u"answer error : <" + errCode_.ToTextOrEmpty() + u">";
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
    if (member == "Count") return static_cast<std::int16_t>(items_.size());
    if (member == "ErrCode") return errCode_;
    if (member == "Message") return message_;
    if (member == "LoginID") return login_;
    if (member == "Tag") return *(takenTag = tag_);
    static constexpr std::string_view lists[] = {"CMD", "FirstData", "SecondData", "ExtraData"};
    for (std::size_t list = 0; list < 4; ++list) {
        if (member != lists[list]) continue;
        const auto item = static_cast<std::size_t>(arguments.at(0).ToInteger());
        // An item counts once its third list has been read.
        if (list == 2) taken.push_back({items_.at(item)[0], items_[item][1], items_[item][2], u""});
        if (list == 3) taken.at(item)[3] = items_.at(item)[3];
        return items_.at(item)[list];
    }
    throw RuntimeError(ErrorNumber::NoSuchMember, std::string(member));
}

namespace {

Text UpdateErrors(const std::vector<Item>& items) {
    Text errors;
    for (const Item& item : items) {
        if (item[3] == u"OK") continue;
        errors += u"\r\nCM = " + item[0] + u", FD = " + item[1] + u", SD = " + item[2] + u" " +
                  (item[3] == u"WRONG" ? Text(u"WRONG") : Text(u"no access"));
    }
    return errors;
}

}  // namespace

std::optional<Shown> ShownFor(const std::vector<Item>& items, const Text& tag) {
    if (tag == u"UPDATE_CLOCK") {
        const Text errors = UpdateErrors(items);
        return errors.empty() ? Shown{1, u""} : Shown{2, errors};
    }
    if (tag != u"LOOKUP_CLOCK") return std::nullopt;
    const bool isClock = items.size() == 3 && items[1][2] == good[1][2];
    return isClock ? Shown{0, u"2026/11/18 (d4)\r\n13:02:03"} : Shown{3, u""};
}

}  // namespace model
