// The clock service of a machine, org.freedesktop.timedate1 on its system bus.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "host/Answer.h"
#include "host/SshTunnel.h"
#include "platform/automation/dbus/Handles.h"
#include "platform/runtime/EventLoop.h"

namespace switchdesk {

// Makes one call at a time. Opens its connection for the first call, and keeps it open.
class TimedateLink {
    Q_DECLARE_TR_FUNCTIONS(TimedateLink)

  public:
    // `address` is [user@]host, or empty for this PC. `failed` ends a call that can't be answered; it may
    // start another. `loop` must outlive the link.
    TimedateLink(platform::EventLoop& loop, QString address, std::function<void(const Failure& why)> failed);

    bool IsOpen() const { return bus_ != nullptr; }

    // Read a property, and call `then` with its value.
    void ReadText(const char* property, std::function<void(std::string value)> then);
    void ReadNumber(const char* property, std::function<void(std::uint64_t value)> then);
    // Sets the clock. `time` is in microseconds since 1970, UTC. Never prompts for a password.
    void SetTime(std::int64_t time, std::function<void()> then);

    // Drops the pending call. If it is a write, it may still take effect.
    void Forget();
    // Drops the pending call, and closes the connection.
    void Close();

  private:
    using Then = std::function<void(sd_bus_message* answer)>;

    static int OnAnswer(sd_bus_message* answer, void* self, sd_bus_error*) noexcept;

    bool Open();
    int OpenTunnel(sd_bus*& bus);
    void Read(const char* property, Then then);
    void Send(const char* interface, const char* member, const std::function<int(sd_bus_message*)>& fill,
              Then then);
    void Serve();
    void Act(const platform::MessageRef& answer);
    void EndOfBus();
    void Fail(const Failure& why);

    platform::EventLoop& loop_;
    const QString address_;
    std::function<void(const Failure& why)> failed_;
    std::unique_ptr<SshTunnel> tunnel_;
    platform::BusRef bus_;
    platform::SlotRef slot_;
    Then then_;
    platform::MessageRef answer_;  // received, not yet handled
    platform::HandleRef readable_, writable_, soon_;
    bool answered_ = false;  // an answer has arrived on this connection
};

}  // namespace switchdesk
