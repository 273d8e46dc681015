#include "host/TimedateExchange.h"

#include <QDateTime>
#include <QTimeZone>
#include <algorithm>

#include "host/ClockItems.h"
#include "host/ZoneTime.h"
#include "platform/qt/QtText.h"

namespace switchdesk {

using platform::FromQt;
using platform::Milliseconds;
using std::chrono::duration_cast;
using std::chrono::microseconds;
using std::chrono::seconds;

namespace {

// Together less than the 20 seconds after which an add-in asks its operator whether to keep waiting.
constexpr Milliseconds requestLimit{12000}, lookLimit{6000};
constexpr Milliseconds keptOpen{60000};
constexpr platform::TextView writeFailed = u"LNK_CMD WERR";
// A time at most this much older than the PC's clock is taken for the PC's time: the dialog updates late, and
// its request takes a while to arrive.
constexpr microseconds followsPc = seconds(3);
constexpr microseconds sameTime = seconds(1);

microseconds PcClock() {
    return duration_cast<microseconds>(std::chrono::system_clock::now().time_since_epoch());
}

std::int64_t SecondsOf(microseconds time) {
    return std::chrono::floor<seconds>(time).count();
}

}  // namespace

struct TimedateExchange::Work {
    std::vector<Item> request;
    Listener listener;
    Steady::time_point began = Steady::now();
    microseconds pcClock = PcClock();  // when the request began
    QTimeZone zone = QTimeZone::utc();
    AnsweredItems answer;
    QString note;           // for the operator, on the time that was chosen
    microseconds target{};  // what the clock should have shown when the request began
    bool isSent = false;    // the clock may have been set
    QString trouble;        // why it isn't known whether it was set; if not empty, the clock is read again

    microseconds Target(Steady::time_point at) const {
        return target + duration_cast<microseconds>(at - began);
    }
};

struct TimedateExchange::Ticket : platform::Handle {
    Ticket(TimedateExchange& exchange, std::shared_ptr<Work> work)
        : exchange_(exchange), work_(std::move(work)) {}
    ~Ticket() override { exchange_.Cancel(work_); }

