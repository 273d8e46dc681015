#include <sqlite3.h>

#include <QLabel>
#include <QMenu>
#include <QPushButton>

#include "../unit/TemporaryDirectory.h"
#include "QtFixture.h"
#include "platform/desktop/MessageBoxButtons.h"
#include "platform/desktop/Paths.h"

namespace platform {
namespace {

// The window of a topic, where one is open.
QWidget* TopicWindow() {
    return WindowCalled("HelpWindow");
}

std::string BodyOf(const QWidget& window) {
    return window.accessibleDescription().toStdString();
}

class HelpTest : public FormTest {
  protected:
    HelpTest() : file_(directory_.Path() / "Test.hlp") {
        sqlite3* handle = nullptr;
        sqlite3_open(file_.c_str(), &handle);
        EXPECT_EQ(sqlite3_exec(handle,
                               "create table tTopics (ID integer primary key, Title text, Body text);"
                               "insert into tTopics values (3, 'Time <1>', '<p>The <b>hours</b></p>');",
                               nullptr, nullptr, nullptr),
                  SQLITE_OK);
        sqlite3_close(handle);
        surroundings.application.helpFile = PathText(file_);
        menu.Items = {&blank, &item};
        item.Caption = u"What's This &\tF1";
        item.Click = [this] { log += "item "; };
        track.WhatsThisHelpID = 3;
    }
    ~HelpTest() override { surroundings.application.helpFile.clear(); }
    void SetUp() override { Show(); }

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
    const std::function<void()> ways[] = {[this] { form.Hide(); }, [this] { form.Unload(); }};
    for (const auto& leave : ways) {
        form.Show();
        form.PopupMenu(menu);
        EXPECT_TRUE(OpenMenu());
        leave();
        EXPECT_FALSE(OpenMenu());
        form.Show();
        ShowTopic();
        leave();
        EXPECT_FALSE(TopicWindow());
    }
}

TEST_F(HelpTest, OpenMenuHoldsUpNothingAndItsItemFollowsTheForm) {
    form.PopupMenu(menu);
    Settle();
    ASSERT_TRUE(OpenMenu());
    ASSERT_EQ(OpenMenu()->actions().size(), 1) << "no caption, no entry";
    EXPECT_EQ(OpenMenu()->actions().first()->text().toStdString(), "What's This && F1")
        << "as a menu draws \"&\"";
    form.Enabled = false;
    OpenMenu()->actions().first()->trigger();
    EXPECT_EQ(log, "");
    form.Enabled = true;
    OpenMenu()->actions().first()->trigger();
    EXPECT_EQ(log, "item ");
}

TEST_F(HelpTest, OpenMenuHasTheKeysForItself) {
    form.KeyDown = [this](auto&&...) { log += "key "; };
    form.PopupMenu(menu);
    form.Enabled = false;
    Key(Qt::Key_F1);
    Key(Qt::Key_Escape);
    EXPECT_FALSE(OpenMenu());
    EXPECT_EQ(log, "");
}

TEST_F(HelpTest, TopicIsPlainTextAndGoesWithAClickAndWithEscape) {
    EXPECT_EQ(ShowTopic().accessibleName().toStdString(), "Time <1>");
    EXPECT_EQ(BodyOf(*TopicWindow()), "The hours");
    QTest::keyClick(TopicWindow()->windowHandle(), Qt::Key_Escape);
    EXPECT_FALSE(TopicWindow());
    QTest::mouseClick(ShowTopic().windowHandle(), Qt::LeftButton, {}, QPoint(30, 30));
    EXPECT_FALSE(TopicWindow());
}

TEST_F(HelpTest, TopicStaysOnTheScreen) {
    const QSize screen = QGuiApplication::primaryScreen()->size();
    for (const QPoint corner : {QPoint(-50, -50), QPoint(screen.width() - 60, screen.height() - 40)}) {
        Window()->move(corner);
        const QRect place = ShowTopic().frameGeometry();
        EXPECT_TRUE(QRect(QPoint(), screen).contains(place))
            << place.x() << " " << place.y() << " " << place.width() << " " << place.height();
        TopicWindow()->close();
    }
}

TEST_F(HelpTest, WhatIsMissingIsSaid) {
    const struct {
        Text file;
        std::int32_t topic;
        const char* said;
    } cases[] = {
        {PathText(file_), 4, "help topic 4"},
        {u"", 3, "not found"},
        {PathText(directory_.Path() / "missing.hlp"), 3, "missing.hlp"},
        {PathText(directory_.Write("other.hlp", "no <database> at all, but long enough to be read as one")),
         3, "not a database"},
    };
    for (const auto& [file, topic, said] : cases) {
        surroundings.application.helpFile = file;
        track.WhatsThisHelpID = topic;
        EXPECT_NE(BodyOf(ShowTopic()).find(said), std::string::npos) << BodyOf(*TopicWindow());
        TopicWindow()->close();
    }
}

TEST_F(HelpTest, HelpButtonAndF1ShowTheTopicOfABoxOverIt) {
    surroundings.application.helpFile.clear();
    const auto pressF1 = [](QWidget& box) { QTest::keyClick(box.windowHandle(), Qt::Key_F1); };
    const auto pressButton = [](QWidget& box) { box.findChildren<QPushButton*>().last()->click(); };
    std::function<void(QWidget&)> ask;
    const auto act = [&](QWidget& box) {
        ask(box);
        EXPECT_TRUE(TopicWindow());
        if (QWidget* topic = TopicWindow()) {
            EXPECT_EQ(BodyOf(*topic), "The hours");
            QTest::keyClick(topic->windowHandle(), Qt::Key_Escape);
        }
        EXPECT_FALSE(TopicWindow());
        EXPECT_TRUE(box.isVisible()) << "the key was the topic's";
        QTest::keyClick(box.windowHandle(), Qt::Key_Escape);
    };
    const std::pair<std::int32_t, std::function<void(QWidget&)>> ways[] = {
        {buttons::helpButton, pressButton}, {buttons::helpButton, pressF1}, {0, pressF1}};
    for (const auto& [helpButton, way] : ways) {
        ask = way;
        EXPECT_EQ(ShowBox(act, {u"Prompt", buttons::okCancel + helpButton, {}, PathText(file_), 3}), 2);
    }
    const auto withoutHelp = [&](QWidget& box) {
        pressF1(box);
        EXPECT_FALSE(TopicWindow());
        PressReturn(box);
    };
    EXPECT_EQ(ShowBox(withoutHelp, {u"Prompt", buttons::helpButton, {}, {}, 0}), 1);
}

}  // namespace
}  // namespace platform
