#include "host/ExchangeDesk.h"

#include <algorithm>
#include <utility>

#include "host/ResponseObject.h"
#include "platform/qt/QtText.h"
#include "platform/runtime/ScopeExit.h"

namespace switchdesk {

using platform::ObjectRef;
using platform::Text;

namespace {

constexpr platform::TextView busy = u"BUSY";

bool IsRefusal(const Text& result) {
    return result.empty() || result == busy || result == answer::error;
}

Text Key(const char16_t* prefix, int& last) {
    return prefix + platform::DecimalText(++last);
}

}  // namespace

ExchangeDesk::ExchangeDesk(platform::EventLoop& loop, const Observation& observation)
    : loop_(loop), observation_(observation) {}

void ExchangeDesk::Add(Text name, std::unique_ptr<Exchange> exchange) {
    exchanges_.push_back({std::move(name), std::move(exchange)});
}

ExchangeDesk::Named* ExchangeDesk::Find(const Text& name) {
    const auto found = std::find_if(exchanges_.begin(), exchanges_.end(),
                                    [&](const Named& entry) { return entry.name == name; });
    return found == exchanges_.end() ? nullptr : &*found;
}

ExchangeDesk::OpenKey* ExchangeDesk::FindLogin(const Text& key) {
    const auto found = std::find_if(openKeys_.begin(), openKeys_.end(),
                                    [&](const OpenKey& open) { return open.isLogin && open.key == key; });
    return found == openKeys_.end() ? nullptr : &*found;
}

bool ExchangeDesk::IsBusy(const Text& name) const {
    return std::any_of(openKeys_.begin(), openKeys_.end(),
                       [&](const OpenKey& open) { return open.isLogin && open.exchange == name; });
}

const Text* ExchangeDesk::BusyBesides(const Text& name) const {
    for (const OpenKey& open : openKeys_)
        if (open.isLogin && open.exchange != name) return &open.exchange;
    return nullptr;
}

Text ExchangeDesk::Open(Text key, const Text& name, bool isLogin, const ObjectRef& client) {
    OpenKey& open = openKeys_.emplace_back(OpenKey{key, name, isLogin, client, nullptr, nullptr});
    // The login of a client that dies must not block the exchange for ever.
    if (client)
        open.clientWatch = client->WhenOwnerGone([this, key] {
            observation_.log.Note("client of " + platform::ToUtf8(key) + " has left");
            Close(key);
        });
    return key;
}

void ExchangeDesk::Close(const Text& key) {
    openKeys_.remove_if([&](const OpenKey& open) { return open.key == key; });
}

Text ExchangeDesk::Connect(const Text& name, const ObjectRef& client) {
    if (!Find(name)) return {};
    return Open(Key(u"C", lastConnection_), name, false, client);
}

Text ExchangeDesk::Login(const Text& name, const ObjectRef& client) {
    const std::optional<Text>& forced = observation_.misbehaviour.login;
    if (forced && IsRefusal(*forced)) return *forced;
    Named* named = Find(name);
    if (!named) return Text(answer::error);
    if (IsBusy(name)) return RefuseAsBusy(*named);
    return Open(forced ? *forced : Key(u"L", lastLogin_), name, true, client);
}

Text ExchangeDesk::RefuseAsBusy(Named& exchange) {
    exchange.problem = platform::FromQt(tr("busy with another request"));
    watcher_.changed();
    watcher_.report(exchange.name, exchange.problem);
    return Text(busy);
}

Text ExchangeDesk::Send(const ObjectRef& record) {
    const Request request = ReadRequest(record);
    OpenKey* open = FindLogin(request.loginId);
    if (!open || open->exchange != request.exchange || open->answer) return Text(answer::error);
    // Never at once: clients rely on SendRequest returning before CallBack arrives.
    if (observation_.misbehaviour.answers)
        open->answer =
            loop_.After(observation_.misbehaviour.answerDelay, [this, request] { Perform(request); });
    return Key(u"R", lastRequest_);
}

void ExchangeDesk::LogOut(const Text& key) {
    Close(key);
}

void ExchangeDesk::Perform(const Request& request) {
    OpenKey* open = FindLogin(request.loginId);
    Named* named = Find(request.exchange);
    if (!open || !named) return;
    open->answer = named->exchange->Perform(
        request.items,
        {[this, name = named->name](const Text& step) { watcher_.report(name, step); },
         [this, request](Exchange::Outcome outcome) { Deliver(request, std::move(outcome)); }});
}

void ExchangeDesk::Deliver(const Request& request, Exchange::Outcome outcome) {
    Named& named = *Find(request.exchange);
    if (outcome.clock) {
        named.clock = outcome.clock;
        named.readAt = std::chrono::system_clock::now();
    }
    named.problem = outcome.failed ? outcome.message : Text();
    watcher_.changed();
    const OpenKey* open = FindLogin(request.loginId);
    if (!open) return watcher_.report(request.exchange, outcome.message);
    const ObjectRef client = open->client;
    CallBack(request.exchange, client,
             {std::move(outcome.items), 0, request.tag, request.loginId, std::move(outcome.message)});
}

void ExchangeDesk::CallBack(const Text& exchange, const ObjectRef& client, Answer answer) {
    const platform::ScopeExit restore(
        [this, outer = std::exchange(answering_, exchange)] { answering_ = outer; });
    observation_.misbehaviour.Spoil(answer);
    ObjectRef response = std::make_shared<ResponseObject>(observation_, answer);
    observation_.log.Note("CallBack");
    try {
        platform::Call(client, "CallBack", platform::ByRef(response));
        observation_.log.Note(response ? "CallBack returned, response kept" : "CallBack returned");
    } catch (const platform::RuntimeError& failure) {
        observation_.log.Note("CallBack raised error " + std::to_string(failure.Number()));
        // A client that didn't get the answer won't log out.
        Close(answer.loginId);
    }
}

}  // namespace switchdesk
