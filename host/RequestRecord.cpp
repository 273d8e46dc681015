#include "host/RequestRecord.h"

namespace switchdesk {

using platform::Get;

namespace {

Item ReadItem(const platform::ObjectRef& record, std::int16_t index) {
    return {Get(record, "CMD", index).ToText(), Get(record, "FirstData", index).ToText(),
            Get(record, "SecondData", index).ToText(), Get(record, "ExtraData", index).ToText()};
}

}  // namespace

Request ReadRequest(const platform::ObjectRef& record) {
    Request request;
    request.exchange = Get(record, "PBXName").ToText();
    request.loginId = Get(record, "LoginID").ToText();
    request.tag = Get(record, "Tag").ToText();
    const std::int16_t count = Get(record, "Count").ToInteger();
    for (std::int16_t i = 0; i < count; ++i) request.items.push_back(ReadItem(record, i));
    return request;
}

}  // namespace switchdesk
