#include "platform/qt/QtEventLoop.h"

#include <QApplication>
#include <QEventLoop>
#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>

#include "platform/runtime/RuntimeError.h"

namespace platform {

namespace {

// Stops a timer or watch. Deletes it later if its own call may have dropped the handle.
template <class Source>
class SourceHandle : public Handle {
  public:
    explicit SourceHandle(Source& source) : source_(&source) {}
    ~SourceHandle() override {
        if (!source_) return;
        if constexpr (std::is_same_v<Source, QTimer>) {
            if (source_->isSingleShot() && source_->isActive()) {  // hasn't fired, so this isn't its own call
                delete source_.get();
                return;
            }
            source_->stop();
        } else {
            source_->setEnabled(false);
        }
        source_->disconnect();
        source_->deleteLater();
    }

  private:
    QPointer<Source> source_;
};

std::function<void()> Guarded(std::function<void()> call) {
    return [call = std::move(call)] { Guard(call); };
}

HandleRef StartTimer(QObject& parent, Milliseconds interval, bool once, std::function<void()> call) {
    auto* timer = new QTimer(&parent);
    timer->setTimerType(Qt::PreciseTimer);
    timer->setSingleShot(once);
    QObject::connect(timer, &QTimer::timeout, timer, Guarded(std::move(call)));
    timer->start(interval);
    return std::make_unique<SourceHandle<QTimer>>(*timer);
}

HandleRef StartWatch(QObject& parent, int descriptor, QSocketNotifier::Type type,
                     std::function<void()> call) {
    auto* notifier = new QSocketNotifier(descriptor, type, &parent);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, Guarded(std::move(call)));
    return std::make_unique<SourceHandle<QSocketNotifier>>(*notifier);
}

}  // namespace

QtEventLoop::QtEventLoop() {
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

HandleRef QtEventLoop::After(Milliseconds delay, std::function<void()> call) {
    return StartTimer(sources_, delay, true, std::move(call));
}

HandleRef QtEventLoop::Every(Milliseconds interval, std::function<void()> call) {
    return StartTimer(sources_, interval, false, std::move(call));
}

HandleRef QtEventLoop::WhenReadable(int descriptor, std::function<void()> call) {
    return StartWatch(sources_, descriptor, QSocketNotifier::Read, std::move(call));
}

HandleRef QtEventLoop::WhenWritable(int descriptor, std::function<void()> call) {
    return StartWatch(sources_, descriptor, QSocketNotifier::Write, std::move(call));
}

void QtEventLoop::Run() {
    if (!quit_) {
        if (running_++ == 0)
            QCoreApplication::exec();
        else
            QEventLoop().exec();
        --running_;
    }
    // Only the outermost run clears the request, so that all runs end.
    if (running_ == 0) quit_ = false;
}

void QtEventLoop::Quit() {
    quit_ = true;
    // Before the first run, exit would make Qt refuse to open boxes.
    if (running_ > 0) QCoreApplication::exit();
}

void QtEventLoop::ServeOnce() {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

}  // namespace platform
