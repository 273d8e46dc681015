#include <QLineEdit>

#include "QtFixture.h"

namespace platform {
namespace {

// A box whose text the spin control steps, as a section of a time field.
class SpinTest : public FormTest {
  protected:
    void SetUp() override {
        minute.Spin = &spin;
        spin.SetMax(59);
        spin.Change = [this] {
            minute.Text = (spin.Value() < 10 ? u"0" : u"") + DecimalText(spin.Value());
            Select();
        };
        spin.UpClick = Note("up");
        spin.DownClick = Note("down");
        Show();
        Select();
        WidgetOf("txtMinute").setFocus();
    }

    void Select() {
        minute.SetSelStart(0);
        minute.SetSelLength(2);
    }
    QPoint Upper() const { return PlaceOf("updTime") - QPoint(0, 6); }
    QPoint Lower() const { return PlaceOf("updTime") + QPoint(0, 6); }
    void ExpectSectionSelected() const {
        const auto& box = WidgetOf<QLineEdit>("txtMinute");
        EXPECT_EQ(box.selectedText().toStdU16String(), minute.Text());
        EXPECT_TRUE(box.hasFocus());
    }
};

TEST_F(SpinTest, MouseKeysAndWheelStepTheSectionOfASpinInService) {
    const Table<const char*, std::function<void()>, const char*> inputs = {
        {"upper arrow", [this] { Click(Upper()); }, "up "},
        {"lower arrow", [this] { Click(Lower()); }, "down "},
        {"right button", [this] { Click(Upper(), Qt::RightButton); }, ""},
        {"Up", [this] { Key(Qt::Key_Up); }, "up "},
        {"Down", [this] { Key(Qt::Key_Down, Qt::KeypadModifier); }, "down "},
        {"Ctrl+Up", [this] { Key(Qt::Key_Up, Qt::ControlModifier); }, ""},
        {"wheel up", [this] { Wheel("txtMinute", 120); }, "up "},
        {"wheel down twice", [this] { Wheel("txtMinute", -240); }, "down down "},
        {"small turns", [this] { Wheel("txtMinute", 90), Wheel("txtMinute", 60); }, "up "},
        {"rest of the turn", [this] { Wheel("txtMinute", -30); }, ""},
        {"wheel over the arrows", [this] { Wheel("updTime", -120), Wheel("updTime", 120); }, "down up "},
        {"wheel elsewhere", [this] { Wheel("cmdButton", 120); }, ""}};
    for (const bool inService : {true, false}) {
        spin.Enabled = inService;
        for (const auto& [name, act, steps] : inputs) {
            EXPECT_EQ(After(act), inService ? steps : "") << name;
            ExpectSectionSelected();
        }
        EXPECT_EQ(minute.Text(), u"00");
    }
    spin.Enabled = true;
    WidgetOf("updTime").setFocus();
    EXPECT_EQ(After([this] { Key(Qt::Key_Up), Wheel("txtMinute", 120), Wheel("updTime", -120); }),
              "up down ");
}

TEST_F(SpinTest, SectionIsPickedAsAWhole) {
    const QPoint inside = PlaceOf("txtMinute");
    const Table<const char*, std::function<void()>> acts = {
        {"click", [&] { Click(inside); }},
        {"double click", [&] { QTest::mouseDClick(Handle(), Qt::LeftButton, {}, inside); }},
        {"drag",
         [&] {
             Press(inside);
             PointAt(inside - QPoint(5, 0));
             Release(inside - QPoint(5, 0));
         }},
        {"Left", [&] { Key(Qt::Key_Left); }},
        {"End", [&] { Key(Qt::Key_End, Qt::ShiftModifier); }},
        {"right click", [&] { Click(inside, Qt::RightButton); }}};
    // The first click brings the focus, which selects the section.
    minute.GotFocus = [this] { Select(); };
    WidgetOf("cmdButton").setFocus();
    for (const auto& [name, act] : acts) {
        SCOPED_TRACE(name);
        act();
        ExpectSectionSelected();
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    }
}

}  // namespace
}  // namespace platform
