// Who holds what, and what happens when it is let go of.
#include <thread>

#include "BusTest.h"

namespace platform::test {
namespace {

// Tells when it is destroyed and when its last client went.
struct Watched {
    std::shared_ptr<ScriptedObject> object;
    std::weak_ptr<ScriptedObject> weak;
    int gone = 0;

    explicit Watched(std::vector<Member> members = {}) : object(Scripted(std::move(members))), weak(object) {
        object->whenLastClientGone = [this] { ++gone; };
    }
    bool IsFree() const { return gone == 1 && weak.expired(); }
};

struct ReferenceTest : BusTest {
    // The stranger hands an object of its own, at "/Mine", to a member.
    std::string HandMine(const Reference& object, const char* member) {
        return stranger.Invoke(object, member, 1, "(so)", stranger.Name(), "/Mine");
    }
    bool Freed(const Watched& object) {
        return loop.ServeUntil([&] { return object.IsFree(); });
    }
    Watched watched;
    ObjectRef kept;
};

TEST_F(ReferenceTest, ReleaseIsAnsweredAheadOfWhatFollows) {
    // The last client's going ends the process: all answers have to be out by then, even where the daemon
    // stands still at first and more is waiting than the connection takes.
    struct EndOfProcess {};
    std::thread thawing;
    const auto object = Scripted({Method("Big", 0, [&](Arguments&) {
        thawing = std::thread([this] { bus.Thaw(); });
        return Text(512 << 10, u'x');
    })});
    object->whenLastClientGone = [this] {
        server.reset();
        throw EndOfProcess();
    };
    const Reference reference = CreateForStranger(object);
    const MessageRef& big = stranger.Send(stranger.NewInvoke(reference, "Big"));
    const MessageRef& release = stranger.Send(stranger.NewCall(reference, objectInterface, "Release"));
    stranger.RoundTrip();
    bus.Freeze();
    EXPECT_THROW(loop.ServeUntil([] { return false; }), EndOfProcess);
    thawing.join();
    EXPECT_TRUE(loop.ServeUntil([&] { return big && release; }));
    EXPECT_EQ(Told(release), "");
}

TEST_F(ReferenceTest, ANameGivenBackWithTheLastObjectIsFreeForWhoHasTheAnswer) {
    watched.object->whenLastClientLeaves = [this] { server->StopServing(); };
    const Reference reference = CreateForStranger(std::move(watched.object));
    const MessageRef& released = stranger.Send(stranger.NewCall(reference, objectInterface, "Release"));
    bool asked = false;
    // What follows the answer takes its time.
    watched.weak.lock()->whenLastClientGone = [&] {
        EXPECT_TRUE(loop.ServeUntil([&] { return released != nullptr; }));
        EXPECT_TRUE(CreateInstance().starts_with("ServiceUnknown"));
        asked = true;
    };
    EXPECT_TRUE(loop.ServeUntil([&] { return asked; }));
}

TEST_F(ReferenceTest, ACreationUnderWayIsRefusedOnceNoMoreIsServed) {
    const Reference before = CreateForStranger(Scripted());
    create = [&] {
        server->StopServing();
        EXPECT_EQ(Plain(before, "Retain"), "") << "answered long before this ends";
        return std::move(watched.object);
    };
    EXPECT_EQ(CreateInstance(), "Busy i440 the call can't be taken now");
    EXPECT_TRUE(Freed(watched)) << "nobody holds what came of it";
}

TEST_F(ReferenceTest, AnObjectNamedByTheClassOfItsProcessIsItself) {
    Watched named({Keep(kept)});
    const Reference reference = CreateForStranger(named.object);
    stranger.Invoke(reference, "Keep", 1, "(so)", "Test.cScripted", reference.path.c_str());
    EXPECT_EQ(kept, std::exchange(named.object, nullptr));
    kept = nullptr;
    EXPECT_EQ(Plain(reference, "Release"), "");
    EXPECT_TRUE(Freed(named)) << "it doesn't hold itself";
}

TEST_F(ReferenceTest, OnlyTheBusSaysWhoHasLeft) {
    int told = 0;
    const auto watch = host->WhenOwnerGone([&] { ++told; });
    AnswerAll("");
    Call(host, "Anything");
    sd_bus_message* made = nullptr;
    sd_bus_message_new_signal(stranger.Bus(), &made, "/org/freedesktop/DBus", "org.freedesktop.DBus",
                              "NameOwnerChanged");
    const MessageRef signal = Adopted(made);
    sd_bus_message_append(made, "sss", stranger.Name(), stranger.Name(), "");
    sd_bus_message_set_destination(made, sd_bus_message_get_sender(stranger.calls.back().get()));
    sd_bus_send(stranger.Bus(), made, nullptr);
    Call(host, "Anything");
    loop.ServeOnce();
    EXPECT_EQ(told, 0);
    stranger.Leave();
    EXPECT_TRUE(loop.ServeUntil([&] { return told == 1; }));
}

TEST_F(ReferenceTest, APeerThatLeftBeforeItsAnswerHoldsNothing) {
    create = [&] { return stranger.Leave(), std::move(watched.object); };
    stranger.Send(stranger.NewCall(factory, factoryInterface, "CreateInstance"));
    EXPECT_TRUE(Freed(watched));
}

TEST_F(ReferenceTest, InUseIsToldOnceEachWay) {
    std::vector<bool> told;
    server->WhenInUse([&](bool inUse) { told.push_back(inUse); });
    const Reference one = CreateForStranger(Scripted()), two = CreateForStranger(Scripted());
    Plain(one, "Retain");
    EXPECT_TRUE(loop.ServeUntil([&] { return told == std::vector{true}; }));
    for (int i = 0; i < 2; ++i) Plain(one, "Release");
    EXPECT_EQ(told, std::vector{true});
    Plain(two, "Release");
    EXPECT_TRUE(loop.ServeUntil([&] { return told == std::vector{true, false}; }));
}

TEST_F(ReferenceTest, AKeptArgumentIsRetainedAheadOfTheAnswerAlsoWhereTheCallFails) {
    for (const bool fails : {false, true}) {
        const Member keep = Method("Keep", 1, [&, fails](Arguments& a) {
            kept = a[0].ToObject();
            if (fails) throw RuntimeError(1000, u"no");
        });
        const Reference reference = CreateForStranger({keep, Method("Look", 1, [](Arguments&) {})});
        HandMine(reference, "Look");
        EXPECT_EQ(stranger.Heard(), "");
        // By the time that the answer is taken, the call that came ahead of it is there.
        EXPECT_EQ(HandMine(reference, "Keep"), fails ? "Error i1000 no" : "<(y0)> [<(':1.2' /Mine)>]");
        EXPECT_EQ(stranger.Heard(), "/Mine Retain!");
        kept = nullptr;
        ExpectHeard("/Mine Release!");
        Watched given({Named(u"kept")});
        EXPECT_EQ(ErrorOf([&] { Call(Created({keep}), "Keep", std::move(given.object)); }), fails ? 1000 : 0);
        given.object = nullptr;
        EXPECT_EQ(Call(kept, "Name"), Value(u"kept"));
        kept = nullptr;
        EXPECT_TRUE(Freed(given));
    }
}

TEST_F(ReferenceTest, AResultIsCountedUpAndDownAndKeepsItsPath) {
    const ObjectRef handed = watched.object;
    const Reference giver = CreateForStranger({Method("Give", 0, [&](Arguments&) { return handed; })});
    for (int i = 0; i < 2; ++i) EXPECT_EQ(stranger.Invoke(giver, "Give"), "<(':1.0' /Object/2)> []");
    const Reference given{":1.0", "/Object/2"};
    EXPECT_EQ(Plain(given, "Retain"), "");
    for (const int gone : {0, 0, 1}) {
        EXPECT_EQ(Plain(given, "Release"), "");
        EXPECT_EQ(watched.gone, gone);
    }
    EXPECT_EQ(Plain(given, "Release"), "UnknownObject i462 /Object/2");
}

TEST_F(ReferenceTest, AFailedAnswerCountsNothing) {
    const ObjectRef handed = std::move(watched.object);
    const Reference reference = CreateForStranger({Method("Give", 1, [&](Arguments& arguments) {
        arguments[0] = Text(1, u'\0');
        return handed;
    })});
    EXPECT_TRUE(stranger.Invoke(reference, "Give", 1, "s", "").starts_with("Error i5 "));
    EXPECT_EQ(handed.use_count(), 1);
    EXPECT_EQ(watched.gone, 0);
}

TEST_F(ReferenceTest, WhatComesBackIsOwnedOrOnesOwnOrRetainedWhereItIs) {
    const ObjectRef object =
        Created({Echo(), Method("Make", 1, [&](Arguments& a) { a[0] = std::exchange(kept, nullptr); })});
    const ObjectRef mine = Scripted();
    EXPECT_EQ(Call(object, "Echo", mine).ToObject(), mine);
    EXPECT_EQ(mine.use_count(), 1);
    ObjectRef made;
    kept = std::move(watched.object);
    Call(object, "Make", ByRef(made));
    EXPECT_FALSE(watched.weak.expired());
    made = nullptr;
    EXPECT_TRUE(Freed(watched));
    kept = Call(object, "Echo", host).ToObject();
    ExpectHeard("/Host Retain!");
    kept = nullptr;
    ExpectHeard("/Host Release!");
}

TEST_F(ReferenceTest, AnOwnerThatLeavesIsToldOfAlsoAfterTheFact) {
    int told = 0, dropped = 0;
    const auto watch = host->WhenOwnerGone([&] { ++told; });
    host->WhenOwnerGone([&] { ++dropped; }).reset();
    stranger.Leave();
    EXPECT_TRUE(loop.ServeUntil([&] { return told == 1; }));
    EXPECT_EQ(dropped, 0);
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 462);
    const auto late = host->WhenOwnerGone([&] { ++told; });
    EXPECT_TRUE(loop.ServeUntil([&] { return told == 2; }));
}

TEST_F(ReferenceTest, AnObjectOutlivesItsConnection) {
    kept = Created({Named(u"")});
    client.reset();
    EXPECT_EQ(ErrorOf([&] { Call(kept, "Name"); }), 462);
    EXPECT_EQ(kept->WhenOwnerGone([] {}), nullptr);
}

}  // namespace
}  // namespace platform::test
