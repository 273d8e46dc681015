// Makes the parts of the window, in one style.
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
// A text beside a heading; a dash until it is set.
QLabel* MakeNote(const QString& name, const QString& description);
QHBoxLayout* MakeHeadingLine(const QString& heading, QLabel* note);
// A read-only table in which whole rows are selected, with columns as wide as their contents.
QTableWidget* MakeTable(const QString& name, const QString& accessibleName, const QStringList& columns);
QPushButton* MakeButton(const QString& name, const QString& text);

}  // namespace switchdesk
