#include "platform/automation/dbus/Session.h"

#include "platform/automation/dbus/RemoteObject.h"

namespace platform {

Session::Session(EventLoop& loop, WaitBoxes& boxes, const WaitSettings& settings)
    : connection_(loop),
      peers_(connection_),
      exports_(loop, peers_),
      caller_(connection_, loop, boxes, settings) {
    connection_.WhenLost([this] { peers_.LoseAll(); });
}

Session::~Session() {
    // Pending calls hold loans, which must end while the exports still exist.
    connection_.Close();
}

Address Session::AddressOf(const ObjectRef& object, Loan& loan) {
    if (!object) return {"", "/"};
    const auto* remote = dynamic_cast<const RemoteObject*>(object.get());
    if (remote && remote->IsReachedBy(*this)) return remote->Where();
    return {connection_.Name(), loan.PathOf(object)};
}

ObjectRef Session::OwnObject(const Address& address) const {
    ObjectRef object = exports_.Find(address.path);
    if (!object) throw RuntimeError(ErrorNumber::ServerGone, address.path);
    return object;
}

ObjectRef Session::Received(const Address& address, const std::string& sender) {
    if (address.IsNothing()) return nullptr;
    if (connection_.IsOwn(address.owner)) {
        ObjectRef object = OwnObject(address);
        // This process called itself: there is no proxy that would release the counted reference.
        if (sender == connection_.Name()) exports_.Reclaim(address.path, sender);
        return object;
    }
    auto object = std::make_shared<RemoteObject>(weak_from_this(), address);
    // Only the owner counts references. A third process that passes one on has counted nothing.
    if (address.owner == sender)
        object->Own();
    else
        object->Retain();
    return object;
}

void Session::Settle() {
    if (exports_.HasDepartures()) connection_.Flush();
    exports_.Settle();
}

}  // namespace platform
