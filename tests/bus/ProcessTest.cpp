// Processes of their own: started by the bus, dying without a word.
#include <sys/wait.h>
#include <unistd.h>

#include "StrangerTest.h"

namespace platform::test {
namespace {

class ProcessTest : public StrangerTest {
  protected:
    ProcessTest() { bus.AddService("Test.cProcess", TEST_SERVER); }
};

TEST_F(ProcessTest, StartsOnDemandAndServes) {
    const ObjectRef object = client->CreateObject(u"Test.cProcess");
    EXPECT_TRUE(Call(object, "Echo", u"over there") == Value(u"over there"));
}

TEST_F(ProcessTest, EndsWithItsLastReference) {
    ObjectRef object = client->CreateObject(u"Test.cProcess");
    bool gone = false;
    const auto watch = object->WhenOwnerGone([&] { gone = true; });
    object = nullptr;
    EXPECT_TRUE(loop.ServeUntil([&] { return gone; }));
}

TEST_F(ProcessTest, CalleeThatDiesInACall) {
    const ObjectRef object = client->CreateObject(u"Test.cProcess");
    bool gone = false;
    const auto watch = object->WhenOwnerGone([&] { gone = true; });
    EXPECT_EQ(ErrorOf([&] { Call(object, "Die"); }), 462);
    EXPECT_TRUE(loop.ServeUntil([&] { return gone; }));
}

TEST_F(ProcessTest, HolderThatDiesGivesBackWhatItKept) {
    const ObjectRef object = client->CreateObject(u"Test.cProcess");
    std::weak_ptr<ScriptedObject> weak;
    int gone = 0;
    {
        const auto kept = std::make_shared<ScriptedObject>(std::vector<Member>{});
        kept->whenLastClientGone = [&] { ++gone; };
        weak = kept;
        Call(object, "Keep", kept);
    }
    EXPECT_FALSE(weak.expired());
    EXPECT_EQ(ErrorOf([&] { Call(object, "Die"); }), 462);
    EXPECT_TRUE(loop.ServeUntil([&] { return gone == 1; }));
    EXPECT_TRUE(weak.expired());
}

TEST_F(ProcessTest, ServiceThatDoesNotComeUp) {
    bus.AddService("Test.cBroken", "/nonexistent/program");
    EXPECT_EQ(ErrorOf([&] { client->CreateObject(u"Test.cBroken"); }), 429);
    bus.AddService("Test.cSilent", "/bin/false");
    EXPECT_EQ(ErrorOf([&] { client->CreateObject(u"Test.cSilent"); }), 429);
}

}  // namespace
}  // namespace platform::test
