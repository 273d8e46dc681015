// The pieces that the window is made of, all in one look.
#pragma once

#include <QString>
#include <QStringList>

class QHBoxLayout;
class QLabel;
class QPushButton;
class QTableWidget;

namespace switchdesk {

QString WindowStyle();
QLabel* MakeHeading(const QString& text);
// A text beside a heading; shows a dash while it has none.
QLabel* MakeNote(const QString& name, const QString& description);
QHBoxLayout* MakeHeadingLine(const QString& heading, QLabel* note);
// A table to read, with one selected row at most.
QTableWidget* MakeTable(const QString& name, const QString& accessibleName, const QStringList& columns);
QPushButton* MakeButton(const QString& name, const QString& text);

}  // namespace switchdesk
