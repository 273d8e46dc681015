#include "host/MainWindow.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QDateTime>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QStatusBar>
#include <QTableWidget>
#include <algorithm>

#include "host/Difference.h"
#include "host/HelpPage.h"
#include "host/WindowParts.h"
#include "platform/qt/QtText.h"
#include "platform/runtime/RuntimeError.h"

namespace switchdesk {

using platform::Text;

namespace {

enum ExchangeColumn { nameColumn, clockColumn, timeColumn, problemColumn };
constexpr int commandColumn = 0, answerColumn = 3;
// With its frame, the window must fit a screen of 1080 lines when scaled to twice the size.
constexpr int initialWidth = 940, initialHeight = 480, exchangePaneWidth = 500, widestNames = 150;
constexpr QColor failureColor(0xb0, 0x1c, 0x1c);

QDateTime MomentOf(std::chrono::system_clock::time_point time) {
    return QDateTime::fromSecsSinceEpoch(
        std::chrono::floor<std::chrono::seconds>(time.time_since_epoch()).count());
}

// Adds a tool tip with the whole text, which may not fit the cell.
void SetCell(QTableWidget& table, int row, int column, const QString& text) {
    table.item(row, column)->setText(text);
    table.item(row, column)->setToolTip(text.toHtmlEscaped());
}

void AddRow(QTableWidget& table, int row) {
    for (int column = 0; column < table.columnCount(); ++column)
        table.setItem(row, column, new QTableWidgetItem);
}

}  // namespace

MainWindow::MainWindow(const ExchangeDesk& desk, const Family& family, Actions actions)
    : desk_(desk), family_(family), actions_(std::move(actions)) {
    setObjectName("switchdesk");
    setWindowTitle("Switchdesk");
    setStyleSheet(WindowStyle());
    auto* panes = new QSplitter;
    panes->setChildrenCollapsible(false);
    panes->setHandleWidth(18);
    panes->addWidget(MakeExchangePane());
    panes->addWidget(MakeAnswerPane());
    panes->setSizes({exchangePaneWidth, initialWidth - exchangePaneWidth});
    panes->setContentsMargins(18, 14, 18, 10);
    setCentralWidget(panes);
    backgrounds_ = menuBar()->addMenu(tr("&View"))->addMenu(tr("&Background of the add-in"));
    chosenBackground_ = new QActionGroup(this);
    state_ = new QLabel;
    state_->setObjectName("state");
    state_->setTextFormat(Qt::PlainText);
    statusBar()->addWidget(state_, 1);
    statusBar()->setSizeGripEnabled(false);
    resize(initialWidth, initialHeight);
    ShowState(platform::FromQt(tr("Choose an exchange and open the clock add-in for it.")),
              AddInState::Closed, {});
}

QWidget* MainWindow::MakeExchangePane() {
    auto* pane = new QWidget;
    auto* rows = new QVBoxLayout(pane);
    rows->setContentsMargins(0, 0, 0, 0);
    exchanges_ =
        MakeTable("exchanges", tr("Exchanges"), {tr("Name"), tr("Clock"), tr("Read at"), tr("Last problem")});
    exchanges_->setSelectionMode(QAbstractItemView::SingleSelection);
    exchanges_->horizontalHeader()->setSectionResizeMode(nameColumn, QHeaderView::Interactive);
    open_ = MakeButton("openAddIn", tr("&Open clock add-in"));
    open_->setDefault(true);
    close_ = MakeButton("closeAddIn", tr("&Close add-in"));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(open_);
    buttons->addWidget(close_);
    rows->addWidget(MakeHeading(tr("Exchanges")));
    rows->addWidget(exchanges_, 1);
    rows->addLayout(buttons);
    FillExchanges();
    connect(open_, &QPushButton::clicked, this, [this] { OpenSelected(); });
    connect(exchanges_, &QTableWidget::itemActivated, this, [this] { OpenSelected(); });
    connect(close_, &QPushButton::clicked, this, [this] { platform::Guard(actions_.close); });
    return pane;
}

QWidget* MainWindow::MakeAnswerPane() {
    auto* pane = new QWidget;
    auto* rows = new QVBoxLayout(pane);
    rows->setContentsMargins(0, 0, 0, 0);
    messages_ = new QPlainTextEdit;
    messages_->setObjectName("messages");
    messages_->setAccessibleName(tr("Messages"));
    messages_->setReadOnly(true);
    messages_->setMaximumBlockCount(1000);
    results_ = MakeTable("results", tr("Results"), {tr("Command"), tr("Item"), tr("Value"), tr("Answer")});
    results_->setSelectionMode(QAbstractItemView::NoSelection);
    caption_ = MakeNote("caption", tr("Caption of the results"));
    code_ = MakeNote("code", tr("Code of the last answer"));
    rows->addWidget(MakeHeading(tr("Messages")));
    rows->addWidget(messages_, 4);
    rows->addSpacing(6);
    rows->addLayout(MakeHeadingLine(tr("Results"), caption_));
    rows->addWidget(results_, 5);
    rows->addSpacing(6);
    rows->addLayout(MakeHeadingLine(tr("Code"), code_));
    return pane;
}

void MainWindow::OfferBackgrounds(std::int16_t chosen) {
    try {
        for (const BackgroundSet& set : family_.BackgroundSets()) AddBackground(set, set.number == chosen);
    } catch (const platform::RuntimeError& error) {
        ShowMessage(platform::FromQt(tr("The backgrounds can't be read:")) + u" " + error.Description());
    }
    backgrounds_->setEnabled(!backgrounds_->isEmpty());
}

void MainWindow::AddBackground(const BackgroundSet& set, bool chosen) {
    QAction* action = backgrounds_->addAction(platform::ToQt(set.name), this, [this, number = set.number] {
        platform::Guard([&] { actions_.background(number); });
    });
    action->setActionGroup(chosenBackground_);
    action->setCheckable(true);
    action->setChecked(chosen);
}

void MainWindow::FillExchanges() {
    exchanges_->setRowCount(static_cast<int>(desk_.Exchanges().size()));
    for (int row = 0; row < exchanges_->rowCount(); ++row) AddRow(*exchanges_, row);
    exchanges_->selectRow(0);
    ShowExchanges();
    // Makes room for a name in bold.
    exchanges_->resizeColumnToContents(nameColumn);
    exchanges_->setColumnWidth(nameColumn,
                               std::min(exchanges_->columnWidth(nameColumn) * 9 / 8, widestNames));
}

void MainWindow::ShowExchanges() {
    int row = 0;
    for (const ExchangeDesk::Named& exchange : desk_.Exchanges()) ShowExchange(row++, exchange);
}

// Shows the exchange that the add-in is open for in bold.
void MainWindow::ShowExchange(int row, const ExchangeDesk::Named& exchange) {
    const bool isOpen = !openFor_.empty() && exchange.name == openFor_;
    const QString name = platform::ToQt(exchange.name);
    SetCell(*exchanges_, row, nameColumn, name);
    SetCell(*exchanges_, row, clockColumn, exchange.clock ? DifferenceText(*exchange.clock) : QString());
    if (exchange.clock) {
        const QDateTime readAt = MomentOf(exchange.readAt);
        SetCell(*exchanges_, row, timeColumn, QLocale().toString(readAt.time(), QLocale::ShortFormat));
        exchanges_->item(row, timeColumn)->setToolTip(QLocale().toString(readAt, QLocale::LongFormat));
    }
    SetCell(*exchanges_, row, problemColumn, platform::ToQt(exchange.problem));
    exchanges_->item(row, problemColumn)->setForeground(failureColor);
    QTableWidgetItem& cell = *exchanges_->item(row, nameColumn);
    cell.setData(Qt::AccessibleTextRole, isOpen ? tr("%1, open").arg(name) : name);
    QFont font = cell.font();
    font.setBold(isOpen);
    cell.setFont(font);
}

void MainWindow::OpenSelected() {
    const int row = exchanges_->currentRow();
    if (row < 0 || !open_->isEnabled()) return;
    const Text exchange = desk_.Exchanges()[static_cast<std::size_t>(row)].name;
    const Text* awaited = openFor_.empty() || exchange == openFor_ ? nullptr : desk_.BusyBesides(exchange);
    if (awaited)
        AskThenOpen(exchange, *awaited);
    else
        platform::Guard([&] { actions_.open(exchange); });
}

// The add-in shows an answer under the exchange that it is open for when the answer arrives.
void MainWindow::AskThenOpen(const Text& exchange, const Text& awaited) {
    const QString name = platform::ToQt(exchange);
    auto* box =
        new QMessageBox(QMessageBox::Question, windowTitle(),
                        tr("%1 hasn't answered yet. If you open %2 now, the answer of %1 will appear in the "
                           "window of %2.")
                            .arg(platform::ToQt(awaited), name),
                        QMessageBox::NoButton, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    QPushButton* open = box->addButton(tr("Open %1").arg(name), QMessageBox::AcceptRole);
    box->setDefaultButton(box->addButton(tr("Wait"), QMessageBox::RejectRole));
    connect(open, &QPushButton::clicked, this,
            [this, exchange] { platform::Guard([&] { actions_.open(exchange); }); });
    box->open();
}

void MainWindow::Select(const Text& exchange) {
    const auto shown = exchanges_->findItems(platform::ToQt(exchange), Qt::MatchExactly);
    if (!shown.isEmpty()) exchanges_->setCurrentItem(shown.front());
}

const Text& MainWindow::Concerned() const {
    return desk_.Answering().empty() ? openFor_ : desk_.Answering();
}

void MainWindow::ShowMessage(const Text& message) {
    ShowMessageOf(Concerned(), message);
}

void MainWindow::ShowMessageOf(const Text& exchange, const Text& message) {
    messages_->appendPlainText(QTime::currentTime().toString("HH:mm:ss") + "   " +
                               platform::ToShow(exchange.empty() ? message : exchange + u": " + message));
}

void MainWindow::ShowResults(const Text& caption, const std::vector<Item>& items) {
    // The caption from the add-in names the exchange that it is open for, even if another one is answering.
    caption_->setText(platform::ToQt(Concerned() == openFor_ ? caption : Concerned()));
    results_->setRowCount(static_cast<int>(items.size()));
    int row = 0;
    for (const Item& item : items) {
        AddRow(*results_, row);
        int column = commandColumn;
        for (const Text* text : {&item.command, &item.first, &item.second, &item.extra})
            SetCell(*results_, row, column++, platform::ToShow(*text));
        if (item.extra != answer::accepted) results_->item(row, answerColumn)->setForeground(failureColor);
        ++row;
    }
}

void MainWindow::ShowCode(const Text& code) {
    code_->setText(platform::ToQt(code));
}

void MainWindow::ShowHelp(const Text& file) {
    try {
        const platform::HelpTopic page = family_.OpeningPage(file);
        if (!help_) help_ = new HelpPage(*this);
        help_->Show(page);
    } catch (const platform::RuntimeError& error) {
        ShowMessage(platform::FromQt(tr("The help can't be shown:")) + u" " + error.Description());
    }
}

void MainWindow::ShowState(const Text& words, AddInState state, const Text& exchange) {
    openFor_ = state == AddInState::Open ? exchange : Text();
    state_->setText(platform::ToQt(words));
    setWindowTitle(exchange.empty() ? QString("Switchdesk")
                                    : "Switchdesk \u2013 " + platform::ToQt(exchange));
    if (state == AddInState::Open) Select(exchange);
    open_->setEnabled(state != AddInState::Opening);
    close_->setEnabled(state == AddInState::Open);
    ShowExchanges();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    event->accept();
    platform::Guard(actions_.leave);
}

}  // namespace switchdesk
