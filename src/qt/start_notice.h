// What a start has to tell: unsaved work of earlier sessions, and a folder that cannot be used.
//
// The greeting tells it. A start with a tune has no greeting; then a note beside the window does.

#pragma once

#include <QString>

class QWidget;

namespace quillon {

/// "" when there is nothing to tell.
QString StartNotice();

/// The note; none when there is nothing to tell. It leaves the keys to the window.
void ShowStartNote(QWidget* mainWindow);

}  // namespace quillon
