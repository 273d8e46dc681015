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

#include "platform/qt/QtText.h"

namespace platform {

namespace {

constexpr int spacing = 16, smallestButton = 88, signSize = 32;

QPushButton* MakeButton(TextView text) {
    // As it is written: no letter becomes an access key.
    auto* button = new QPushButton(ToShow(text).replace(u'&', QStringLiteral("&&")));
    button->setMinimumWidth(std::max(smallestButton, button->sizeHint().width() + spacing));
    return button;
}

QString WithLineFeeds(TextView prompt) {
    QString text = ToShow(prompt);
    return text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
}

// The window that a box belongs to: the box or form the operator is at, else any form that shows.
QWidget* WindowBehind() {
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

// A text that is too high for the screen, or has a word too wide for the box, scrolls.
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

}  // namespace

BoxDialog::BoxDialog(const BoxContent& content)
    : escapeAnswer_(content.escapeAnswer), showHelp_(content.showHelp) {
    setWindowTitle(ToShow(content.title));
    setAccessibleDescription(WithLineFeeds(content.prompt));
    setWindowModality(Qt::ApplicationModal);
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint);
    setWindowFlag(Qt::WindowCloseButtonHint, escapeAnswer_ != 0);
    setWindowFlag(Qt::WindowStaysOnTopHint, content.onTop);
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
        sign->setPixmap(SignPixmap(content.sign, signSize, devicePixelRatio()));
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
    if (QWidget* window = WindowBehind()) PlaceOver(*window);
    show();
    raise();
    activateWindow();
}

void BoxDialog::PlaceOver(QWidget& window) {
    winId();  // makes the native window, which the transient parent belongs to
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
    if (escapeAnswer_ != 0) done(escapeAnswer_);
}

}  // namespace platform
