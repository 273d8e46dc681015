#include "host/HelpPage.h"

#include <QKeyEvent>
#include <QLabel>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "host/WindowParts.h"

namespace switchdesk {

namespace {

constexpr int pageWidth = 420, pageHeight = 400;

}  // namespace

HelpPage::HelpPage(QWidget& host)
    : QWidget(&host, Qt::Window), title_(MakeHeading({})), body_(new QTextBrowser) {
    setObjectName("help");
    setBackgroundRole(QPalette::Base);
    body_->setObjectName("helpText");
    body_->setFrameShape(QFrame::NoFrame);
    body_->setOpenLinks(false);
    title_->setWordWrap(true);
    title_->setContentsMargins(4, 0, 4, 0);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(14, 16, 14, 10);
    rows->setSpacing(6);
    rows->addWidget(title_);
    rows->addWidget(body_, 1);
    resize(pageWidth, pageHeight);
}

void HelpPage::Show(const platform::HelpTopic& topic) {
    const QString title = QString::fromStdU16String(topic.title);
    setWindowTitle(title.isEmpty() ? tr("Help") : tr("Help") + QStringLiteral(" \u2013 ") + title);
    title_->setText(title);
    body_->setHtml(QString::fromStdU16String(topic.body));
    body_->setAccessibleName(body_->toPlainText());
    body_->setFocus();
    show();
    raise();
    activateWindow();
}

void HelpPage::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

}  // namespace switchdesk
