#include <gtest/gtest.h>

#include "../../bus/PrivateBus.h"
#include "platform/automation/dbus/SessionBusNames.h"
#include "platform/runtime/RuntimeError.h"

namespace setup {
namespace {

TEST(BusNamesTest, KnowsWhatRunsAndWhatCanBeStarted) {
    platform::test::PrivateBus bus;
    const auto names = platform::MakeSessionBusNames();
    const std::string itself = "org.freedesktop.DBus", asker = ":1.0";
    EXPECT_TRUE(names->Running().contains(itself));
    EXPECT_TRUE(names->Running().contains(asker));
    EXPECT_EQ(names->Startable(), std::set{itself}) << "the bus has no service files";
    EXPECT_NO_THROW(names->Reload());
    bus.Stop();
    EXPECT_THROW(names->Running(), platform::RuntimeError);
    EXPECT_THROW(platform::MakeSessionBusNames()->Running(), platform::RuntimeError);
}

}  // namespace
}  // namespace setup
