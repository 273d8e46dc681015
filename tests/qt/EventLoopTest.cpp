#include <unistd.h>

#include <array>

#include "QtFixture.h"

namespace platform {
namespace {

EventLoop& Loop() {
    return TheDesktop().Loop();
}

TEST(EventLoopTest, AfterCallsOnceAndEveryCallsAgain) {
    int once = 0, often = 0;
    const HandleRef after = Loop().After(Milliseconds(1), [&] { ++once; });
    const HandleRef every = Loop().Every(Milliseconds(1), [&] { ++often; });
    EXPECT_TRUE(Until([&] { return often >= 5; }));
    EXPECT_EQ(once, 1);
}

TEST(EventLoopTest, DroppedTimerNeverCalls) {
    bool called = false, later = false;
    HandleRef dropped = Loop().After(Milliseconds(0), [&] { called = true; });
    dropped.reset();
    const HandleRef after = Loop().After(Milliseconds(5), [&] { later = true; });
    EXPECT_TRUE(Until([&] { return later; }));
    EXPECT_FALSE(called);
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

TEST(EventLoopTest, RunTimeErrorEndsTheEventAlone) {
    int calls = 0;
    const HandleRef every = Loop().Every(Milliseconds(1), [&] {
        ++calls;
        throw RuntimeError(ErrorNumber::Overflow);
    });
    EXPECT_TRUE(Until([&] { return calls >= 2; }));
}

TEST(EventLoopTest, WatchesDescriptors) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    char got = 0;
    bool writable = false;
    HandleRef reading = Loop().WhenReadable(ends[0], [&] {
        EXPECT_EQ(read(ends[0], &got, 1), 1);
        reading.reset();
    });
    HandleRef writing = Loop().WhenWritable(ends[1], [&] {
        writable = true;
        writing.reset();
    });
    EXPECT_TRUE(Until([&] { return writable; }));
    EXPECT_EQ(got, 0);
    ASSERT_EQ(write(ends[1], "x", 1), 1);
    EXPECT_TRUE(Until([&] { return got == 'x'; }));
    close(ends[0]);
    close(ends[1]);
}

TEST(EventLoopTest, WatchGoesOnInsideItsOwnCall) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::string got;
    bool nested = false;
    const HandleRef reading = Loop().WhenReadable(ends[0], [&] {
        char c = 0;
        EXPECT_EQ(read(ends[0], &c, 1), 1);
        got += c;
        if (std::exchange(nested, true)) return;
        EXPECT_TRUE(Until([&] { return got == "ab"; }));
    });
    ASSERT_EQ(write(ends[1], "ab", 2), 2);
    EXPECT_TRUE(Until([&] { return got == "ab"; }));
    close(ends[0]);
    close(ends[1]);
}

TEST(EventLoopTest, QuitBeforeRunCounts) {
    bool ran = false;
    const HandleRef event = Loop().After(Milliseconds(0), [&] { ran = true; });
    Loop().Quit();
    Loop().Run();
    EXPECT_FALSE(ran);
}

TEST(EventLoopTest, QuitEndsNestedRunsAndTheNextRunStartsAnew) {
    std::string order;
    const HandleRef outer = Loop().After(Milliseconds(0), [&] {
        const HandleRef inner = Loop().After(Milliseconds(0), [&] { Loop().Quit(); });
        Loop().Run();
        order += "inner ";
    });
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
