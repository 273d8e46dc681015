#include "host/SimulatedExchange.h"

#include "host/ClockItems.h"
#include "platform/qt/QtText.h"

namespace switchdesk {

namespace {

constexpr double minutesOfADay = 24 * 60;

}  // namespace

SimulatedExchange::SimulatedExchange(platform::Scheduler& scheduler, const platform::Clock& pcClock,
                                     double minutesAhead)
    : scheduler_(scheduler), pcClock_(pcClock), daysAhead_(minutesAhead / minutesOfADay) {}

platform::HandleRef SimulatedExchange::Perform(std::vector<Item> request, Listener listener) {
    return scheduler_.After(
        platform::Milliseconds(0),
        [this, request = std::move(request), done = std::move(listener.done)] { done(PerformNow(request)); });
}

Exchange::Outcome SimulatedExchange::PerformNow(std::vector<Item> request) {
    const platform::Date pc = pcClock_.Now();
    AnsweredItems answer = AnswerItems(std::move(request), {pc.days + daysAhead_});
    if (answer.change) daysAhead_ = platform::MakeDate(*answer.change).days - pc.days;
    const auto ahead = std::chrono::duration<double, std::ratio<86400>>(daysAhead_);
    const QString message = !answer.good    ? tr("The request isn't valid.")
                            : answer.change ? tr("clock set")
                                            : tr("clock read");
    return {std::move(answer.items), platform::FromQt(message), !answer.good,
            Reading{std::chrono::round<std::chrono::seconds>(ahead), {}}};
}

}  // namespace switchdesk
