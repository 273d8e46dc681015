#include "host/WindowParts.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>

namespace switchdesk {

QString WindowStyle() {
    return R"(
QMainWindow { background: #f4f6f9; }
QLabel { color: #1f2933; }
QLabel[heading="true"] { font-weight: 600; }
QLabel[note="true"] { color: #52606d; }
QTableWidget, QPlainTextEdit {
    background: white; color: #1f2933; border: 1px solid #cbd2d9; border-radius: 6px; padding: 4px; outline: none;
    selection-background-color: #d6e6fb; selection-color: #102a43; }
QTableWidget:focus, QPlainTextEdit:focus { border-color: #2f74c0; }
QHeaderView { background: white; border: none; }
QHeaderView::section {
    background: white; color: #52606d; border: none; border-bottom: 1px solid #e4e7eb; padding: 6px 3px; }
QTableWidget::item:selected { background: #d6e6fb; color: #102a43; border: none; }
QPushButton {
    background: white; color: #1f2933; border: 1px solid #cbd2d9; border-radius: 6px; padding: 8px 14px; }
QPushButton:hover { background: #eef2f6; }
QPushButton:pressed { background: #e0e7ee; }
QPushButton:focus { border-color: #2f74c0; }
QPushButton:disabled { color: #9aa5b1; background: #f4f6f9; }
QPushButton:default { background: #2566ad; color: white; border-color: #2566ad; font-weight: 600; }
QPushButton:default:hover { background: #2f74c0; }
QPushButton:default:pressed { background: #1d528b; }
QPushButton:default:focus { border: 2px solid #102a43; padding: 7px 13px; }
QStatusBar { background: #e9edf2; }
QStatusBar::item { border: none; }
QStatusBar QLabel { padding: 3px 12px; color: #3e4c59; }
)";
}

QLabel* MakeHeading(const QString& text) {
    auto* label = new QLabel(text);
    label->setProperty("heading", true);
    return label;
}

QLabel* MakeNote(const QString& name, const QString& description) {
    auto* label = new QLabel(QString(QChar(0x2013)));
    label->setObjectName(name);
    label->setAccessibleDescription(description);
    label->setProperty("note", true);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QHBoxLayout* MakeHeadingLine(const QString& heading, QLabel* note) {
    auto* line = new QHBoxLayout;
    line->setSpacing(10);
    line->addWidget(MakeHeading(heading));
    line->addWidget(note, 1);
    return line;
}

QTableWidget* MakeTable(const QString& name, const QString& accessibleName, const QStringList& columns) {
    auto* table = new QTableWidget(0, static_cast<int>(columns.size()));
    table->setObjectName(name);
    table->setAccessibleName(accessibleName);
    table->setHorizontalHeaderLabels(columns);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    table->horizontalHeader()->setHighlightSections(false);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table->horizontalHeader()->setStretchLastSection(true);
    table->horizontalHeader()->setMinimumSectionSize(64);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(30);
    table->setShowGrid(false);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setTabKeyNavigation(false);
    table->setWordWrap(false);
    return table;
}

QPushButton* MakeButton(const QString& name, const QString& text) {
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    button->setAccessibleName(QString(text).remove('&'));
    button->setAutoDefault(false);
    return button;
}

}  // namespace switchdesk
