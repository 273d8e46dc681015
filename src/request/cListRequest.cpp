#include "request/cListRequest.h"

#include <limits>

#include "common/ModuleData.h"
#include "platform/runtime/MemberTable.h"

namespace horalink {

using platform::Method;
using platform::Optional;
using platform::Read;
using platform::ReadWrite;
using platform::Write;

template <cListRequest::List List>
platform::Slots cListRequest::ItemSlots(std::string_view name) {
    return {Read<&cListRequest::ItemOf<List>>(name, "Value"),
            Write<&cListRequest::SetItemOf<List>>(name, "Value", "sValue")};
}

// The order of the slots is part of the interface, even where a write form comes before its read form.
const platform::ClassDescription& cListRequest::Class() const {
    using Record = cListRequest;
    static const platform::ClassDescription description{
        "cListRequest",
        platform::Slots{
            ReadWrite<&Record::Mode>("Mode"),
            ReadWrite<&Record::Key>("Key"),
            ReadWrite<&Record::CompIndication>("CompIndication"),
            Read<&Record::ObjectID>("ObjectID"),
            ReadWrite<&Record::PBXName>("PBXName"),
            Write<&Record::PBXNumber>("PBXNumber"),
            Read<&Record::PBXNumber>("PBXNumber"),
            ReadWrite<&Record::ShowBusy>("ShowBusy"),
            ReadWrite<&Record::WaitFlag>("WaitFlag"),
            ReadWrite<&Record::LoginID>("LoginID"),
            Write<&Record::Tag>("Tag"),
            Read<&Record::Tag>("Tag"),
            Write<&Record::RequestID>("RequestID"),
            Read<&Record::RequestID>("RequestID"),
            Write<&Record::TimeTag>("TimeTag"),
            Read<&Record::TimeTag>("TimeTag"),
            Method<&Record::AddToList>("AddToList", "CMD", Optional("FD"), Optional("SD"), Optional("ED"),
                                       Optional("Desc")),
            ReadWrite<&Record::CommandType>("CommandType"),
            Read<&Record::Count>("Count"),
            Method<&Record::Clear>("Clear"),
            ReadWrite<&Record::ErrCode>("ErrCode"),
            ItemSlots<FirstData>("FirstData"),
            ItemSlots<ExtraData>("ExtraData"),
            ItemSlots<SecondData>("SecondData"),
            ItemSlots<DescriptionData>("DescriptionData"),
            ItemSlots<CMD>("CMD"),
            ItemSlots<CK>("CK"),
            ItemSlots<ERMFP>("ERMFP"),
            ItemSlots<MSGFP>("MSGFP"),
        },
        &typeLibrary, "{7791E13E-1D0C-4062-8FD2-7F70BCB0AF50}", "{903139A7-1682-4546-A54A-9F4AB42FEED5}"};
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
