#include <gtest/gtest.h>

#include "Fakes.h"

using namespace platform;
using namespace platform::forms;

namespace {

class CountingToolkit : public Toolkit {
  public:
    std::unique_ptr<View> MakeView(Form&) override {
        ++views;
        return std::make_unique<CountingView>(*this);
    }
    int views = 0, formChanges = 0, controlChanges = 0;

  private:
    struct CountingView : View {
        explicit CountingView(CountingToolkit& toolkit) : toolkit_(toolkit) {}
        ~CountingView() override { --toolkit_.views; }
        void FormChanged() override { ++toolkit_.formChanges; }
        void ControlChanged(Control&) override { ++toolkit_.controlChanges; }
        void SetFocus() override {}
        void PopupMenu(Menu&) override {}
        void ShowWhatsThis(Control&) override {}
        CountingToolkit& toolkit_;
    };
};

struct FormTest : testing::Test {
    fakes::FakeScheduler scheduler;
    CountingToolkit toolkit;
    Form form{u"form", scheduler, toolkit};
};

TEST_F(FormTest, LoadsOnceShowsOnDemandAndUnloadsOnce) {
    int loads = 0, unloads = 0;
    form.Loading = [&] { ++loads; };
    form.Unloading = [&](bool&) { ++unloads; };
    form.Load();
    form.Load();
    EXPECT_EQ(toolkit.views, 0) << "no widget before it is shown";
    form.Show();
    form.Hide();
    form.Show();
    EXPECT_EQ(toolkit.views, 1);
    form.Unload();
    form.Unload();
    EXPECT_EQ(loads, 1);
    EXPECT_EQ(unloads, 1);
    EXPECT_EQ(toolkit.views, 0);
    EXPECT_FALSE(form.Visible());
}

TEST_F(FormTest, AFormThatUnloadsItselfWhileLoadingIsNotShown) {
    form.Loading = [&] { form.Unload(); };
    form.Load();
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_THROW(form.Show(), RuntimeError);
    EXPECT_FALSE(form.Visible());
    EXPECT_EQ(toolkit.views, 0);
}

TEST_F(FormTest, UnloadingCanBeRefused) {
    form.Unloading = [](bool& cancel) { cancel = true; };
    form.Show();
    form.Unload();
    EXPECT_TRUE(form.Visible());
}

TEST_F(FormTest, OnlyRealChangesReachTheView) {
    auto& label = form.Add<Label>(u"label");
    form.Show();
    const int before = toolkit.controlChanges;
    label.Caption = u"text";
    label.Caption = u"text";
    EXPECT_EQ(toolkit.controlChanges, before + 1);
    label.Font->Size = 12.0F;
    EXPECT_EQ(toolkit.controlChanges, before + 2);
}

TEST_F(FormTest, ControlsAreFoundByNameAndIndex) {
    form.Add<TextBox>(u"box", 0);
    form.Add<TextBox>(u"box", 1);
    auto& alone = form.Add<Label>(u"alone");
    EXPECT_EQ(form.Item(u"BOX", 1)->Index(), 1);
    EXPECT_EQ(form.Item(u"alone").get(), &alone);
    const auto number = [&](const char16_t* name, std::int16_t index) {
        try {
            form.Item(name, index);
        } catch (const RuntimeError& error) {
            return error.Number();
        }
        return std::int32_t{0};
    };
    EXPECT_EQ(number(u"box", 2), 340);
    EXPECT_EQ(number(u"box", -1), 340);
    EXPECT_EQ(number(u"none", -1), 730);
}

TEST_F(FormTest, PropertiesAnswerByName) {
    auto button = form.Item((form.Add<CommandButton>(u"button"), u"button"));
    Put(button, "caption", u"Go");
    Put(button, "Enabled", 0);
    EXPECT_EQ(Get(button, "Caption").ToText(), u"Go");
    EXPECT_FALSE(button->Enabled());
    const auto font = Get(button, "Font").ToObject();
    Put(font, "Size", u"9.5");
    EXPECT_EQ(Get(font, "Size").ToSingle(), 9.5F);
    EXPECT_THROW(Put(button, "Interval", 5), RuntimeError);
}

TEST_F(FormTest, TimersRunOnlyWhileEnabledAndLoaded) {
    auto& timer = form.Add<Timer>(u"timer");
    int ticks = 0;
    timer.Tick = [&] {
        ++ticks;
        timer.Enabled = ticks < 2;
    };
    timer.Interval = 100;
    scheduler.Pass(Milliseconds(500));
    EXPECT_EQ(ticks, 0) << "not loaded";
    form.Load();
    scheduler.Pass(Milliseconds(1000));
    EXPECT_EQ(ticks, 2) << "switches itself off inside its tick";
    timer.Enabled = true;
    scheduler.Pass(Milliseconds(99));
    EXPECT_EQ(ticks, 2) << "starts anew";
    form.Unload();
    scheduler.Pass(Milliseconds(500));
    EXPECT_EQ(ticks, 2);
}

TEST_F(FormTest, SelectionIsCutToTheText) {
    auto& box = form.Add<TextBox>(u"box");
    box.Text = u"00";
    box.SetSelStart(1);
    box.SetSelLength(5);
    EXPECT_EQ(box.SelLength(), 1);
    EXPECT_THROW(box.SetSelStart(-1), RuntimeError);
}

TEST_F(FormTest, ACheckBoxTellsOfChangesOnly) {
    auto& box = form.Add<CheckBox>(u"box");
    int clicks = 0;
    box.Click = [&] { ++clicks; };
    box.SetValue(1);
    box.SetValue(1);
    EXPECT_EQ(clicks, 1);
    EXPECT_THROW(box.SetValue(3), RuntimeError);
}

}  // namespace
