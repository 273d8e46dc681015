// A simulated exchange.
#pragma once

#include <QCoreApplication>

#include "host/Exchange.h"
#include "platform/runtime/Date.h"

namespace switchdesk {

class SimulatedExchange : public Exchange {
    Q_DECLARE_TR_FUNCTIONS(SimulatedExchange)

  public:
    // `pcClock` drives the exchange's clock, which starts `minutesAhead` minutes ahead. Both references must
    // outlive the exchange.
    SimulatedExchange(platform::Scheduler& scheduler, const platform::Clock& pcClock, double minutesAhead);

    platform::HandleRef Perform(std::vector<Item> request, Listener listener) override;

  private:
    Outcome PerformNow(std::vector<Item> request);

    platform::Scheduler& scheduler_;
    const platform::Clock& pcClock_;
    double daysAhead_;
};

}  // namespace switchdesk
