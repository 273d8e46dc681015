#include <sqlite3.h>

#include <QMenu>

#include "QtFixture.h"
#include "harness/Files.h"
#include "platform/runtime/Paths.h"

namespace platform {
namespace {

// The window of a topic, where one is open, and what it says.
const auto TopicWindow = [] { return WindowCalled("HelpWindow"); };
std::string Topic() {
    const QWidget* window = TopicWindow();
    return window ? (window->accessibleName() + '|' + window->accessibleDescription()).toStdString() : "";
}

struct HelpTest : FormTest {
    HelpTest() {
        sqlite3* handle = nullptr;
        sqlite3_open(file.c_str(), &handle);
        sqlite3_exec(handle,
                     "create table tTopics (ID integer primary key, Title text, Body text);"
                     "insert into tTopics values (3, 'Time <1>', '<p>The <b>hours</b></p>');",
                     nullptr, nullptr, nullptr);
        sqlite3_close(handle);
        surroundings.application.helpFile = PathText(file);
        menu.Items = {&item};
        item.Caption = u"What's This &\tF1";
        item.Click = Note("item");
        track.WhatsThisHelpID = 3;
    }
    ~HelpTest() override { surroundings.application.helpFile.clear(); }

    forms::Menu& menu = form.Add<forms::Menu>(u"mnuWhatsThis");
    forms::Menu& item = form.Add<forms::Menu>(u"itmWhatsThis");
    TemporaryDirectory directory;
    const std::filesystem::path file = directory.Path() / "Test.hlp";
};

TEST_F(HelpTest, MenuAndTopicGoWithTheForm) {
    for (const bool opensMenu : {false, true})
        for (const bool unloads : {false, true}) {
            form.Show();
            opensMenu ? form.PopupMenu(menu) : form.ShowWhatsThis(track);
            EXPECT_TRUE(QApplication::activePopupWidget());
            unloads ? form.Unload() : form.Hide();
            EXPECT_FALSE(QApplication::activePopupWidget());
        }
}

TEST_F(HelpTest, OpenMenuHoldsUpNothingHasTheKeysAndFollowsTheForm) {
    form.PopupMenu(menu);
    Settle();
    const auto* opened = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(opened);
    QAction& entry = *opened->actions().first();
    EXPECT_EQ(entry.text().toStdString(), "What's This && F1") << "as a menu draws \"&\"";
    form.Enabled = false;
    entry.trigger();
    Key(Qt::Key_F1);
    EXPECT_EQ(log, "");
    form.Enabled = true;
    entry.trigger();
    form.Enabled = false;
    Key(Qt::Key_Escape);
    EXPECT_FALSE(QApplication::activePopupWidget());
    EXPECT_EQ(log, "item ");
}

TEST_F(HelpTest, TopicOrWhyThereIsNoneIsOnTheScreenAndGoesWithAClickAndWithEscape) {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const QPoint outside(-50, -50), corner = screen.bottomRight() - QPoint(60, 40);
    const Text missing = PathText(directory.Path() / "<b>missing</b>.hlp");
    const Table<Text, const char*, QPoint> cases = {{PathText(file), "Time <1>|The hours", outside},
                                                    {missing, "<b>missing</b>.hlp", corner}};
    for (const auto& [name, said, place] : cases) {
        surroundings.application.helpFile = name;
        Window()->move(place);
        form.ShowWhatsThis(track);
        EXPECT_NE(Topic().find(said), std::string::npos) << Topic();
        QWidget& shown = *TopicWindow();
        EXPECT_EQ(shown.frameGeometry().intersected(screen), shown.frameGeometry());
        place == corner ? QTest::mouseClick(shown.windowHandle(), Qt::LeftButton) : PressEscape(shown);
        EXPECT_FALSE(TopicWindow());
    }
}

TEST_F(HelpTest, F1ShowsTheTopicOfABoxOverIt) {
    const auto act = [](QWidget& box) {
        PressKey(box, Qt::Key_F1);
        EXPECT_EQ(Topic(), "Time <1>|The hours");
        PressEscape(*TopicWindow());
        EXPECT_TRUE(box.isVisible()) << "the key was the topic's";
        PressEscape(box);
    };
    EXPECT_EQ(ShowBox(act, {u"Prompt", buttons::okCancel, {}, PathText(file), 3}), 2);
}

}  // namespace
}  // namespace platform
