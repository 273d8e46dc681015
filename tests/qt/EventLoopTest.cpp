#include <unistd.h>

#include <array>

#include "QtFixture.h"

namespace platform {
namespace {

EventLoop& Loop() {
    return TheDesktop().Loop();
}

TEST(EventLoopTest, AfterCallsOnceEveryGoesOnBehindAnErrorAndADroppedTimerNeverCalls) {
    int once = 0, often = 0, never = 0;
    const HandleRef after = Loop().After(Milliseconds(1), [&] { ++once; });
    const HandleRef every = Loop().Every(Milliseconds(1), [&] {
        ++often;
        throw RuntimeError(ErrorNumber::Overflow);
    });
    HandleRef dropped = Loop().After(Milliseconds(0), [&] { ++never; });
    dropped.reset();
    EXPECT_TRUE(Until([&] { return often >= 5; }));
    EXPECT_EQ(once, 1);
    EXPECT_EQ(never, 0);
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

TEST(EventLoopTest, WatchesDescriptorsAlsoInsideTheCallOfAWatch) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::string got;
    bool nested = false, writable = false;
    const HandleRef reading = Loop().WhenReadable(ends[0], [&] {
        char c = 0;
        EXPECT_EQ(read(ends[0], &c, 1), 1);
        got += c;
        if (std::exchange(nested, true)) return;
        EXPECT_TRUE(Until([&] { return got == "ab"; }));
    });
    HandleRef writing = Loop().WhenWritable(ends[1], [&] {
        writable = true;
        writing.reset();
    });
    EXPECT_TRUE(Until([&] { return writable; }));
    EXPECT_EQ(got, "");
    ASSERT_EQ(write(ends[1], "ab", 2), 2);
    EXPECT_TRUE(Until([&] { return got == "ab"; }));
    close(ends[0]);
    close(ends[1]);
}

TEST(EventLoopTest, QuitCountsBeforeARunAndEndsNestedRunsAndTheNextRunStartsAnew) {
    std::string order;
    const HandleRef outer = Loop().After(Milliseconds(0), [&] {
        const HandleRef inner = Loop().After(Milliseconds(0), [&] { Loop().Quit(); });
        Loop().Run();
        order += "inner ";
    });
    Loop().Quit();
    Loop().Run();
    EXPECT_EQ(order, "");
    Loop().Run();
    order += "outer ";
    const HandleRef again = Loop().After(Milliseconds(0), [&] {
        order += "again";
        Loop().Quit();
    });
    Loop().Run();
    EXPECT_EQ(order, "inner outer again");
}

}  // namespace
}  // namespace platform
