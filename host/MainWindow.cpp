#include "host/MainWindow.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTableWidget>
#include <QTime>

#include "host/HelpPage.h"
#include "host/WindowParts.h"
#include "platform/runtime/Date.h"
#include "platform/runtime/Guard.h"

namespace switchdesk {

using platform::Text;

namespace {

constexpr int nameColumn = 0, clockColumn = 1;
constexpr int initialWidth = 860, initialHeight = 560, exchangePaneWidth = 290;

// Where the clock should be by now.
QString ClockText(std::chrono::microseconds ahead) {
    const double days = std::chrono::duration<double, std::ratio<86400>>(ahead).count();
    const platform::DateParts parts = platform::PartsOf({platform::SystemClock().Now().days + days});
    return QString::asprintf("%04d-%02d-%02d  %02d:%02d:%02d", parts.year, parts.month, parts.day, parts.hour,
                             parts.minute, parts.second);
}

}  // namespace

MainWindow::MainWindow(const ExchangeDesk& desk, const Family& family, Actions actions)
    : desk_(desk), family_(family), actions_(std::move(actions)) {
    setObjectName("switchdesk");
    setWindowTitle("Switchdesk");
    setStyleSheet(WindowStyle());
    auto* content = new QWidget(this);
    auto* columns = new QHBoxLayout(content);
    columns->setContentsMargins(18, 18, 18, 12);
    columns->setSpacing(18);
    columns->addWidget(MakeExchangePane());
    columns->addWidget(MakeAnswerPane(), 1);
    setCentralWidget(content);
    backgrounds_ = menuBar()->addMenu("&View")->addMenu("&Background of the add-in");
    chosenBackground_ = new QActionGroup(this);
    state_ = new QLabel("Choose an exchange and open the clock add-in for it.");
    state_->setObjectName("state");
    state_->setTextFormat(Qt::PlainText);
    flow_ = new QLabel("Flow off");
    flow_->setObjectName("flow");
    statusBar()->addWidget(state_, 1);
    statusBar()->addPermanentWidget(flow_);
    statusBar()->setSizeGripEnabled(false);
    resize(initialWidth, initialHeight);
    EnableButtons();
}

QWidget* MainWindow::MakeExchangePane() {
    auto* pane = new QWidget;
    pane->setFixedWidth(exchangePaneWidth);
    auto* rows = new QVBoxLayout(pane);
    rows->setContentsMargins(0, 0, 0, 0);
    exchanges_ = MakeTable("exchanges", "Exchanges", {"Name", "Clock"});
    exchanges_->setSelectionMode(QAbstractItemView::SingleSelection);
    exchanges_->horizontalHeader()->setSectionResizeMode(nameColumn, QHeaderView::Stretch);
    exchanges_->horizontalHeader()->setSectionResizeMode(clockColumn, QHeaderView::ResizeToContents);
    open_ = MakeButton("openAddIn", "&Open clock add-in");
    open_->setDefault(true);
    close_ = MakeButton("closeAddIn", "&Close add-in");
    rows->addWidget(MakeHeading("Exchanges"));
    rows->addWidget(exchanges_, 1);
    rows->addWidget(open_);
    rows->addWidget(close_);
    FillExchanges();
    connect(open_, &QPushButton::clicked, this, [this] { OpenSelected(); });
    connect(exchanges_, &QTableWidget::itemDoubleClicked, this, [this] { OpenSelected(); });
    connect(close_, &QPushButton::clicked, this, [this] { platform::Guard(actions_.close); });
    return pane;
}

QWidget* MainWindow::MakeAnswerPane() {
    auto* pane = new QWidget;
    auto* rows = new QVBoxLayout(pane);
    rows->setContentsMargins(0, 0, 0, 0);
    messages_ = new QPlainTextEdit;
    messages_->setObjectName("messages");
    messages_->setAccessibleName("Messages");
    messages_->setReadOnly(true);
    messages_->setMaximumBlockCount(1000);
    results_ = MakeTable("results", "Results", {"CMD", "FD", "SD", "ED"});
    results_->setSelectionMode(QAbstractItemView::NoSelection);
    results_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    caption_ = MakeNote("caption", "Caption of the results");
    code_ = MakeNote("code", "Code of the last answer");
    rows->addWidget(MakeHeading("Messages"));
    rows->addWidget(messages_, 4);
    rows->addSpacing(6);
    rows->addLayout(MakeHeadingLine("Results", caption_));
    rows->addWidget(results_, 5);
    rows->addSpacing(6);
    rows->addLayout(MakeHeadingLine("Code", code_));
    return pane;
}

void MainWindow::OfferBackgrounds(std::int16_t chosen) {
    try {
        for (const BackgroundSet& set : family_.BackgroundSets()) AddBackground(set, set.number == chosen);
    } catch (const platform::RuntimeError& error) {
        ShowMessage(u"The backgrounds can't be read: " + error.Description());
    }
    backgrounds_->setEnabled(!backgrounds_->isEmpty());
}

void MainWindow::AddBackground(const BackgroundSet& set, bool chosen) {
    QAction* action = backgrounds_->addAction(
        QString::fromStdU16String(set.name), this,
        [this, number = set.number] { platform::Guard([&] { actions_.background(number); }); });
    action->setActionGroup(chosenBackground_);
    action->setCheckable(true);
    action->setChecked(chosen);
}

void MainWindow::FillExchanges() {
    exchanges_->setRowCount(static_cast<int>(desk_.Exchanges().size()));
    int row = 0;
    for (const ExchangeDesk::Named& entry : desk_.Exchanges()) {
        exchanges_->setItem(row, nameColumn, new QTableWidgetItem(QString::fromStdU16String(entry.name)));
        exchanges_->setItem(row++, clockColumn, new QTableWidgetItem);
    }
    exchanges_->selectRow(0);
    ShowClocks();
}

void MainWindow::ShowClocks() {
    int row = 0;
    for (const ExchangeDesk::Named& entry : desk_.Exchanges())
        exchanges_->item(row++, clockColumn)
            ->setText(entry.clock ? ClockText(entry.clock->ahead) : QString());
}

void MainWindow::OpenSelected() {
    const int row = exchanges_->currentRow();
    if (row < 0) return;
    const Text exchange = desk_.Exchanges()[static_cast<std::size_t>(row)].name;
    platform::Guard([&] { actions_.open(exchange); });
}

void MainWindow::Select(const Text& exchange) {
    const auto shown = exchanges_->findItems(QString::fromStdU16String(exchange), Qt::MatchExactly);
    if (!shown.isEmpty()) exchanges_->setCurrentItem(shown.front());
}

void MainWindow::EnableButtons() {
    close_->setEnabled(addInOpen_);
}

void MainWindow::ShowMessage(const Text& message) {
    messages_->appendPlainText(QTime::currentTime().toString("HH:mm:ss") + "   " +
                               QString::fromStdU16String(message));
}

void MainWindow::ShowResults(const Text& caption, const std::vector<Item>& items) {
    caption_->setText(QString::fromStdU16String(caption));
    results_->setRowCount(static_cast<int>(items.size()));
    int row = 0;
    for (const Item& item : items) {
        int column = 0;
        for (const Text* text : {&item.command, &item.first, &item.second, &item.extra})
            results_->setItem(row, column++, new QTableWidgetItem(QString::fromStdU16String(*text)));
        ++row;
    }
}

void MainWindow::ShowCode(const Text& code) {
    code_->setText(QString::fromStdU16String(code));
}

void MainWindow::ShowHelp(const Text& file) {
    try {
        const platform::HelpTopic page = family_.OpeningPage(file);
        if (!help_) help_ = new HelpPage(*this);
        help_->Show(page);
    } catch (const platform::RuntimeError& error) {
        ShowMessage(u"The help can't be shown: " + error.Description());
    }
}

void MainWindow::ShowFlow(bool on) {
    flow_->setText(on ? "Flow on" : "Flow off");
}

void MainWindow::ShowState(const Text& state, bool open, const Text& exchange) {
    addInOpen_ = open;
    state_->setText(QString::fromStdU16String(state));
    setWindowTitle(exchange.empty() ? QString("Switchdesk")
                                    : "Switchdesk \u2013 " + QString::fromStdU16String(exchange));
    if (open) Select(exchange);
    EnableButtons();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    event->accept();
    platform::Guard(actions_.leave);
}

}  // namespace switchdesk
