#include "request/cListRequest.h"

#include <limits>

#include "common/TypeLibrary.h"

namespace horalink {

namespace {

using platform::Arguments;
using platform::Bind;
using platform::InvokeKind;
using platform::Member;
using platform::Read;
using platform::ValueType;
using platform::Write;

template <cListRequest::List List>
Member ReadItem(std::string_view name) {
    return {name,
            InvokeKind::PropertyGet,
            {{"Value", ValueType::Integer}},
            ValueType::String,
            Bind<cListRequest>([](cListRequest& record, Arguments& arguments) {
                return record.Item(List, arguments[0].ToInteger());
            })};
}

template <cListRequest::List List>
Member WriteItem(std::string_view name) {
    return {name,
            InvokeKind::PropertyPut,
            {{"Value", ValueType::Integer}, {"sValue", ValueType::String}},
            ValueType::None,
            Bind<cListRequest>([](cListRequest& record, Arguments& arguments) {
                record.SetItem(List, arguments[0].ToInteger(), arguments[1].ToText());
            })};
}

Text TextOrNothing(const platform::Value& argument) {
    return argument.IsMissing() ? Text() : argument.ToText();
}

void AddToListLate(cListRequest& record, Arguments& arguments) {
    record.AddToList(arguments[0].ToText(), TextOrNothing(arguments[1]), TextOrNothing(arguments[2]),
                     TextOrNothing(arguments[3]), TextOrNothing(arguments[4]));
}

// The order of the slots is part of the interface, even where a write form comes before its read form.
std::vector<Member> Slots() {
    using Record = cListRequest;
    const platform::Parameter cmd{"CMD", ValueType::String}, fd{"FD", ValueType::String, true},
        sd{"SD", ValueType::String, true}, ed{"ED", ValueType::String, true},
        desc{"Desc", ValueType::String, true};
    return {
        Read<&Record::Mode>("Mode"),
        Write<&Record::Mode>("Mode"),
        Read<&Record::Key>("Key"),
        Write<&Record::Key>("Key"),
        Read<&Record::CompIndication>("CompIndication"),
        Write<&Record::CompIndication>("CompIndication"),
        {"ObjectID",
         InvokeKind::PropertyGet,
         {},
         ValueType::String,
         Bind<Record>([](Record& record, Arguments&) { return record.ObjectID(); })},
        Read<&Record::PBXName>("PBXName"),
        Write<&Record::PBXName>("PBXName"),
        Write<&Record::PBXNumber>("PBXNumber"),
        Read<&Record::PBXNumber>("PBXNumber"),
        Read<&Record::ShowBusy>("ShowBusy"),
        Write<&Record::ShowBusy>("ShowBusy"),
        Read<&Record::WaitFlag>("WaitFlag"),
        Write<&Record::WaitFlag>("WaitFlag"),
        Read<&Record::LoginID>("LoginID"),
        Write<&Record::LoginID>("LoginID"),
        Write<&Record::Tag>("Tag"),
        Read<&Record::Tag>("Tag"),
        Write<&Record::RequestID>("RequestID"),
        Read<&Record::RequestID>("RequestID"),
        Write<&Record::TimeTag>("TimeTag"),
        Read<&Record::TimeTag>("TimeTag"),
        {"AddToList",
         InvokeKind::Method,
         {cmd, fd, sd, ed, desc},
         ValueType::None,
         Bind<Record>(AddToListLate)},
        Read<&Record::CommandType>("CommandType"),
        Write<&Record::CommandType>("CommandType"),
        {"Count",
         InvokeKind::PropertyGet,
         {},
         ValueType::Integer,
         Bind<Record>([](Record& record, Arguments&) { return record.Count(); })},
        {"Clear", InvokeKind::Method, {}, ValueType::None, Bind<Record>([](Record& record, Arguments&) {
             record.Clear();
         })},
        Read<&Record::ErrCode>("ErrCode"),
        Write<&Record::ErrCode>("ErrCode"),
        ReadItem<Record::FirstData>("FirstData"),
        WriteItem<Record::FirstData>("FirstData"),
        ReadItem<Record::ExtraData>("ExtraData"),
        WriteItem<Record::ExtraData>("ExtraData"),
        ReadItem<Record::SecondData>("SecondData"),
        WriteItem<Record::SecondData>("SecondData"),
        ReadItem<Record::DescriptionData>("DescriptionData"),
        WriteItem<Record::DescriptionData>("DescriptionData"),
        ReadItem<Record::CMD>("CMD"),
        WriteItem<Record::CMD>("CMD"),
        ReadItem<Record::CK>("CK"),
        WriteItem<Record::CK>("CK"),
        ReadItem<Record::ERMFP>("ERMFP"),
        WriteItem<Record::ERMFP>("ERMFP"),
        ReadItem<Record::MSGFP>("MSGFP"),
        WriteItem<Record::MSGFP>("MSGFP"),
    };
}

}  // namespace

const platform::ClassDescription& cListRequest::Class() const {
    static const platform::ClassDescription description{"cListRequest", Slots(), &typeLibrary,
                                                        "{7791E13E-1D0C-4062-8FD2-7F70BCB0AF50}",
                                                        "{903139A7-1682-4546-A54A-9F4AB42FEED5}"};
    return description;
}

Text cListRequest::Item(List list, std::int16_t index) const {
    return IsItem(index) ? lists_[list][static_cast<std::size_t>(index)] : Text();
}

void cListRequest::SetItem(List list, std::int16_t index, Text content) {
    if (IsItem(index)) lists_[list][static_cast<std::size_t>(index)] = std::move(content);
}

void cListRequest::AddToList(const Text& cmd, const Text& fd, const Text& sd, const Text& ed,
                             const Text& desc) {
    const auto index = static_cast<std::size_t>(count_);
    for (auto& list : lists_) list.resize(index + 1);
    lists_[CMD][index] = cmd;
    lists_[FirstData][index] = fd;
    lists_[SecondData][index] = sd;
    lists_[ExtraData][index] = ed;
    lists_[DescriptionData][index] = desc;
    if (count_ == std::numeric_limits<std::int16_t>::max())
        throw platform::RuntimeError(platform::ErrorNumber::Overflow, "AddToList");
    ++count_;
}

void cListRequest::Clear() {
    for (auto& list : lists_) list.assign(1, Text());
    count_ = 0;
}

}  // namespace horalink
