#include "host/ResponseObject.h"

#include "platform/runtime/MemberTable.h"

namespace switchdesk {

using platform::Read;

template <platform::Text Item::* Field>
platform::Text ResponseObject::ItemText(std::int16_t index) const {
    const auto i = static_cast<std::size_t>(index);
    return index >= 0 && i < answer_.items.size() ? answer_.items[i].*Field : platform::Text();
}

const platform::ClassDescription& ResponseObject::Description() {
    using Response = ResponseObject;
    static const platform::ClassDescription description{
        "Response",
        {
            Read<&Response::Count>("Count"),
            Read<&Response::ItemText<&Item::command>>("CMD", "Index"),
            Read<&Response::ItemText<&Item::first>>("FirstData", "Index"),
            Read<&Response::ItemText<&Item::second>>("SecondData", "Index"),
            Read<&Response::ItemText<&Item::extra>>("ExtraData", "Index"),
            Read<&Response::Content<&Answer::errCode>>("ErrCode"),
            Read<&Response::Content<&Answer::tag>>("Tag"),
            Read<&Response::Content<&Answer::loginId>>("LoginID"),
            Read<&Response::Content<&Answer::message>>("Message"),
            platform::Write<&Response::SetMessage>("Message"),
        }};
    return description;
}

}  // namespace switchdesk
