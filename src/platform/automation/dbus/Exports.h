// The objects of this process that others can reach.
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

// An object stays, under one path, for as long as a peer holds a reference to it or it is lent.
class Exports {
  public:
    Exports(EventLoop& loop, Peers& peers) : loop_(loop), peers_(peers) {}

    // The object at a path, or null.
    ObjectRef Find(std::string_view path) const;
    // The paths in use, without the common beginning "/Object/".
    std::vector<std::string> Numbers() const;

    // Counts a reference more, or one less, for the peer. False where it holds none.
    void Retain(const std::string& path, const std::string& peer);
    bool Release(const std::string& path, const std::string& peer);

    // As Release, but for a reference that turned out to have come back to this process: nobody hears of it.
    void Reclaim(const std::string& path, const std::string& peer);

    void WhenInUse(std::function<void(bool)> changed) { inUseChanged_ = std::move(changed); }

    // True where objects wait for Settle to hear that their last client has left.
    bool HasDepartures() const { return !departed_.empty(); }
    // Lets those objects know; returns whether there still are clients. Apart from Release, so that its
    // answer can leave first.
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

// Objects that can be reached from outside for a while without being held by anyone.
class Loan {
  public:
    explicit Loan(Exports& exports) : exports_(exports) {}
    ~Loan();
    Loan(const Loan&) = delete;
    Loan& operator=(const Loan&) = delete;

    // Lends one object and gives its path.
    std::string PathOf(const ObjectRef& object);
    // Counts one reference for the peer for each time that an object was lent.
    void GrantTo(const std::string& peer);
    // For what was created for a peer and can't be given to it: as if the peer had held it and let go.
    void Forfeit();

  private:
    Exports& exports_;
    std::vector<std::string> paths_;
};

}  // namespace platform
