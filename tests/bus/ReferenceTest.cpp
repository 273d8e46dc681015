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
    Answer HandMine(const Reference& object, const char* member) {
        return stranger.Invoke(object, member, 1, "(so)", stranger.Name(), "/Mine");
    }
    bool Comes(const char* member) {
        return loop.ServeUntil([&] { return stranger.CallsOf(member) == 1; });
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
    const MessageRef& release = stranger.Send(stranger.NewCall(reference, bus::objectInterface, "Release"));
    stranger.RoundTrip();
    bus.Freeze();
    EXPECT_THROW(loop.ServeUntil([] { return false; }), EndOfProcess);
    thawing.join();
    EXPECT_TRUE(loop.ServeUntil([&] { return big && release; }));
    EXPECT_EQ(sd_bus_message_is_method_error(release.get(), nullptr), 0);
}

TEST_F(ReferenceTest, ANameGivenBackWithTheLastObjectIsFreeForWhoHasTheAnswer) {
    const auto object = Scripted();
    object->whenLastClientLeaves = [this] { server->StopServing(); };
    // What follows takes its time.
    object->whenLastClientGone = [this] {
        loop.ServeUntil([this] { return stranger.CallsOf("Poke") == 1; });
    };
    const Reference reference = CreateForStranger(object);
    EXPECT_EQ(Plain(reference, "Release").error, "");
    EXPECT_EQ(stranger.Call(factory, bus::factoryInterface, "CreateInstance").error,
              "org.freedesktop.DBus.Error.ServiceUnknown");
    Poke({stranger.Name(), "/Host"});
}

TEST_F(ReferenceTest, ACreationUnderWayIsRefusedOnceNoMoreIsServed) {
    const Reference before = CreateForStranger(Scripted());
    create = [&] {
        server->StopServing();
        EXPECT_EQ(Plain(before, "Retain").error, "") << "answered long before this ends";
        return std::move(watched.object);
    };
    EXPECT_EQ(stranger.Call(factory, bus::factoryInterface, "CreateInstance").error, bus::busyErrorName);
    EXPECT_TRUE(loop.ServeUntil([&] { return watched.IsFree(); })) << "nobody holds what came of it";
}

TEST_F(ReferenceTest, AnObjectNamedByTheClassOfItsProcessIsItself) {
    const auto object = Scripted({Keep(kept)});
    int gone = 0;
    object->whenLastClientGone = [&] { ++gone; };
    const Reference reference = CreateForStranger(object);
    EXPECT_EQ(stranger.Invoke(reference, "Keep", 1, "(so)", "Test.cScripted", reference.path.c_str()).error,
              "");
    EXPECT_EQ(kept, object);
    Plain(reference, "Release");
    EXPECT_TRUE(loop.ServeUntil([&] { return gone == 1; })) << "it doesn't hold itself";
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
    std::uint64_t cookie = 0;  // asked for, it makes the call one that wants an answer
    sd_bus_send(stranger.Bus(), stranger.NewCall(factory, bus::factoryInterface, "CreateInstance").get(),
                &cookie);
    EXPECT_TRUE(loop.ServeUntil([&] { return watched.IsFree(); }));
}

TEST_F(ReferenceTest, InUseIsToldOnceEachWay) {
    std::vector<bool> told;
    server->WhenInUse([&](bool inUse) { told.push_back(inUse); });
    const Reference one = CreateForStranger(Scripted()), two = CreateForStranger(Scripted());
    Plain(one, "Retain");
    EXPECT_TRUE(loop.ServeUntil([&] { return told == std::vector{true}; }));
    Plain(one, "Release");
    Plain(one, "Release");
    EXPECT_EQ(told, std::vector{true});
    Plain(two, "Release");
    EXPECT_TRUE(loop.ServeUntil([&] { return told == std::vector{true, false}; }));
}

