// Sheets beside the window: lists to look at while working on. Each has a window of its own that
// blocks nothing; Escape closes it.

#pragma once

#include <QStringList>

class QWidget;

namespace quillon {

/// Shows lines under a title, in place of an earlier sheet of that title.
void ShowLines(QWidget* mainWindow, const QString& title, const QStringList& lines);

/// Shows all keys.
void ShowKeys(QWidget* mainWindow);

/// Shows a text in a box that takes no focus, in place of an earlier one of that name.
void ShowNote(QWidget* mainWindow, const QString& name, const QString& text);

}  // namespace quillon
