#include <sqlite3.h>

#include <QMenu>
#include <QPushButton>

#include "../unit/TemporaryDirectory.h"
#include "QtFixture.h"
#include "platform/desktop/MessageBoxButtons.h"
#include "platform/runtime/Paths.h"

namespace platform {
namespace {

// The window of a topic, where one is open, and what it says.
QWidget* TopicWindow() {
    return WindowCalled("HelpWindow");
}
std::string Topic() {
    const QWidget* window = TopicWindow();
    return window ? (window->accessibleName() + '|' + window->accessibleDescription()).toStdString() : "";
}

class HelpTest : public FormTest {
  protected:
    HelpTest() : file_(directory_.Path() / "Test.hlp") {
        sqlite3* handle = nullptr;
        sqlite3_open(file_.c_str(), &handle);
        sqlite3_exec(handle,
                     "create table tTopics (ID integer primary key, Title text, Body text);"
                     "insert into tTopics values (3, 'Time <1>', '<p>The <b>hours</b></p>');",
                     nullptr, nullptr, nullptr);
        sqlite3_close(handle);
        surroundings.application.helpFile = PathText(file_);
        menu.Items = {&blank, &item};
        item.Caption = u"What's This &\tF1";
        item.Click = Note("item");
        form.KeyDown = [this](auto&&...) { Note("key")(); };
        track.WhatsThisHelpID = 3;
    }
    ~HelpTest() override { surroundings.application.helpFile.clear(); }

    static QMenu* OpenMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
    QWidget& ShowTopic() {
        form.ShowWhatsThis(track);
        return *TopicWindow();
    }

    forms::Menu& menu = form.Add<forms::Menu>(u"mnuWhatsThis");
    forms::Menu& item = form.Add<forms::Menu>(u"itmWhatsThis");
    forms::Menu& blank = form.Add<forms::Menu>(u"itmBlank");
    TemporaryDirectory directory_;
    std::filesystem::path file_;
};

TEST_F(HelpTest, MenuAndTopicGoWithTheForm) {
    const std::function<void()> opens[] = {[this] { form.PopupMenu(menu); }, [this] { ShowTopic(); }},
                                leaves[] = {[this] { form.Hide(); }, [this] { form.Unload(); }};
    for (const auto& open : opens)
        for (const auto& leave : leaves) {
            form.Show();
            open();
            EXPECT_TRUE(QApplication::activePopupWidget());
            leave();
            EXPECT_FALSE(QApplication::activePopupWidget());
        }
}

TEST_F(HelpTest, OpenMenuHoldsUpNothingHasTheKeysAndFollowsTheForm) {
    form.PopupMenu(menu);
    Settle();
    ASSERT_TRUE(OpenMenu());
    ASSERT_EQ(OpenMenu()->actions().size(), 1) << "no caption, no entry";
    QAction& entry = *OpenMenu()->actions().first();
    EXPECT_EQ(entry.text().toStdString(), "What's This && F1") << "as a menu draws \"&\"";
    form.Enabled = false;
    entry.trigger();
    Key(Qt::Key_F1);
    EXPECT_EQ(log, "");
    form.Enabled = true;
    entry.trigger();
    form.Enabled = false;
    Key(Qt::Key_Escape);
    EXPECT_FALSE(OpenMenu());
    EXPECT_EQ(log, "item ");
}

TEST_F(HelpTest, TopicIsPlainTextOnTheScreenAndGoesWithAClickAndWithEscape) {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const std::function<void()> ways[] = {
        [] { QTest::mouseClick(TopicWindow()->windowHandle(), Qt::LeftButton, {}, QPoint(30, 30)); },
        [] { PressKey(*TopicWindow(), Qt::Key_Escape); }};
    for (const QPoint corner : {QPoint(-50, -50), screen.bottomRight() - QPoint(60, 40)})
        for (const auto& leave : ways) {
            Window()->move(corner);
            const QRect place = ShowTopic().frameGeometry();
            EXPECT_EQ(place.intersected(screen), place);
            EXPECT_EQ(Topic(), "Time <1>|The hours");
            leave();
            EXPECT_FALSE(TopicWindow());
        }
}

TEST_F(HelpTest, WhatIsMissingIsSaid) {
    const Table<Text, std::int32_t, const char*> cases = {
        {PathText(file_), 4, "help topic 4"},
        {u"", 3, "not found"},
        {PathText(directory_.Path() / "<b>missing</b>.hlp"), 3, "<b>missing</b>.hlp"}};
    for (const auto& [file, topic, said] : cases) {
        surroundings.application.helpFile = file;
        track.WhatsThisHelpID = topic;
        ShowTopic();
        EXPECT_NE(Topic().find(said), std::string::npos) << Topic();
        TopicWindow()->close();
    }
}

TEST_F(HelpTest, HelpButtonAndF1ShowTheTopicOfABoxOverIt) {
    const std::function<void(QWidget&)> pressF1 = [](QWidget& box) { PressKey(box, Qt::Key_F1); };
    const std::function<void(QWidget&)> pressButton = [](QWidget& box) {
        box.findChildren<QPushButton*>().last()->click();
    };
    const Table<std::int32_t, std::function<void(QWidget&)>, std::optional<Text>, const char*> cases = {
        {buttons::helpButton, pressButton, PathText(file_), "Time <1>|The hours"},
        {0, pressF1, PathText(file_), "Time <1>|The hours"},
        {buttons::helpButton, pressButton, {}, ""},
        {buttons::helpButton, pressF1, {}, ""}};
    surroundings.application.helpFile.clear();
    for (const auto& [helpButton, ask, file, topic] : cases) {
        const auto act = [&, &ask = ask, &topic = topic](QWidget& box) {
            ask(box);
            EXPECT_EQ(Topic(), topic);
            if (TopicWindow()) PressKey(*TopicWindow(), Qt::Key_Escape);
            EXPECT_FALSE(TopicWindow());
            EXPECT_TRUE(box.isVisible()) << "the key was the topic's";
            PressKey(box, Qt::Key_Escape);
        };
        EXPECT_EQ(ShowBox(act, {u"Prompt", buttons::okCancel + helpButton, {}, file, 3}), 2);
    }
}

}  // namespace
}  // namespace platform