TEST_F(ReferenceTest, AKeptArgumentIsRetainedAlsoWhereTheCallFails) {
    for (const bool fails : {false, true}) {
        const ObjectRef object = Created({Method("Keep", 1, [&](Arguments& a) {
            kept = a[0].ToObject();
            if (fails) throw RuntimeError(1000, u"no");
        })});
        Watched given({Named(u"kept")});
        EXPECT_EQ(ErrorOf([&] { Call(object, "Keep", std::move(given.object)); }), fails ? 1000 : 0);
        given.object = nullptr;
        EXPECT_EQ(Call(kept, "Name"), Value(u"kept"));
        kept = nullptr;
        EXPECT_TRUE(loop.ServeUntil([&] { return given.IsFree(); }));
    }
}

TEST_F(ReferenceTest, RetainComesAheadOfTheAnswerAndOnlyForWhatIsKept) {
    const Reference reference = CreateForStranger({Keep(kept), Method("Look", 1, [](Arguments&) {})});
    HandMine(reference, "Look");
    EXPECT_TRUE(stranger.calls.empty());
    // By the time that the answer is taken, the call that came ahead of it is there.
    EXPECT_EQ(HandMine(reference, "Keep").error, "");
    ASSERT_EQ(stranger.CallsOf("Retain"), 1);
    EXPECT_STREQ(sd_bus_message_get_path(stranger.calls.front().get()), "/Mine");
    EXPECT_EQ(sd_bus_message_get_expect_reply(stranger.calls.front().get()), 0);
    kept = nullptr;
    EXPECT_TRUE(Comes("Release"));
}

TEST_F(ReferenceTest, AResultIsCountedUpAndDownAndKeepsItsPath) {
    const ObjectRef handed = watched.object;
    const Reference giver = CreateForStranger({Method("Give", 0, [&](Arguments&) { return handed; })});
    const Reference given = ReferenceIn(stranger.Invoke(giver, "Give").message);
    EXPECT_EQ(ReferenceIn(stranger.Invoke(giver, "Give").message).path, given.path);
    EXPECT_EQ(Plain(given, "Retain").error, "");
    for (const int gone : {0, 0, 1}) {
        EXPECT_EQ(Plain(given, "Release").error, "");
        EXPECT_EQ(watched.gone, gone);
    }
    const Answer after = Plain(given, "Release");
    EXPECT_EQ(after.error, SD_BUS_ERROR_UNKNOWN_OBJECT);
    EXPECT_EQ(after.number, 462);
}

TEST_F(ReferenceTest, AFailedAnswerCountsNothing) {
    const ObjectRef handed = std::move(watched.object);
    const Reference reference = CreateForStranger({Method("Give", 1, [&](Arguments& arguments) {
        arguments[0] = Text(1, u'\0');
        return handed;
    })});
    EXPECT_EQ(stranger.Invoke(reference, "Give", 1, "s", "").number, 5);
    EXPECT_EQ(handed.use_count(), 1);
    EXPECT_EQ(watched.gone, 0);
}

TEST_F(ReferenceTest, AChangedArgumentIsOwned) {
    const ObjectRef object =
        Created({Method("Make", 1, [&](Arguments& a) { a[0] = ObjectRef(std::move(watched.object)); })});
    Call(object, "Make", ByRef(kept));
    ASSERT_NE(kept, nullptr);
    EXPECT_FALSE(watched.weak.expired());
    kept = nullptr;
    EXPECT_TRUE(loop.ServeUntil([&] { return watched.IsFree(); }));
}

TEST_F(ReferenceTest, OnesOwnObjectComesBackAsItself) {
    EXPECT_EQ(Call(Created({Echo()}), "Echo", watched.object).ToObject(), watched.object);
    EXPECT_EQ(watched.object.use_count(), 1);
}

TEST_F(ReferenceTest, AReferenceOfAThirdProcessIsRetainedThere) {
    kept = Call(Created({Echo()}), "Echo", host).ToObject();
    EXPECT_TRUE(Comes("Retain"));
    kept = nullptr;
    EXPECT_TRUE(Comes("Release"));
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
