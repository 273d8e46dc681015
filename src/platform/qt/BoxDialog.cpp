#include "platform/qt/BoxDialog.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QWindow>
#include <algorithm>
#include <array>
#include <map>
#include <string>

#include "platform/qt/Drawing.h"
#include "platform/qt/QtText.h"

namespace platform {

namespace {

constexpr int spacing = 16, smallestButton = 88, signSize = 32;

QPushButton* MakeButton(TextView text) {
    // Shown as written: "&" marks no access key.
    auto* button = new QPushButton(ToShow(text).replace(u'&', QStringLiteral("&&")));
    button->setMinimumWidth(std::max(smallestButton, button->sizeHint().width() + spacing));
    return button;
}

QString WithLineFeeds(TextView prompt) {
    QString text = ToShow(prompt);
    return text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
}

// The window that a box belongs to: the active box or form, otherwise any visible window.
QWidget* WindowBelow() {
    if (QWidget* modal = QApplication::activeModalWidget()) return modal;
    if (QWidget* active = QApplication::activeWindow()) return active;
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible() && window->windowType() != Qt::ToolTip) return window;
    return nullptr;
}

QSize RoomOnScreen() {
    return QGuiApplication::primaryScreen()->availableSize();
}

// As wide as its lines, up to half the screen.
QLabel* MakeText(const BoxContent& content) {
    auto* text = new QLabel(WithLineFeeds(content.prompt));
    text->setTextFormat(Qt::PlainText);
    text->setAlignment(Qt::AlignVCenter | (content.alignRight ? Qt::AlignRight : Qt::AlignLeft));
    const int widest = RoomOnScreen().width() / 2;
    if (text->sizeHint().width() > widest) {
        text->setWordWrap(true);
        text->setFixedWidth(widest);
        text->setMinimumHeight(text->heightForWidth(widest));
    }
    return text;
}

// Makes a text scroll if it is too high for the screen or has a word too wide for the box.
QWidget* FitToScreen(QLabel& text) {
    const int highest = RoomOnScreen().height() * 2 / 3;
    const QSize wanted = text.sizeHint().expandedTo(text.minimumSize());
    if (wanted.height() <= highest && wanted.width() <= text.maximumWidth()) return &text;
    auto* area = new QScrollArea;
    const int bar = area->verticalScrollBar()->sizeHint().width();
    area->setFrameShape(QFrame::NoFrame);
    area->setFixedSize(std::min(wanted.width(), text.maximumWidth()) + bar,
                       std::min(wanted.height(), highest) + bar);
    text.setMinimumWidth(wanted.width());
    text.setMaximumWidth(QWIDGETSIZE_MAX);
    area->setWidget(&text);
    return area;
}

constexpr std::string_view head =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="32" height="32" viewBox="0 0 32 32">)";
constexpr std::string_view tail = "</svg>";

// In the order of BoxSign.
constexpr std::array<std::string_view, 5> shapes{
    "",
    R"(<circle cx="16" cy="16" r="15" fill="#C2382E"/>
       <path d="M10.5 10.5L21.5 21.5M21.5 10.5L10.5 21.5" stroke="#FFF" stroke-width="3.4" stroke-linecap="round"/>)",
    R"(<circle cx="16" cy="16" r="15" fill="#1F63B5"/>
       <path d="M11.4 12.4A4.7 4.7 0 1 1 17.9 16.7C16.6 17.2 16 17.9 16 19.4" fill="none" stroke="#FFF"
             stroke-width="3" stroke-linecap="round"/>
       <circle cx="16" cy="24.2" r="2" fill="#FFF"/>)",
    R"(<path d="M16 3L30 28H2Z" fill="#E8A317" stroke="#E8A317" stroke-width="3" stroke-linejoin="round"/>
       <path d="M16 11.5V19" stroke="#1E2126" stroke-width="3.2" stroke-linecap="round"/>
       <circle cx="16" cy="24" r="2" fill="#1E2126"/>)",
    R"(<circle cx="16" cy="16" r="15" fill="#1F63B5"/>
       <circle cx="16" cy="9" r="2.2" fill="#FFF"/>
       <path d="M16 14.8V23.4" stroke="#FFF" stroke-width="3.4" stroke-linecap="round"/>)",
};

