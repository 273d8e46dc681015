// Who holds what, and what happens when it is let go of.
#include "BusTest.h"

namespace platform::test {
namespace {

struct ReferenceTest : BusTest {
    ObjectRef kept;
};

TEST_F(ReferenceTest, ACreationUnderWayIsRefusedOnceNoMoreIsServed) {
    const Reference before = CreateForStranger(Scripted());
    create = [&] {
        server->StopServing();
        EXPECT_EQ(Plain(before, "Retain"), "") << "answered long before this ends";
        return Watched();
    };
    EXPECT_EQ(CreateInstance(), "Busy i440 the call can't be taken now");
    EXPECT_TRUE(CreateInstance().starts_with("ServiceUnknown"));
    ExpectEvents("leaves gone freed ");
}

TEST_F(ReferenceTest, ReferencesAreCountedForEachHolder) {
    server->WhenInUse([&](bool inUse) { Note(inUse ? "used" : "unused"); });
    ObjectRef first = Created(Scripted()), handed = Watched();
    ExpectEvents("used ");
    const Reference giver =
        CreateForStranger(Scripted({Method("Give", 0, [&](Arguments&) { return handed; })}));
    const Reference given{":1.0", "/Object/3"};
    for (int i = 0; i < 2; ++i) EXPECT_EQ(stranger.Invoke(giver, "Give"), "<(':1.0' /Object/3)> []");
    EXPECT_EQ(Plain(given, "Retain"), "");
    EXPECT_EQ(Plain({":1.0", "/Object/1"}, "Release"), "Error i5 the caller holds no reference to /Object/1");
    EXPECT_EQ(Plain(giver, "Release"), "");
    first = nullptr;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(events, "");
        EXPECT_EQ(Plain(given, "Release"), "");
    }
    ExpectEvents("leaves gone unused ");
    EXPECT_EQ(Plain(given, "Release"), "UnknownObject i462 /Object/3");
    EXPECT_EQ(handed.use_count(), 1);
}

TEST_F(ReferenceTest, AFailedOrUnheardAnswerCountsNothing) {
    const ObjectRef handed = Watched();
    const Reference reference = CreateForStranger(
        Scripted({Method("Give", 1, [&](Arguments& a) { return a[0] = Text(1, u'\0'), handed; })}));
    // By the name of its class, an object is itself.
    const char* path = reference.path.c_str();
    const std::string answer = stranger.Invoke(reference, "Give", 1, "(so)", "Test.cScripted", path);
    EXPECT_TRUE(answer.starts_with("Error i5 ")) << answer;
    EXPECT_EQ(handed.use_count(), 1);
    EXPECT_EQ(events, "");
    create = [&] { return stranger.Leave(), Watched(); };
    stranger.Send(factory, factoryInterface, "CreateInstance");
    ExpectEvents("leaves gone freed ");
}

TEST_F(ReferenceTest, AKeptArgumentIsRetainedAheadOfTheAnswerAlsoWhereTheCallFails) {
    for (const bool fails : {false, true}) {
        const Member keepOrFail = Method("Keep", 1, [&, fails](Arguments& a) {
            kept = a[0].ToObject();
            if (fails) throw RuntimeError(1000, u"no");
        });
        const Reference reference =
            CreateForStranger(Scripted({keepOrFail, Method("Look", 1, [](Arguments&) {})}));
        const auto hand = [&](const char* member) {
            return stranger.Invoke(reference, member, 1, "(so)", ":1.2", "/Mine");
        };
        hand("Look");
        EXPECT_EQ(stranger.Heard(), "");
        // By the time that the answer is taken, the call that came ahead of it is there.
        EXPECT_EQ(hand("Keep"), fails ? "Error i1000 no" : "<(y0)> [<(':1.2' /Mine)>]");
        EXPECT_EQ(stranger.Heard(), "/Mine Retain!");
        kept = nullptr;
        ExpectHeard("/Mine Release!");
        EXPECT_EQ(ErrorOf([&] { Call(Created(Scripted({keepOrFail})), "Keep", Watched({Echo()})); }),
                  fails ? 1000 : 0);
        EXPECT_EQ(Call(kept, "Echo", 1), Value(1));
        EXPECT_EQ(events, "");
        kept = nullptr;
        ExpectEvents("leaves gone freed ");
    }
}

TEST_F(ReferenceTest, WhatComesBackIsOwnedOrOnesOwnOrRetainedWhereItIs) {
    const ObjectRef object =
        Created(Scripted({Echo(), Method("Make", 1, [&](Arguments& a) { a[0] = Watched(); })}));
    // What the callee leaves alone stays the same, and nothing is counted for it.
    ObjectRef mine = Scripted(), same = object;
    EXPECT_EQ(Call(object, "Echo", ByRef(mine)).ToObject(), mine);
    EXPECT_EQ(mine.use_count(), 1);
    Call(object, "Echo", ByRef(same));
    EXPECT_EQ(same, object);
    ObjectRef made;
    Call(object, "Make", ByRef(made));
    EXPECT_EQ(events, "");
    made = nullptr;
    ExpectEvents("leaves gone freed ");
    kept = Call(object, "Echo", host).ToObject();
    ExpectHeard("/Host Retain!");
    kept = nullptr;
    ExpectHeard("/Host Release!");
}

TEST_F(ReferenceTest, AnOwnerThatLeavesIsToldOfAlsoAfterTheFact) {
    const auto note = [&] { Note("left"); };
    const auto watch = host->WhenOwnerGone(note);
    host->WhenOwnerGone([&] { Note("dropped"); }).reset();
    AnswerAll("");
    Call(host, "Anything");
    EXPECT_EQ(events, "");
    stranger.Leave();
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
