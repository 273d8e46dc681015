#include "platform/automation/dbus/Exports.h"

#include "platform/automation/dbus/Nodes.h"
#include "platform/runtime/RuntimeError.h"

namespace platform {

ObjectRef Exports::Find(std::string_view path) const {
    const auto found = entries_.find(path);
    return found == entries_.end() ? nullptr : found->second.object;
}

std::vector<std::string> Exports::Numbers() const {
    std::vector<std::string> numbers;
    for (const auto& [path, entry] : entries_) numbers.push_back(path.substr(path.rfind('/') + 1));
    return numbers;
}

void Exports::Retain(const std::string& path, const std::string& peer) {
    const auto found = entries_.find(path);
    if (found == entries_.end()) return;
    Holder& holder = holders_[peer];
    if (!holder.watch) holder.watch = peers_.Watch(peer, [this, peer] { PeerLeft(peer); });
    ++holder.counts[path];
    ++found->second.held;
    found->second.hadClient = true;
}

bool Exports::Release(const std::string& path, const std::string& peer) {
    if (!Discount(path, peer)) return false;
    LeaveIfUnused(entries_.find(path));
    return true;
}

void Exports::Reclaim(const std::string& path, const std::string& peer) {
    if (!Discount(path, peer)) return;
    const auto entry = entries_.find(path);
    entry->second.hadClient = entry->second.held > 0;
    LeaveIfUnused(entry);
    SettleSoon();
}

bool Exports::Discount(const std::string& path, const std::string& peer) {
    const auto holder = holders_.find(peer);
    if (holder == holders_.end()) return false;
    auto& counts = holder->second.counts;
    const auto count = counts.find(path);
    if (count == counts.end()) return false;
    if (--count->second == 0) counts.erase(count);
    if (counts.empty()) holders_.erase(holder);
    --entries_.find(path)->second.held;
    return true;
}

void Exports::PeerLeft(const std::string& peer) {
    // Keeps the peer's counts alive until all of its references are released.
    const auto left = holders_.extract(peer);
    if (left.empty()) return;
    for (const auto& [path, count] : left.mapped().counts) {
        const auto entry = entries_.find(path);
        entry->second.held -= count;
        LeaveIfUnused(entry);
    }
    Settle();
}

const std::string& Exports::Lend(const ObjectRef& object) {
    const auto [place, isNew] = paths_.try_emplace(object.get());
    if (isNew) {
        place->second = objectsPath + ("/" + std::to_string(++lastNumber_));
        entries_[place->second].object = object;
    }
    ++entries_[place->second].lent;
    return place->second;
}

void Exports::EndLoan(const std::string& path) {
    const auto entry = entries_.find(path);
    --entry->second.lent;
    LeaveIfUnused(entry);
}

void Exports::LeaveIfUnused(Entries::iterator entry) {
    if (entry->second.held > 0 || entry->second.lent > 0) return;
    const Entry left = std::move(entry->second);
    paths_.erase(left.object.get());
    entries_.erase(entry);
    if (!left.hadClient) return;
    Guard([&] { left.object->LastClientLeaves(); });
    departed_.push_back(left.object);
    SettleSoon();
}

// Used where no caller will settle, e.g. after a reply that ended a loan.
void Exports::SettleSoon() {
    if (!settling_) settling_ = loop_.After(Milliseconds(0), [this] { Settle(); });
}

void Exports::Settle() {
    const HandleRef settled = std::move(settling_);
    while (!departed_.empty()) {
        const ObjectRef object = std::move(departed_.front());
        departed_.pop_front();
        Guard([&] { object->LastClientGone(); });
    }
    TellUse();
}

void Exports::TellUse() {
    const bool inUse = !holders_.empty();
    if (inUse == toldInUse_) return;
    toldInUse_ = inUse;
    if (inUseChanged_) Guard([&] { inUseChanged_(inUse); });
}

Loan::~Loan() {
    for (const std::string& path : paths_) exports_.EndLoan(path);
}

std::string Loan::PathOf(const ObjectRef& object) {
    paths_.push_back(exports_.Lend(object));
    return paths_.back();
}

void Loan::Forfeit() {
    for (const std::string& path : paths_) exports_.entries_.find(path)->second.hadClient = true;
}

void Loan::GrantTo(const std::string& peer) {
    for (const std::string& path : paths_) exports_.Retain(path, peer);
}

}  // namespace platform