  private:
    TimedateExchange& exchange_;
    const std::shared_ptr<Work> work_;
};

TimedateExchange::TimedateExchange(platform::EventLoop& loop, QString address, bool maySet)
    : loop_(loop),
      maySet_(maySet),
      link_(loop, std::move(address), [this](const Failure& why) { Failed(why); }) {}

platform::HandleRef TimedateExchange::Perform(std::vector<Item> request, Listener listener) {
    auto work = std::make_shared<Work>();
    work->request = std::move(request);
    work->listener = std::move(listener);
    works_.push_back(work);
    if (works_.size() == 1) GoOn();
    return std::make_unique<Ticket>(*this, std::move(work));
}

void TimedateExchange::Cancel(const std::shared_ptr<Work>& work) {
    const bool isUnderWay = !works_.empty() && works_.front() == work;
    if (isUnderWay && work->isSent) return;
    works_.remove(work);
    if (!isUnderWay) return;
    link_.Forget();
    GoOn();
}

// Begins the next request soon, or closes the idle connection after a while.
void TimedateExchange::GoOn() {
    limit_.reset();
    if (works_.empty())
        next_ = loop_.After(keptOpen, [this] { link_.Close(); });
    else
        next_ = loop_.After(Milliseconds(0), [this] { Begin(); });
}

void TimedateExchange::Begin() {
    if (Writes(works_.front()->request) && !maySet_)
        return Refuse(u"CODE NOT ALLOWED",
                      tr("Its clock may only be read. To set it, add \",set\" to its line in "
                         "exchanges.ini, or to --exchange."));
    Limit(requestLimit);
    Report(link_.IsOpen() ? tr("reading the clock") : tr("connecting"));
    ReadZone([this](const QByteArray& zone) {
        Work& work = *works_.front();
        work.zone = zone.isEmpty() ? QTimeZone::utc() : QTimeZone(zone);
        if (!work.zone.isValid())
            return Refuse(u"LNK_SYSERROR",
                          tr("Its time zone %1 is unknown on this PC.").arg(QString::fromUtf8(zone)));
        ReadClock([this](const Sample& sample) { AnswerFrom(sample); });
    });
}

void TimedateExchange::Limit(Milliseconds limit) {
    limit_ = loop_.After(limit, [this] {
        link_.Close();
        Failed({u"LNK_TIMEOUT", FromQt(tr("It didn't answer in time.")), true});
    });
}

// Called before the first ReadClock on a connection: connecting then doesn't lengthen the measured round
// trip.
void TimedateExchange::ReadZone(std::function<void(const QByteArray& zone)> then) {
    link_.ReadText("Timezone", [then = std::move(then)](const std::string& zone) {
        then(QByteArray::fromStdString(zone));
    });
}

void TimedateExchange::ReadClock(std::function<void(const Sample& sample)> then) {
    link_.ReadNumber("TimeUSec", [then = std::move(then), sent = Steady::now()](std::uint64_t time) {
        const Steady::time_point now = Steady::now();
        const auto halfWay = duration_cast<microseconds>(now - sent) / 2;
        then({microseconds(time) + halfWay, halfWay, now});
    });
}

void TimedateExchange::AnswerFrom(const Sample& sample) {
    Work& work = *works_.front();
    const platform::DateParts shown = ShownAt(SecondsOf(sample.clock), work.zone);
    work.answer = AnswerItems(work.request, platform::MakeDate(shown));
    if (work.answer.change) return Set(sample.within);
    Finish({work.answer.items, FromQt(work.answer.good ? tr("clock read") : tr("The request isn't valid.")),
            !work.answer.good, ReadingOf(sample)});
}

void TimedateExchange::Set(microseconds halfWay) {
    Work& work = *works_.front();
    const std::vector<std::int64_t> times = TimesShowing(*work.answer.change, work.zone);
    if (times.empty())
        return Finish({RefuseTime(work.answer.items),
                       FromQt(tr("Its clocks skip that time: they are put forward on that day.")),
                       true,
                       {}});
    if (times.size() > 1)
        work.note = tr(". Its clocks show that time twice on that day; the first was taken (%1).")
                        .arg(work.zone.abbreviation(QDateTime::fromSecsSinceEpoch(times[0])));
    work.target = seconds(times[0]) + BehindPc();
    work.isSent = true;
    Report(tr("setting the clock"));
    const auto target = work.Target(Steady::now()) + halfWay;
    link_.SetTime(target.count(), [this, halfWay] {
        const Work& done = *works_.front();
        const Steady::time_point now = Steady::now();
        Finish({done.answer.items, FromQt(tr("clock set") + done.note), false,
                ReadingOf({done.Target(now), halfWay, now})});
    });
}

// If the requested time is that of this PC's clock, the clock should be set to the PC's exact time. The
// dialog shows that only to the second and with some delay, so returns the difference to add. Any other time
// applies as of the start of the request, so returns 0.
microseconds TimedateExchange::BehindPc() const {
    const Work& work = *works_.front();
    const auto pcShows = ShownAt(SecondsOf(work.pcClock), QTimeZone::systemTimeZone());
    const seconds behind{TimesShowing(pcShows, QTimeZone::utc())[0] -
                         TimesShowing(*work.answer.change, QTimeZone::utc())[0]};
    if (behind < seconds(0) || behind >= followsPc) return microseconds(0);
    return behind + work.pcClock % seconds(1);
}

// Reads the clock after an unanswered write. Never writes again, since the first write may still arrive.
void TimedateExchange::Look(const Failure& why) {
    works_.front()->trouble = platform::ToQt(why.sentence);
    Report(tr("no answer; looking whether the clock was set"));
    Limit(lookLimit);
    ReadZone([this](const QByteArray&) { ReadClock([this](const Sample& sample) { Judge(sample); }); });
}

void TimedateExchange::Judge(const Sample& sample) {
    const Work& work = *works_.front();
    const auto off = std::chrono::abs(sample.clock - work.Target(sample.at));
    const bool isSet = off <= sameTime + sample.within;
    const QString message =
        work.trouble + u' ' + (isSet ? tr("The clock shows the new time.") : tr("The clock was not set."));
    Finish({isSet ? work.answer.items : RefuseItems(work.request, writeFailed), FromQt(message), !isSet,
            ReadingOf(sample)});
}

void TimedateExchange::Failed(const Failure& why) {
    const Work& work = *works_.front();
    if (!work.trouble.isEmpty())
        Refuse(writeFailed, work.trouble + u' ' + tr("Whether the clock was set isn't known: read it."));
    else if (work.isSent && why.uncertain)
        Look(why);
    else
        Refuse(why.answer, platform::ToQt(why.sentence));
}

void TimedateExchange::Report(const QString& step) {
    works_.front()->listener.underWay(FromQt(step));
}

Exchange::Reading TimedateExchange::ReadingOf(const Sample& sample) {
    const auto since = duration_cast<microseconds>(Steady::now() - sample.at);
    return {sample.clock + since - PcClock(), sample.within};
}

void TimedateExchange::Refuse(platform::TextView answer, const QString& why) {
    Finish({RefuseItems(works_.front()->request, answer), FromQt(why), true, {}});
}

void TimedateExchange::Finish(Outcome outcome) {
    const auto done = std::move(works_.front()->listener.done);
    works_.pop_front();
    GoOn();
    done(std::move(outcome));
}

}  // namespace switchdesk
