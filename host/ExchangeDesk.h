// Manages the exchanges, the logins of clients and their requests.
#pragma once

#include <QCoreApplication>
#include <list>
#include <memory>
#include <vector>

#include "host/Exchange.h"
#include "host/ObservedObject.h"
#include "host/RequestRecord.h"

namespace switchdesk {

class ExchangeDesk {
    Q_DECLARE_TR_FUNCTIONS(ExchangeDesk)

  public:
    // `loop` and what `observation` refers to must outlive the desk.
    ExchangeDesk(platform::EventLoop& loop, const Observation& observation);

    // Names are compared exactly.
    void Add(platform::Text name, std::unique_ptr<Exchange> exchange);
    struct Watcher {
        // Reports the steps of requests, refused requests, and the outcome of requests that were given up.
        std::function<void(const platform::Text& exchange, const platform::Text& text)> report;
        std::function<void()> changed;  // called when the state of an exchange has changed
    };
    void ReportTo(Watcher watcher) { watcher_ = std::move(watcher); }

    struct Named {
        platform::Text name;
        std::unique_ptr<Exchange> exchange;
        std::optional<Exchange::Reading> clock{};        // when it was last read or set
        std::chrono::system_clock::time_point readAt{};  // the time of that reading, by this PC's clock
        platform::Text problem{};                        // why the last request failed, if it did
    };
    const std::vector<Named>& Exchanges() const { return exchanges_; }

    // Opens a connection and returns its key, or an empty text for an unknown exchange.
    platform::Text Connect(const platform::Text& name, const platform::ObjectRef& client);
    // Opens a login and returns its key; "BUSY" if the exchange has one already, "ERROR" for an unknown
    // exchange.
    platform::Text Login(const platform::Text& name, const platform::ObjectRef& client);
    // Takes a request, and delivers the answer later to CallBack of the login's client. "ERROR" unless its
    // login is for that exchange and has had no request yet.
    platform::Text Send(const platform::ObjectRef& record);
    // Ends a login or connection. Its request, if any, gets no answer. The key is enough: an add-in that has
    // meanwhile registered another exchange passes that one's name.
    void LogOut(const platform::Text& key);
    // Another exchange at which a client is logged in, or null.
    const platform::Text* BusyBesides(const platform::Text& name) const;
    // The exchange whose answer a client is receiving, or an empty text.
    const platform::Text& Answering() const { return answering_; }

  private:
    struct OpenKey {
        platform::Text key, exchange;
        bool isLogin = true;
        platform::ObjectRef client;
        std::shared_ptr<void> clientWatch;
        platform::HandleRef answer;  // the request under way
    };

    Named* Find(const platform::Text& name);
    OpenKey* FindLogin(const platform::Text& key);
    bool IsBusy(const platform::Text& name) const;
    platform::Text Open(platform::Text key, const platform::Text& name, bool isLogin,
                        const platform::ObjectRef& client);
    platform::Text RefuseAsBusy(Named& exchange);
    void Close(const platform::Text& key);
    void Perform(const Request& request);
    void Deliver(const Request& request, Exchange::Outcome outcome);
    void CallBack(const platform::Text& exchange, const platform::ObjectRef& client, Answer answer);

    platform::EventLoop& loop_;
    Observation observation_;
    Watcher watcher_{[](const platform::Text&, const platform::Text&) {}, [] {}};
    std::vector<Named> exchanges_;
    std::list<OpenKey> openKeys_;
    platform::Text answering_;
    int lastLogin_ = 0, lastConnection_ = 0, lastRequest_ = 0;
};

}  // namespace switchdesk
