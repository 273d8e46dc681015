#include <gtest/gtest.h>

#include "ErrorOf.h"
#include "Fakes.h"

using namespace platform;
using namespace platform::forms;

namespace {

struct FormTest : testing::Test {
    fakes::FakeTime<Scheduler> scheduler;
    fakes::FakeToolkit toolkit;
    Form form{u"form", scheduler, toolkit};
    int count = 0;
};

TEST_F(FormTest, LoadsOnceAndUnloadsOnceUnlessRefusedOrUnloadedWhileLoading) {
    int unloads = 0;
    bool refuses = true;
    form.Loading = [&] { ++count; };
    form.Unloading = [&](bool& cancel) { refuses ? cancel = true : ++unloads; };
    form.Load();
    EXPECT_EQ(toolkit.views, 0) << "no widget before it is shown";
    form.Show();
    form.Unload();
    EXPECT_TRUE(form.Visible());
    refuses = false;
    form.Unload();
    form.Unload();
    EXPECT_EQ(count, 1);
    EXPECT_EQ(unloads, 1);
    form.Loading = [&] { form.Unload(); };
    EXPECT_THROW(form.Show(), RuntimeError);
    EXPECT_FALSE(form.IsLoaded() || form.Visible());
    EXPECT_EQ(toolkit.views, 0);
}

TEST_F(FormTest, ControlsAreFoundByNameAndIndex) {
    form.Add<TextBox>(u"box", 0);
    form.Add<TextBox>(u"box", 1);
    auto& alone = form.Add<Label>(u"alone");
    EXPECT_EQ(form.Item(u"BOX", 1)->Index(), 1);
    EXPECT_EQ(form.Item(u"alone").get(), &alone);
    EXPECT_EQ(ErrorOf([&] { form.Item(u"box", 2); }), 340);
    EXPECT_EQ(ErrorOf([&] { form.Item(u"box", -1); }), 340);
    EXPECT_EQ(ErrorOf([&] { form.Item(u"none", -1); }), 730);
}

TEST_F(FormTest, TimersRunOnlyWhileEnabledAndLoaded) {
    auto& timer = form.Add<Timer>(u"timer");
    timer.Tick = [&] { timer.Enabled = ++count < 2; };
    timer.Interval = 100;
    scheduler.Pass(500);
    EXPECT_EQ(count, 0) << "not loaded";
    form.Load();
    scheduler.Pass(1000);
    EXPECT_EQ(count, 2) << "switches itself off inside its tick";
    timer.Enabled = true;
    scheduler.Pass(99);
    EXPECT_EQ(count, 2) << "starts anew";
    form.Unload();
    scheduler.Pass(500);
    EXPECT_EQ(count, 2);
}

}  // namespace
