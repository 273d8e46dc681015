// An exchange whose clock is the system clock of a Linux machine, set by systemd-timedated.
#pragma once

#include <QCoreApplication>
#include <list>
#include <memory>

#include "host/Exchange.h"
#include "host/TimedateLink.h"
#include "platform/runtime/Date.h"

namespace switchdesk {

// Performs one request after the other. Items contain times in the exchange's time zone.
class TimedateExchange : public Exchange {
    Q_DECLARE_TR_FUNCTIONS(TimedateExchange)

  public:
    // `address` is [user@]host for ssh, or empty for this PC. `loop` must outlive the exchange, and the
    // exchange its handles.
    TimedateExchange(platform::EventLoop& loop, QString address, bool maySet);

    platform::HandleRef Perform(std::vector<Item> request, Listener listener) override;

  private:
    using Steady = std::chrono::steady_clock;
    using Microseconds = std::chrono::microseconds;

    struct Work;
    struct Ticket;

    // A reading of the exchange's clock, at a time of this PC's steady clock. Exact to `within`, half the
    // round trip.
    struct Sample {
        Microseconds clock{}, within{};
        Steady::time_point at;
    };

    static Reading ReadingOf(const Sample& sample);

    void GoOn();
    void Begin();
    void Cancel(const std::shared_ptr<Work>& work);
    void Limit(platform::Milliseconds limit);
    void ReadZone(std::function<void(const QByteArray& zone)> then);
    void ReadClock(std::function<void(const Sample& sample)> then);
    void AnswerFrom(const Sample& sample);
    void Set(Microseconds halfWay);
    Microseconds BehindPc() const;
    void Look(const Failure& why);
    void Judge(const Sample& sample);
    void Failed(const Failure& why);
    void Report(const QString& step);
    void Refuse(platform::TextView answer, const QString& why);
    void Finish(Outcome outcome);

    platform::EventLoop& loop_;
    const bool maySet_;
    std::list<std::shared_ptr<Work>> works_;  // the first one is being performed
    platform::HandleRef next_, limit_;
    TimedateLink link_;
};

}  // namespace switchdesk
