// A process that serves "Test.cProcess" and can be told to end in several ways.
#include <unistd.h>

#include "../unit/FakeWaits.h"
#include "PollLoop.h"
#include "ScriptedObject.h"
#include "platform/automation/dbus/BusAutomation.h"

int main() {
    using namespace platform;
    using namespace platform::test;
    PollLoop loop;
    fakes::FakeWaits boxes;
    WaitSettings settings;
    ObjectRef kept;
    const auto automation = ConnectToSessionBus(loop, boxes, settings);
    automation->ServeClass("Test.cProcess", [&] {
        const auto object = Scripted({Echo(), Keep(kept), Method("Die", 0, [](Arguments&) { _exit(3); })});
        object->whenLastClientGone = [&] { loop.Quit(); };
        return object;
    });
    loop.Run();
    automation->Flush();
}
