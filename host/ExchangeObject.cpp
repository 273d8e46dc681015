#include "host/ExchangeObject.h"

#include "platform/runtime/MemberTable.h"

namespace switchdesk {

using platform::Method;

const platform::ClassDescription& ExchangeObject::Description() {
    static const platform::ClassDescription description{
        "cPBXOle",
        {
            Method<&ExchangeObject::ConnectToPbx>("ConnectToPbx", "PBXName", "Client"),
            Method<&ExchangeObject::Login>("Login", "PBXName", "Client"),
            Method<&ExchangeObject::SendRequest>("SendRequest", "Request"),
            Method<&ExchangeObject::LogOut>("LogOut", "PBXName", "LoginID"),
        }};
    return description;
}

}  // namespace switchdesk
