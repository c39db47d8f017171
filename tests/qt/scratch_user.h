// A user of the test's own: settings, the program's folder and the current directory are in a
// scratch folder. Stands before the QApplication.

#pragma once

#include <QDir>
#include <QTemporaryDir>

namespace quillon {

struct ScratchUser {
    ScratchUser()
    {
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR", "HOME"})
            qputenv(name, folder.path().toLocal8Bit());
        QDir::setCurrent(folder.path());
    }

    QTemporaryDir folder;
};

}  // namespace quillon
