#include <gtest/gtest.h>

#include "../../bus/PrivateBus.h"
#include "platform/automation/dbus/SessionBusNames.h"
#include "platform/runtime/RuntimeError.h"

namespace setup {
namespace {

TEST(BusNamesTest, KnowsWhatRunsAndWhatCanBeStarted) {
    platform::test::PrivateBus bus;
    const auto names = platform::MakeSessionBusNames();
    EXPECT_TRUE(names->Running().contains("org.freedesktop.DBus"));
    EXPECT_FALSE(names->Startable().contains("Test.cClass"));
    bus.AddService("Test.cClass", "/bin/false");
    names->Reload();
    EXPECT_TRUE(names->Startable().contains("Test.cClass"));
    EXPECT_FALSE(names->Running().contains("Test.cClass"));
    bus.Stop();
    EXPECT_THROW(names->Running(), platform::RuntimeError);
    EXPECT_THROW(platform::MakeSessionBusNames()->Running(), platform::RuntimeError);
}

}  // namespace
}  // namespace setup
