// The add-in against the model: whatever happens in whatever order, what must hold holds.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "model/World.h"

namespace {

using namespace model;

// Says what broke, and all that was seen on the way.
void Play(const std::vector<Step>& steps) {
    World world;
    try {
        world.Run(steps);
    } catch (const Broken& broken) {
        RC_FAIL(std::string(broken.what()) + "\n" + world.Log());
    }
}

TEST(ModelTest, HoldsInEveryOrder) {
    rc::detail::checkGTest(
        [] { Play(*rc::gen::container<std::vector<Step>>(rc::gen::elementOf(AllSteps()))); });
}

}  // namespace
