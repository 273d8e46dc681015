// Who holds what, and what happens when it is let go of.
#include <thread>

#include "StrangerTest.h"

namespace platform::test {
namespace {

using ReferenceTest = StrangerTest;

struct EndOfProcess {};

// Tells when it is destroyed and when its last client went.
struct Watched {
    std::shared_ptr<ScriptedObject> object;
    std::weak_ptr<ScriptedObject> weak;
    std::shared_ptr<int> gone = std::make_shared<int>(0);

    explicit Watched(std::vector<Member> members = {})
        : object(std::make_shared<ScriptedObject>(std::move(members))), weak(object) {
        object->whenLastClientGone = [count = gone] { ++*count; };
    }
    std::shared_ptr<ScriptedObject> Hand() { return std::move(object); }
};

TEST_F(ReferenceTest, CountsUpAndDown) {
    Watched watched;
    const Reference reference = CreateForStranger(watched.Hand());
    EXPECT_EQ(Plain(reference, "Retain").error, "");
    EXPECT_EQ(Plain(reference, "Release").error, "");
    EXPECT_EQ(*watched.gone, 0);
    EXPECT_EQ(Plain(reference, "Release").error, "");
    EXPECT_EQ(*watched.gone, 1);
    EXPECT_TRUE(watched.weak.expired());
    const Answer after = Plain(reference, "Release");
    EXPECT_EQ(after.error, SD_BUS_ERROR_UNKNOWN_OBJECT);
    EXPECT_EQ(after.number, 462);
}

TEST_F(ReferenceTest, ReleaseByOneWhoHoldsNothing) {
    Watched watched;
    const Reference reference = CreateForStranger(watched.Hand());
    RawPeer other(loop);
    const Answer answer = other.Call(reference.owner, reference.path, bus::objectInterface, "Release", "");
    EXPECT_EQ(answer.error, bus::errorName);
    EXPECT_EQ(answer.number, 5);
    EXPECT_EQ(*watched.gone, 0);
    EXPECT_EQ(Plain(reference, "Retain").error, "");
}

TEST_F(ReferenceTest, ReleaseIsAnsweredAheadOfWhatFollows) {
    // The last client's going ends the process: all answers have to be out by then, even where the daemon
    // stands still at first and more is waiting than the connection takes.
    std::thread thawing;
    const auto object =
        std::make_shared<ScriptedObject>(std::vector<Member>{Method("Big", 0, [&](Arguments&) {
            thawing = std::thread([this] { bus.Thaw(); });
            return Value(Text(512 << 10, u'x'));
        })});
    object->whenLastClientGone = [this] {
        server.reset();
        throw EndOfProcess();
    };
    const Reference reference = CreateForStranger(object);
    const MessageRef big = stranger.NewCall(reference.owner, reference.path, bus::objectInterface, "Invoke");
    sd_bus_message_append(big.get(), "sqav", "Big", 1, 0);
    const auto bigAnswer = stranger.Send(big);
    const auto answer =
        stranger.Send(stranger.NewCall(reference.owner, reference.path, bus::objectInterface, "Release"));
    stranger.RoundTrip();
    bus.Narrow();
    bus.Freeze();
    EXPECT_THROW(loop.ServeUntil([] { return false; }), EndOfProcess);
    thawing.join();
    EXPECT_TRUE(loop.ServeUntil([&] { return bigAnswer->message && answer->message; }));
    EXPECT_EQ(sd_bus_message_is_method_error(answer->message.get(), nullptr), 0);
}

TEST_F(ReferenceTest, PeerThatLeavesGivesBackAll) {
    Watched first, second;
    const Reference one = CreateForStranger(first.Hand());
    CreateForStranger(second.Hand());
    Plain(one, "Retain");
    EXPECT_EQ(*first.gone, 0);
    stranger.Leave();
    EXPECT_TRUE(loop.ServeUntil([&] { return *first.gone == 1 && *second.gone == 1; }));
    EXPECT_TRUE(first.weak.expired());
    EXPECT_TRUE(second.weak.expired());
}

TEST_F(ReferenceTest, PeerThatLeftBeforeItsAnswerHoldsNothing) {
    Watched watched;
    create = [&]() -> ObjectRef {
        stranger.Leave();
        return watched.Hand();
    };
    const MessageRef call =
        stranger.NewCall("Test.cScripted", bus::factoryPath, bus::factoryInterface, "CreateInstance");
    std::uint64_t cookie = 0;  // asked for, it makes the call one that wants an answer
    sd_bus_send(stranger.Bus(), call.get(), &cookie);
    EXPECT_TRUE(loop.ServeUntil([&] { return *watched.gone == 1; }));
    EXPECT_TRUE(watched.weak.expired());
}

TEST_F(ReferenceTest, InUseIsToldOnceEachWay) {
    std::vector<bool> told;
    server->WhenInUse([&](bool inUse) { told.push_back(inUse); });
    const Reference one = CreateForStranger(std::vector<Member>{});
    const Reference two = CreateForStranger(std::vector<Member>{});
    Plain(one, "Retain");
    EXPECT_TRUE(loop.ServeUntil([&] { return told == std::vector<bool>{true}; }));
    Plain(one, "Release");
    Plain(one, "Release");
    EXPECT_EQ(told, (std::vector<bool>{true}));
    Plain(two, "Release");
    EXPECT_TRUE(loop.ServeUntil([&] { return told == std::vector<bool>{true, false}; }));
}

TEST_F(ReferenceTest, ArgumentIsBorrowedForTheCall) {
    Watched argument;
    const ObjectRef object = Created(
        {Method("Use", 1, [](Arguments& arguments) { return Call(arguments[0].ToObject(), "Name"); })});
    const auto given = std::make_shared<ScriptedObject>(
        std::vector<Member>{Method("Name", 0, [](Arguments&) { return Value(u"called back"); })});
    bool gone = false;
    given->whenLastClientGone = [&] { gone = true; };
    EXPECT_TRUE(Call(object, "Use", given) == Value(u"called back"));
    loop.ServeReady();
    EXPECT_FALSE(gone);
    EXPECT_EQ(given.use_count(), 1);
}

TEST_F(ReferenceTest, KeptArgumentIsRetainedAndReleased) {
    ObjectRef kept;
    const ObjectRef object = Created({Method("Keep", 1, [&](Arguments& arguments) {
        kept = arguments[0].ToObject();
        return Value();
    })});
    Watched argument({Method("Name", 0, [](Arguments&) { return Value(u"kept"); })});
    Call(object, "Keep", argument.Hand());
    EXPECT_FALSE(argument.weak.expired());
    EXPECT_TRUE(Call(kept, "Name") == Value(u"kept"));
    kept = nullptr;
    EXPECT_TRUE(loop.ServeUntil([&] { return argument.weak.expired(); }));
    EXPECT_EQ(*argument.gone, 1);
}

TEST_F(ReferenceTest, KeptArgumentOfAFailedCallIsRetainedToo) {
    ObjectRef kept;
    const ObjectRef object = Created({Method("Keep", 1, [&](Arguments& arguments) -> Value {
        kept = arguments[0].ToObject();
        throw RuntimeError(1000, u"no");
    })});
    Watched argument({Method("Name", 0, [](Arguments&) { return Value(u"kept"); })});
    EXPECT_EQ(ErrorOf([&] { Call(object, "Keep", argument.Hand()); }), 1000);
    EXPECT_TRUE(Call(kept, "Name") == Value(u"kept"));
}

TEST_F(ReferenceTest, RetainComesAheadOfTheAnswer) {
    ObjectRef kept;
    const Reference reference = CreateForStranger({Method("Keep", 1, [&](Arguments& arguments) {
        kept = arguments[0].ToObject();
        return Value();
    })});
    // By the time that the answer is taken, the call that came ahead of it is there.
    const Answer answer = stranger.Call(reference.owner, reference.path, bus::objectInterface, "Invoke",
                                        "sqav", "Keep", 1, 1, "(so)", stranger.Name().c_str(), "/Mine");
    EXPECT_EQ(answer.error, "");
    ASSERT_EQ(stranger.CallsOf("Retain"), 1u);
    EXPECT_STREQ(sd_bus_message_get_path(stranger.calls.front().get()), "/Mine");
    EXPECT_EQ(sd_bus_message_get_expect_reply(stranger.calls.front().get()), 0);
    kept = nullptr;
    EXPECT_TRUE(loop.ServeUntil([&] { return stranger.CallsOf("Release") == 1; }));
}

TEST_F(ReferenceTest, BorrowedArgumentIsNeitherRetainedNorReleased) {
    const Reference reference = CreateForStranger({Method("Look", 1, [](Arguments&) { return Value(); })});
    stranger.Call(reference.owner, reference.path, bus::objectInterface, "Invoke", "sqav", "Look", 1, 1,
                  "(so)", stranger.Name().c_str(), "/Mine");
    loop.ServeReady();
    EXPECT_EQ(stranger.calls.size(), 0u);
}

TEST_F(ReferenceTest, ReturnedReferenceIsOwnedByTheCaller) {
    Watched result;
    const ObjectRef handed = result.Hand();
    const Reference reference =
        CreateForStranger({Method("Give", 0, [&](Arguments&) { return Value(handed); })});
    const Answer answer = Invoke(reference, "Give");
    const char *owner = nullptr, *path = nullptr;
    ASSERT_GT(sd_bus_message_read(answer.message.get(), "v", "(so)", &owner, &path), 0);
    const Reference given{owner, path};
    EXPECT_EQ(Plain(given, "Release").error, "");
    EXPECT_EQ(*result.gone, 1);
    EXPECT_EQ(Plain(given, "Release").number, 462);
}

TEST_F(ReferenceTest, SameObjectHasOnePath) {
    const ObjectRef same = std::make_shared<ScriptedObject>(std::vector<Member>{});
    const Reference reference =
        CreateForStranger({Method("Give", 0, [&](Arguments&) { return Value(same); })});
    std::vector<std::string> paths;
    for (int i = 0; i < 2; ++i) {
        const Answer answer = Invoke(reference, "Give");
        const char *owner = nullptr, *path = nullptr;
        ASSERT_GT(sd_bus_message_read(answer.message.get(), "v", "(so)", &owner, &path), 0);
        paths.push_back(path);
    }
    EXPECT_EQ(paths[0], paths[1]);
    EXPECT_EQ(Plain({reference.owner, paths[0]}, "Release").error, "");
    EXPECT_EQ(Plain({reference.owner, paths[0]}, "Release").error, "");
    EXPECT_EQ(Plain({reference.owner, paths[0]}, "Release").number, 462);
}

TEST_F(ReferenceTest, FailedAnswerCountsNothing) {
    Watched result;
    const ObjectRef handed = result.Hand();
    const Reference reference = CreateForStranger({Method("Give", 1, [&](Arguments& arguments) {
        arguments[0] = Text(1, u'\0');
        return Value(handed);
    })});
    const Answer answer = stranger.Call(reference.owner, reference.path, bus::objectInterface, "Invoke",
                                        "sqav", "Give", 1, 1, "s", "");
    EXPECT_EQ(answer.number, 5);
    EXPECT_EQ(handed.use_count(), 1);
    EXPECT_EQ(*result.gone, 0);
}

TEST_F(ReferenceTest, ChangedArgumentIsOwned) {
    Watched made;
    const ObjectRef object = Created({Method("Make", 1, [&](Arguments& arguments) {
        arguments[0] = ObjectRef(made.Hand());
        return Value();
    })});
    ObjectRef variable;
    Call(object, "Make", ByRef(variable));
    ASSERT_NE(variable, nullptr);
    EXPECT_FALSE(made.weak.expired());
    variable = nullptr;
    EXPECT_TRUE(loop.ServeUntil([&] { return made.weak.expired(); }));
    EXPECT_EQ(*made.gone, 1);
}

TEST_F(ReferenceTest, OwnObjectComesBackAsItself) {
    const ObjectRef object = Created({Method("Echo", 1, [](Arguments& arguments) { return arguments[0]; })});
    const ObjectRef mine = std::make_shared<ScriptedObject>(std::vector<Member>{});
    EXPECT_EQ(Call(object, "Echo", mine).ToObject(), mine);
    EXPECT_EQ(mine.use_count(), 1);
}

TEST_F(ReferenceTest, ReferenceOfAThirdProcessIsRetainedThere) {
    const ObjectRef host = StrangersObject();
    const ObjectRef object = Created({Method("Echo", 1, [](Arguments& arguments) { return arguments[0]; })});
    ObjectRef other = Call(object, "Echo", host).ToObject();
    EXPECT_TRUE(loop.ServeUntil([&] { return stranger.CallsOf("Retain") == 1; }));
    other = nullptr;
    EXPECT_TRUE(loop.ServeUntil([&] { return stranger.CallsOf("Release") == 1; }));
}

TEST_F(ReferenceTest, ProcessThatCreatesItsOwnClass) {
    Watched watched({Method("Name", 0, [](Arguments&) { return Value(u"own"); })});
    create = [&] { return watched.Hand(); };
    ObjectRef own = server->CreateObject(u"Test.cScripted");
    EXPECT_EQ(own, watched.weak.lock());
    own = nullptr;
    loop.ServeReady();
    EXPECT_TRUE(watched.weak.expired());
}

TEST_F(ReferenceTest, OwnerThatLeavesIsToldOf) {
    const ObjectRef host = StrangersObject();
    int told = 0, dropped = 0;
    const auto watch = host->WhenOwnerGone([&] { ++told; });
    host->WhenOwnerGone([&] { ++dropped; }).reset();
    stranger.Leave();
    EXPECT_TRUE(loop.ServeUntil([&] { return told == 1; }));
    EXPECT_EQ(dropped, 0);
    EXPECT_EQ(ErrorOf([&] { Call(host, "Anything"); }), 462);
    // Asked after the fact, it is told of as well.
    const auto late = host->WhenOwnerGone([&] { ++told; });
    EXPECT_TRUE(loop.ServeUntil([&] { return told == 2; }));
}

TEST_F(ReferenceTest, ObjectOutlivesItsConnection) {
    ObjectRef object = Created({Method("Name", 0, [](Arguments&) { return Value(); })});
    client.reset();
    EXPECT_EQ(ErrorOf([&] { Call(object, "Name"); }), 462);
    EXPECT_EQ(object->WhenOwnerGone([] {}), nullptr);
    object = nullptr;
}

}  // namespace
}  // namespace platform::test
