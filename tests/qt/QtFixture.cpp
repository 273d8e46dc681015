#include "QtFixture.h"

#include <cstdlib>

#include "platform/data/sqlite/SqliteEngine.h"

namespace platform {

namespace {

int argumentCount = 0;
char** argumentValues = nullptr;

Application application;
const std::unique_ptr<DatabaseEngine> engine = MakeSqliteEngine();
std::unique_ptr<QtDesktop> desktop;

constexpr Milliseconds limit{10000}, pollStep{5};

}  // namespace

QtDesktop& TheDesktop() {
    application.title = u"Default title";
    if (!desktop) desktop = OpenDesktop(argumentCount, argumentValues, application, *engine);
    return *desktop;
}

Application& TheApplication() {
    return application;
}

bool Until(const std::function<bool()>& condition) {
    EventLoop& loop = TheDesktop().Loop();
    bool over = false;
    const HandleRef end = loop.After(limit, [&] { over = true; });
    const HandleRef step = loop.Every(pollStep, [] {});
    while (!condition() && !over) loop.ServeOnce();
    return condition();
}

void Settle() {
    bool reached = false;
    const HandleRef mark = TheDesktop().Loop().After(Milliseconds(0), [&] { reached = true; });
    Until([&] { return reached; });
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void WaitLongerThanAStep() {
    bool over = false;
    const HandleRef end = TheDesktop().Loop().After(Milliseconds(600), [&] { over = true; });
    Until([&] { return over; });
}

HandleRef WhenBoxOpens(std::function<void(QWidget&)> act) {
    return TheDesktop().Loop().Every(pollStep, [act = std::move(act), done = false]() mutable {
        QWidget* box = QApplication::activeModalWidget();
        if (done || !box || !box->isVisible() || !box->isActiveWindow()) return;
        done = true;
        act(*box);
    });
}

std::int16_t ShowBox(std::function<void(QWidget&)> act, const MessageBox& box) {
    const HandleRef acting = WhenBoxOpens(std::move(act));
    return TheDesktop().Boxes().Show(box);
}

void PressReturn(QWidget& box) {
    QTest::keyClick(box.windowHandle(), Qt::Key_Return);
}

FormTest::FormTest() {
    form.Caption = u"Sample";
    form.Left = 1500;
    form.Top = 1200;
    form.Width = 6000;
    form.Height = 4500;
    frame.Place(0, 0, 6000, 600);
    frame.Border = true;
    button.Place(150, 150, 975, 375);
    minute.Place(1500, 150, 210, 195);
    half.Place(2250, 150, 285, 195);
    track.Place(3000, 150, 195, 240);
    spin.Place(3750, 150, 225, 345);
    calendar.Place(150, 900, 3375, 2895);
    image.Place(3900, 900, 750, 750);
    for (forms::TextBox* box : {&minute, &half}) {
        box->Locked = true;
        box->Border = false;
        box->Align = forms::Alignment::Center;
    }
    minute.Text = u"00";
    half.Text = u"PM";
    half.TabIndex = 0;
    button.TabIndex = 1;
    minute.TabIndex = 2;
    track.TabIndex = 3;
    spin.TabIndex = 4;
    calendar.TabIndex = 5;
    item.Caption = u"What's This?";
    menu.Items = {&blank, &item};
}

QWidget* FormTest::Window() const {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible() && window->objectName() == QStringLiteral("dlgSample")) return window;
    return nullptr;
}

QWidget& FormTest::WidgetOf(const char* name) const {
    return *Window()->findChild<QWidget*>(QLatin1String(name));
}

void FormTest::Click(const char* name, Qt::MouseButton pressed) const {
    const QWidget& widget = WidgetOf(name);
    QTest::mouseClick(Handle(), pressed, {}, widget.mapTo(Window(), widget.rect().center()));
}

void FormTest::Key(Qt::Key key, Qt::KeyboardModifiers modifiers) const {
    QTest::keyClick(Handle(), key, modifiers);
}

void FormTest::TakeAway() {
    form.Unload();
    Settle();
}

void FormTest::Show() {
    form.Show();
    ASSERT_TRUE(Until([this] { return Window()->isActiveWindow(); }));
}

}  // namespace platform

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("TZ", "UTC", 1);
    platform::argumentCount = argc;
    platform::argumentValues = argv;
    const int result = RUN_ALL_TESTS();
    platform::desktop.reset();
    return result;
}
