#include "platform/automation/dbus/SessionBusNames.h"

#include <cstdlib>
#include <cstring>

#include "platform/automation/Names.h"
#include "platform/automation/dbus/Handles.h"
#include "platform/runtime/RuntimeError.h"

namespace platform {

namespace {

void RequireAnswer(int result) {
    if (result < 0) throw RuntimeError(ErrorNumber::ServerGone, std::strerror(-result));
}

BusRef Connected() {
    sd_bus* bus = nullptr;
    RequireAnswer(sd_bus_open_user(&bus));
    return BusRef(bus);
}

class SessionBusNames : public BusNames {
  public:
    std::set<std::string> Running() override { return List("ListNames"); }
    std::set<std::string> Startable() override { return List("ListActivatableNames"); }
    int ProcessOf(const std::string& name) override {
        sd_bus_creds* found = nullptr;
        pid_t process = 0;
        if (!bus_) bus_ = Connected();
        if (sd_bus_get_name_creds(bus_.get(), name.c_str(), SD_BUS_CREDS_PID, &found) < 0) return 0;
        const std::unique_ptr<sd_bus_creds, decltype(&sd_bus_creds_unref)> credentials(found,
                                                                                       sd_bus_creds_unref);
        return sd_bus_creds_get_pid(found, &process) < 0 ? 0 : process;
    }
    void Reload() override { Ask("ReloadConfig"); }

  private:
    MessageRef Ask(const char* method) {
        if (!bus_) bus_ = Connected();
        sd_bus_message* reply = nullptr;
        RequireAnswer(sd_bus_call_method(bus_.get(), bus::daemonName, bus::daemonPath, bus::daemonName,
                                         method, nullptr, &reply, ""));
        return Adopted(reply);
    }

    std::set<std::string> List(const char* method) {
        char** names = nullptr;
        RequireAnswer(sd_bus_message_read_strv(Ask(method).get(), &names));
        std::set<std::string> list;
        for (char** name = names; name && *name; ++name) {
            list.insert(*name);
            std::free(*name);
        }
        std::free(names);
        return list;
    }

    BusRef bus_;
};

}  // namespace

std::unique_ptr<BusNames> MakeSessionBusNames() {
    return std::make_unique<SessionBusNames>();
}

void SetForStartedPrograms(const char* variable, const char* value) {
    const BusRef bus = Connected();
    RequireAnswer(sd_bus_call_method(bus.get(), bus::daemonName, bus::daemonPath, bus::daemonName,
                                     "UpdateActivationEnvironment", nullptr, nullptr, "a{ss}", 1, variable,
                                     value));
}

}  // namespace platform
