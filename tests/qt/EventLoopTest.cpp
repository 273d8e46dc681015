#include <array>

#include "QtFixture.h"

namespace platform {
namespace {

EventLoop& Loop() {
    return TheDesktop().Loop();
}

TEST(EventLoopTest, EveryGoesOnBehindAnError) {
    int calls = 0;
    const HandleRef timer = Loop().Every(Milliseconds(1), [&] {
        ++calls;
        throw RuntimeError(ErrorNumber::Overflow);
    });
    EXPECT_TRUE(Until([&] { return calls >= 3; }));
}

TEST(EventLoopTest, HandlesMayBeDroppedInsideTheirCall) {
    int calls = 0;
    HandleRef timer;
    const auto big = std::make_shared<std::array<int, 100>>();
    timer = Loop().Every(Milliseconds(1), [&calls, &timer, big] {
        timer.reset();
        Settle();
        calls += static_cast<int>(big.use_count()) > 1;  // what the call holds is still there
    });
    EXPECT_TRUE(Until([&] { return calls > 0; }));
    Settle();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(big.use_count(), 1);
}

TEST(EventLoopTest, QuitCountsBeforeARunAndTheNextRunStartsAnew) {
    bool reached = false;
    const HandleRef timer = Loop().After(Milliseconds(0), [&] {
        reached = true;
        Loop().Quit();
    });
    Loop().Quit();
    Loop().Run();
    EXPECT_FALSE(reached);
    Loop().Run();
    EXPECT_TRUE(reached);
}

}  // namespace
}  // namespace platform
