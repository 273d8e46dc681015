// The objects of this process that other processes can call.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/automation/dbus/Peers.h"
#include "platform/runtime/Object.h"

namespace platform {

// An object stays exported, at one path, while a peer holds a reference to it or it is lent (Loan).
class Exports {
  public:
    Exports(EventLoop& loop, Peers& peers) : loop_(loop), peers_(peers) {}

    // The object at a path, or null.
    ObjectRef Find(std::string_view path) const;
    // The paths in use, without the common prefix "/Object/".
    std::vector<std::string> Numbers() const;

    // Count one reference more, or one less, for the peer. Release returns false if the peer holds none.
    void Retain(const std::string& path, const std::string& peer);
    bool Release(const std::string& path, const std::string& peer);

    // As Release, but for a reference that came back to this process: the object isn't notified.
    void Reclaim(const std::string& path, const std::string& peer);

    void WhenInUse(std::function<void(bool)> changed) { inUseChanged_ = std::move(changed); }

    // True if there are objects that Settle has to notify.
    bool HasDepartures() const { return !departed_.empty(); }
    // Notifies the objects whose last client has left, and reports whether any clients remain if that has
    // changed. Separate from Release, so that the reply to a release can be sent first.
    void Settle();

  private:
    friend class Loan;

    struct Entry {
        ObjectRef object;
        std::int64_t held = 0, lent = 0;
        bool hadClient = false;
    };
    struct Holder {
        std::shared_ptr<void> watch;
        std::map<std::string, std::int64_t, std::less<>> counts;
    };
    using Entries = std::map<std::string, Entry, std::less<>>;

    const std::string& Lend(const ObjectRef& object);
    void EndLoan(const std::string& path);
    void PeerLeft(const std::string& peer);
    bool Discount(const std::string& path, const std::string& peer);
    void LeaveIfUnused(Entries::iterator entry);
    void SettleSoon();
    void TellUse();

    EventLoop& loop_;
    Peers& peers_;
    Entries entries_;
    std::unordered_map<const Object*, std::string> paths_;
    std::map<std::string, Holder> holders_;
    std::deque<ObjectRef> departed_;
    std::function<void(bool)> inUseChanged_;
    HandleRef settling_;
    std::uint64_t lastNumber_ = 0;
    bool toldInUse_ = false;
};

// Exports objects for as long as the loan exists, even if no peer holds a reference.
class Loan {
  public:
    explicit Loan(Exports& exports) : exports_(exports) {}
    ~Loan();
    Loan(const Loan&) = delete;
    Loan& operator=(const Loan&) = delete;

    // Lends an object and returns its path.
    std::string PathOf(const ObjectRef& object);
    // Counts a reference for the peer for each call of PathOf.
    void GrantTo(const std::string& peer);
    // For an object that was created for a peer but can't be sent to it: when the loan ends, the object is
    // notified as if the peer had released it.
    void Forfeit();

  private:
    Exports& exports_;
    std::vector<std::string> paths_;
};

}  // namespace platform
