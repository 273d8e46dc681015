// Processes of their own: started by the bus, dying without a word.
#include "BusTest.h"

namespace platform::test {
namespace {

struct ProcessTest : BusTest {
    ProcessTest() { bus.AddService("Test.cProcess", TEST_SERVER); }
    ObjectRef object;
    bool gone = false;
};

TEST_F(ProcessTest, StartsOnDemandAndEndsWithItsLastReference) {
    object = client->CreateObject(u"Test.cProcess");
    EXPECT_EQ(Call(object, "Echo", u"over there"), Value(u"over there"));
    const auto watch = object->WhenOwnerGone([&] { gone = true; });
    object = nullptr;
    EXPECT_TRUE(loop.ServeUntil([&] { return gone; }));
}

TEST_F(ProcessTest, OneThatDiesInACallFailsItAndGivesBackWhatItKept) {
    object = client->CreateObject(u"Test.cProcess");
    const auto watch = object->WhenOwnerGone([&] { gone = true; });
    int released = 0;
    auto kept = Scripted();
    kept->whenLastClientGone = [&] { ++released; };
    const std::weak_ptr<ScriptedObject> weak = kept;
    Call(object, "Keep", kept);
    kept = nullptr;
    EXPECT_FALSE(weak.expired());
    EXPECT_EQ(ErrorOf([&] { Call(object, "Die"); }), 462);
    EXPECT_TRUE(loop.ServeUntil([&] { return gone && released == 1; }));
    EXPECT_TRUE(weak.expired());
}

TEST_F(ProcessTest, AServiceThatDoesNotComeUpIsAFailedCreation) {
    bus.AddService("Test.cBroken", "/nonexistent/program");
    bus.AddService("Test.cSilent", "/bin/false");
    for (const TextView name : {u"Test.cBroken", u"Test.cSilent"})
        EXPECT_EQ(ErrorOf([&] { client->CreateObject(name); }), 429) << ToUtf8(name);
}

}  // namespace
}  // namespace platform::test
