// Who holds what, and what happens when it is let go of.
#include "BusTest.h"

namespace platform::test {
namespace {

using ReferenceTest = BusTest;

TEST_F(ReferenceTest, ReferencesAreCountedForEachHolder) {
    server->WhenInUse([&](bool inUse) { events += inUse ? "used " : "unused "; });
    ObjectRef first = Created(Scripted(Echo)), handed = Watched();
    ExpectEvents("used ");
    const Reference giver = CreateForStranger(Scripted([&](Arguments&) { return handed; }));
    const Reference given{":1.0", "/Object/3"};
    for (int i = 0; i < 2; ++i) EXPECT_EQ(Invoke(giver), "<(':1.0' /Object/3)> []");
    EXPECT_EQ(Ask(given, objectInterface, "Retain"), "");
    EXPECT_EQ(Ask(Reference{":1.0", "/Object/1"}, objectInterface, "Release"), "Error i5")
        << "only the client holds it";
    EXPECT_EQ(Ask(giver, objectInterface, "Release"), "");
    first = nullptr;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(events, "");
        EXPECT_EQ(Ask(given, objectInterface, "Release"), "");
    }
    ExpectEvents("leaves gone unused ");
    EXPECT_EQ(Ask(given, objectInterface, "Release"), "UnknownObject i462");
    EXPECT_EQ(handed.use_count(), 1);
}

TEST_F(ReferenceTest, ACreationUnderWayIsRefusedOnceNoMoreIsServed) {
    create = [&] { return server->StopServing(), Watched(); };
    EXPECT_EQ(CreateInstance(), "Busy i440");
    EXPECT_TRUE(CreateInstance().starts_with("ServiceUnknown"));
    ExpectEvents("leaves gone freed ");
}

TEST_F(ReferenceTest, AFailedOrUnheardAnswerCountsNothing) {
    const ObjectRef handed = Watched();
    const Reference giver =
        CreateForStranger(Scripted([&](Arguments& a) { return a[0] = Text(1, u'\0'), handed; }));
    EXPECT_EQ(Invoke(giver, 1, "s", ""), "Error i5");
    EXPECT_EQ(handed.use_count(), 1);
    create = [&] { return sd_bus_close(stranger.get()), Watched(); };
    Send(factory, factoryInterface, "CreateInstance");
    ExpectEvents("leaves gone freed ");
}

TEST_F(ReferenceTest, AKeptArgumentIsRetainedAheadOfTheAnswerAlsoWhereTheCallFails) {
    ObjectRef kept;
    bool keeps = false, fails = false;
    const auto act = [&](Arguments& a) {
        if (keeps) kept = a[0].ToObject();
        if (fails) throw RuntimeError(1000, u"no");
        return Value();
    };
    const Reference reference = CreateForStranger(Scripted(act));
    const auto hand = [&] { return Invoke(reference, 1, "(so)", ":1.2", "/Mine"); };
    hand();
    EXPECT_EQ(events, "");
    keeps = true;
    for (const bool raises : {false, true}) {
        fails = raises;
        // By the time that the answer is taken, the call that came ahead of it is there.
        EXPECT_EQ(hand(), fails ? "Error i1000" : "<(y0)> [<(':1.2' /Mine)>]");
        EXPECT_EQ(std::exchange(events, ""), "/Mine Retain ");
        kept = nullptr;
        ExpectEvents("/Mine Release ");
        EXPECT_EQ(ErrorOf([&] { Call(Created(Scripted(act)), "Keep", Watched()); }), fails ? 1000 : 0);
        EXPECT_EQ(Call(kept, "Echo", 1), Value(1));
        EXPECT_EQ(events, "");
        kept = nullptr;
        ExpectEvents("leaves gone freed ");
    }
}

TEST_F(ReferenceTest, WhatComesBackIsOwnedOrOnesOwnOrRetainedWhereItIs) {
    const ObjectRef echoing = Created(Scripted(Echo));
    const ObjectRef making = Created(Scripted([&](Arguments& a) { return a[0] = Watched(), Value(); }));
    // What the callee leaves alone stays the same, and nothing is counted for it.
    ObjectRef mine = Scripted(Echo), same = echoing, made;
    EXPECT_EQ(Call(echoing, "Echo", ByRef(mine)).ToObject(), mine);
    EXPECT_EQ(mine.use_count(), 1);
    Call(echoing, "Echo", ByRef(same));
    EXPECT_EQ(same, echoing);
    Call(making, "Make", ByRef(made));
    EXPECT_EQ(events, "");
    made = nullptr;
    ExpectEvents("leaves gone freed ");
    ObjectRef kept = Call(echoing, "Echo", host).ToObject();
    ExpectEvents("/Host Retain ");
    kept = nullptr;
    ExpectEvents("/Host Release ");
}

TEST_F(ReferenceTest, AnOwnerThatLeavesIsToldOfAlsoAfterTheFact) {
    const auto note = [&] { events += "left "; };
    const auto watch = host->WhenOwnerGone(note);
    host->WhenOwnerGone([&] { events += "dropped "; }).reset();
    sd_bus_close(stranger.get());
    ExpectEvents("left ");
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 462);
    const auto late = host->WhenOwnerGone(note);
    ExpectEvents("left ");
    // An object outlives its connection.
    client.reset();
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 462);
    EXPECT_EQ(host->WhenOwnerGone(note), nullptr);
}

}  // namespace
}  // namespace platform::test
