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
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible() && window->objectName() == QStringLiteral("HelpWindow")) return window;
    return nullptr;
}

std::string BodyOf(const QWidget& window) {
    return window.accessibleDescription().toStdString();
}

class HelpTest : public ::testing::Test {
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
        TheApplication().helpFile = PathText(file_);
        sample.item.Click = [this] {
            log += "item ";
            sample.form.ShowWhatsThis(sample.track);
        };
        sample.track.WhatsThisHelpID = 3;
        sample.track.MouseUp = [this](forms::MouseButton button, auto...) {
            if (button == forms::MouseButton::Right) sample.form.PopupMenu(sample.menu);
        };
        sample.form.Show();
        EXPECT_TRUE(Until([this] { return sample.Window()->isActiveWindow(); }));
    }
    ~HelpTest() override {
        sample.form.Unload();
        Settle();
        TheApplication().helpFile.clear();
    }

    static QMenu* OpenMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
    QWidget& ShowTopic() {
        sample.form.ShowWhatsThis(sample.track);
        return *TopicWindow();
    }

    TemporaryDirectory directory_;
    std::filesystem::path file_;
    SampleForm sample;
    std::string log;
};

TEST_F(HelpTest, RightClickOffersTheMenuWhoseItemShowsTheTopic) {
    sample.Click("chkTrack");
    EXPECT_FALSE(OpenMenu());
    sample.Click("chkTrack", Qt::RightButton);
    ASSERT_TRUE(OpenMenu());
    ASSERT_EQ(OpenMenu()->actions().size(), 1) << "no caption, no entry";
    EXPECT_EQ(OpenMenu()->actions().first()->text().toStdString(), "What's This?");
    QTest::keyClick(OpenMenu()->windowHandle(), Qt::Key_Down);
    QTest::keyClick(OpenMenu()->windowHandle(), Qt::Key_Return);
    EXPECT_EQ(log, "item ");
    ASSERT_TRUE(TopicWindow());
    EXPECT_EQ(TopicWindow()->accessibleName().toStdString(), "Time <1>");
    EXPECT_EQ(BodyOf(*TopicWindow()), "The hours");
}

TEST_F(HelpTest, MenuAndTopicGoWithTheForm) {
    const std::function<void()> ways[] = {[this] { sample.form.Hide(); }, [this] { sample.form.Unload(); }};
    for (const auto& leave : ways) {
        sample.form.Show();
        sample.form.PopupMenu(sample.menu);
        EXPECT_TRUE(OpenMenu());
        leave();
        EXPECT_FALSE(OpenMenu());
        sample.form.Show();
        ShowTopic();
        leave();
        EXPECT_FALSE(TopicWindow());
    }
}

TEST_F(HelpTest, OpenMenuHoldsUpNothing) {
    sample.form.PopupMenu(sample.menu);
    bool ticked = false;
    const HandleRef tick = TheDesktop().Loop().After(Milliseconds(0), [&] { ticked = true; });
    EXPECT_TRUE(Until([&] { return ticked; }));
    EXPECT_TRUE(OpenMenu());
}

TEST_F(HelpTest, ItemOfARefusingFormDoesNothing) {
    sample.form.PopupMenu(sample.menu);
    sample.form.Enabled = false;
    OpenMenu()->actions().first()->trigger();
    EXPECT_EQ(log, "");
}

TEST_F(HelpTest, TopicGoesWithAClickAndWithEscape) {
    QTest::keyClick(ShowTopic().windowHandle(), Qt::Key_Escape);
    EXPECT_FALSE(TopicWindow());
    QTest::mouseClick(ShowTopic().windowHandle(), Qt::LeftButton, {}, QPoint(30, 30));
    EXPECT_FALSE(TopicWindow());
}

TEST_F(HelpTest, TopicStaysOnTheScreen) {
    const QSize screen = QGuiApplication::primaryScreen()->size();
    for (const QPoint corner : {QPoint(-50, -50), QPoint(screen.width() - 60, screen.height() - 40)}) {
        sample.Window()->move(corner);
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
        TheApplication().helpFile = file;
        sample.track.WhatsThisHelpID = topic;
        EXPECT_NE(BodyOf(ShowTopic()).find(said), std::string::npos) << BodyOf(*TopicWindow());
        TopicWindow()->close();
    }
}

TEST_F(HelpTest, HelpButtonOfABoxShowsItsTopicOverTheBox) {
    std::string title;
    const HandleRef acting = WhenBoxOpens([&](QWidget& box) {
        box.findChildren<QPushButton*>().last()->click();
        if (TopicWindow()) {
            title = TopicWindow()->accessibleName().toStdString();
            QTest::keyClick(TopicWindow()->windowHandle(), Qt::Key_Escape);
        }
        EXPECT_FALSE(TopicWindow());
        EXPECT_TRUE(box.isVisible()) << "the key was the topic's";
        QTest::keyClick(box.windowHandle(), Qt::Key_Escape);
    });
    TheApplication().helpFile.clear();
    EXPECT_EQ(TheDesktop().Boxes().Show(
                  {u"Prompt", buttons::okCancel + buttons::helpButton, {}, PathText(file_), 3}),
              2);
    EXPECT_EQ(title, "Time <1>");
}

}  // namespace
}  // namespace platform
