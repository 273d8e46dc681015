// A process that serves "Test.cProcess" and can be told to end in several ways.
#include <unistd.h>

#include <cstdio>

#include "ScriptedObject.h"

namespace platform::test {
namespace {

Value Exit(Arguments&) {
    _exit(3);
}

std::vector<Member> Members(ObjectRef& kept) {
    return {Method("Echo", 1, [](Arguments& arguments) { return arguments[0]; }),
            Method("Keep", 1,
                   [&kept](Arguments& arguments) {
                       kept = arguments[0].ToObject();
                       return Value();
                   }),
            Method("Die", 0, Exit)};
}

int Serve() {
    PollLoop loop;
    ScriptedBoxes boxes;
    WaitSettings settings;
    ObjectRef kept;
    const auto automation = ConnectToSessionBus(loop, boxes, settings);
    automation->ServeClass("Test.cProcess", [&] {
        const auto object = std::make_shared<ScriptedObject>(Members(kept));
        object->whenLastClientGone = [&] { loop.Quit(); };
        return object;
    });
    loop.Run();
    automation->Flush();
    return 0;
}

}  // namespace
}  // namespace platform::test

int main() {
    try {
        return platform::test::Serve();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "test server: %s\n", error.what());
        return 1;
    }
}