QImage DrawSign(BoxSign sign, qreal devicePixelRatio) {
    std::string svg(head);
    svg.append(shapes[static_cast<std::size_t>(sign)]).append(tail);
    forms::Drawing drawing;
    drawing.Take(std::make_shared<forms::Picture>(std::move(svg)));
    return drawing.At(QSize(signSize, signSize), devicePixelRatio).toImage();
}

// Draws each sign once. Keeps images, since a static pixmap would outlive the application.
QPixmap SignPixmap(BoxSign sign, qreal devicePixelRatio) {
    static std::map<std::pair<BoxSign, qreal>, QImage> drawn;
    QImage& image = drawn[{sign, devicePixelRatio}];
    if (image.isNull()) image = DrawSign(sign, devicePixelRatio);
    return QPixmap::fromImage(image);
}

Qt::WindowFlags FlagsOf(const BoxContent& content) {
    Qt::WindowFlags flags =
        Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
    flags.setFlag(Qt::WindowCloseButtonHint, content.escapeButton != 0);
    flags.setFlag(Qt::WindowStaysOnTopHint, content.onTop);
    return flags;
}

}  // namespace

BoxDialog::BoxDialog(const BoxContent& content)
    : QDialog(nullptr, FlagsOf(content)), escapeButton_(content.escapeButton), showHelp_(content.showHelp) {
    setWindowTitle(ToShow(content.title));
    setAccessibleDescription(WithLineFeeds(content.prompt));
    setWindowModality(Qt::ApplicationModal);
    if (content.rightToLeft) setLayoutDirection(Qt::RightToLeft);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing + 4, spacing + 4, spacing + 4, spacing);
    layout->setSpacing(spacing + 4);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addLayout(MakePrompt(content));
    layout->addLayout(MakeButtons(content));
}

QLayout* BoxDialog::MakePrompt(const BoxContent& content) {
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing);
    if (content.sign != BoxSign::None) {
        auto* sign = new QLabel;
        sign->setPixmap(SignPixmap(content.sign, devicePixelRatio()));
        row->addWidget(sign, 0, Qt::AlignTop);
    }
    row->addWidget(FitToScreen(*MakeText(content)), 1);
    return row;
}

QLayout* BoxDialog::MakeButtons(const BoxContent& content) {
    std::vector<QPushButton*> made;
    for (const BoxContent::Button& button : content.buttons) {
        made.push_back(MakeButton(button.text));
        connect(made.back(), &QPushButton::clicked, this, [this, answer = button.answer] { done(answer); });
    }
    if (!content.helpButton.empty()) {
        QPushButton* help = MakeButton(content.helpButton);
        help->setEnabled(content.showHelp != nullptr);
        connect(help, &QPushButton::clicked, this, [this, help] { showHelp_(*help); });
        made.push_back(help);
    }

    auto* row = new QHBoxLayout;
    row->addStretch();
    for (QPushButton* button : made) row->addWidget(button);
    row->addStretch();
    QPushButton* chosen = made[content.defaultButton < made.size() ? content.defaultButton : 0];
    chosen->setDefault(true);
    chosen->setFocus();
    return row;
}

void BoxDialog::Present() {
    if (QWidget* window = WindowBelow()) PlaceOver(*window);
    show();
    raise();
    activateWindow();
}

void BoxDialog::PlaceOver(QWidget& window) {
    winId();  // creates the native window, which the next line needs
    windowHandle()->setTransientParent(window.windowHandle());
    setWindowIcon(window.windowIcon());
    adjustSize();
    move(window.geometry().center() - rect().center());
}

void BoxDialog::keyPressEvent(QKeyEvent* event) {
    if (showHelp_ && event->key() == Qt::Key_F1 && event->modifiers() == Qt::NoModifier)
        showHelp_(*this);
    else
        QDialog::keyPressEvent(event);
}

void BoxDialog::reject() {
    if (escapeButton_ != 0) done(escapeButton_);
}

}  // namespace platform
