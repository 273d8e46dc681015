#include "platform/automation/dbus/Peers.h"

#include <utility>

#include "platform/automation/Names.h"
#include "platform/runtime/RuntimeError.h"

namespace platform {

namespace {

std::string RuleFor(const std::string& name) {
    return "type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',"
           "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='" +
           name + "'";
}

bool SaysNobody(sd_bus_message* reply) {
    int hasOwner = 1;
    return sd_bus_message_read_basic(reply, 'b', &hasOwner) > 0 && hasOwner == 0;
}

}  // namespace

// One caller's interest; it keeps the peer's match alive.
struct Peers::Subscription {
    std::shared_ptr<Peer> peer;
    std::function<void()> left;
};

struct Peers::Peer {
    SlotRef match;
    std::vector<std::weak_ptr<Subscription>> subscriptions;
};

std::shared_ptr<void> Peers::Watch(const std::string& name, std::function<void()> left) {
    const auto peer = PeerOf(name);
    auto subscription = std::make_shared<Subscription>(Subscription{peer, std::move(left)});
    std::erase_if(peer->subscriptions, [](const auto& entry) { return entry.expired(); });
    peer->subscriptions.push_back(subscription);
    return subscription;
}

std::shared_ptr<Peers::Peer> Peers::PeerOf(const std::string& name) {
    if (const auto known = peers_.find(name); known != peers_.end())
        if (auto peer = known->second.lock()) return peer;
    std::erase_if(peers_, [](const auto& entry) { return entry.second.expired(); });
    auto peer = std::make_shared<Peer>();
    peers_[name] = peer;
    try {
        Subscribe(name, peer);
    } catch (const RuntimeError&) {
        connection_.Defer([this, name] { Left(name); });
    }
    return peer;
}

void Peers::Subscribe(const std::string& name, const std::shared_ptr<Peer>& peer) {
    peer->match = connection_.AddMatch(RuleFor(name), OnNameChange, this);
    // The match doesn't report those who left before it was installed.
    const MessageRef question =
        connection_.NewCall(bus::daemonName, bus::daemonPath, bus::daemonName, "NameHasOwner");
    sd_bus_message_append_basic(question.get(), 's', name.c_str());
    connection_.SendCall(question.get(), [this, name](const MessageRef& reply) {
        if (reply && SaysNobody(reply.get())) Left(name);
    });
}

// Checks the sender, since a peer can send such a signal directly to this process, where the match rule
// doesn't apply.
int Peers::OnNameChange(sd_bus_message* message, void* context, sd_bus_error*) noexcept {
    const char* sender = sd_bus_message_get_sender(message);
    if (!sender || std::string_view(sender) != bus::daemonName) return 1;
    auto* self = static_cast<Peers*>(context);
    const char *name = nullptr, *before = nullptr, *after = nullptr;
    if (sd_bus_message_read(message, "sss", &name, &before, &after) > 0 && *after == '\0')
        self->connection_.Defer([self, left = std::string(name)] { self->Left(left); });
    return 1;
}

void Peers::Left(const std::string& name) {
    const auto found = peers_.find(name);
    if (found == peers_.end()) return;
    const auto peer = found->second.lock();
    peers_.erase(found);
    if (!peer) return;
    for (const auto& entry : std::exchange(peer->subscriptions, {}))
        if (const auto subscription = entry.lock()) Guard(subscription->left);
}

void Peers::LoseAll() {
    while (!peers_.empty()) {
        const std::string name = peers_.begin()->first;
        Left(name);
    }
}

}  // namespace platform
