// What the user should know at the start: unsaved work from earlier sessions, and a folder that
// cannot be used.
//
// The greeting says it. A start with a tune has no greeting, so a note beside the window does.

#pragma once

#include <QString>

class QWidget;

namespace quillon {

/// "" if there is nothing to say.
QString StartNotice();

/// Shows the note, unless there is nothing to say. The keyboard focus stays in the window.
void ShowStartNote(QWidget* mainWindow);

}  // namespace quillon
