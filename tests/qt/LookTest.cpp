// What is seen of the widgets, and read out.
#include <QTextDocument>

#include "QtFixture.h"

namespace platform {
namespace {

using LookTest = FormTest;

TEST_F(LookTest, FocusIsSeenOnEveryWidget) {
    for (const char* name : {"cmdButton", "txtMinute", "chkTrack", "updTime", "Calendar"}) {
        QWidget& widget = WidgetOf(name);
        QApplication::focusWidget()->clearFocus();
        const QImage without = widget.grab().toImage();
        widget.setFocus(Qt::TabFocusReason);
        EXPECT_NE(widget.grab().toImage(), without) << name;
    }
}

TEST_F(LookTest, TextsThatAreReadOut) {
    const Text huge(5'000'000, u'x'), cut = Text(4000, u'x') + u"\u2026";
    const Text caption = u"Read & set [*]", tip = u" A <b>tip</b> ";
    const auto red = std::make_shared<forms::Picture>(
        R"(<svg xmlns="http://www.w3.org/2000/svg"><rect width="9" height="9"/></svg>)");
    const Table<Text, Text, forms::PictureRef, Text> cases = {{caption, tip, nullptr, caption},
                                                              {caption, tip, red, tip},
                                                              {caption, u"", red, caption},
                                                              {u" ", u" ", nullptr, u"cmdButton"},
                                                              {huge, huge, nullptr, cut}};
    for (const auto& [text, tipText, picture, name] : cases) {
        form.Caption = text;
        button.Caption = text;
        button.ToolTipText = tipText;
        button.Picture = picture;
        const QWidget& widget = WidgetOf("cmdButton");
        const Text description = tipText == huge ? cut : tipText;
        EXPECT_EQ(FromQt(widget.accessibleName()), name);
        EXPECT_EQ(FromQt(widget.accessibleDescription()), description);
        QTextDocument shown;
        Qt::mightBeRichText(widget.toolTip()) ? shown.setHtml(widget.toolTip())
                                              : shown.setPlainText(widget.toolTip());
        EXPECT_EQ(FromQt(shown.toPlainText()), description);
        EXPECT_EQ(FromQt(Handle()->title()), text == huge ? cut : text);
    }
}

TEST_F(LookTest, WindowsStayLightOnADarkDesktop) {
    const QImage before = Window()->grab().toImage();
    const QPalette light = QApplication::palette();
    QApplication::setPalette(Qt::black);
    EXPECT_EQ(Window()->grab().toImage(), before);
    QApplication::setPalette(light);
}

}  // namespace
}  // namespace platform
