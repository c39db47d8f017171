#include "qt/system.h"

#include "qt/font_metrics.h"
#include "qt/text.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace quillon {

std::string QtSystem::ProgramFolder() const
{
    const QString folder =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/quillon";
    QDir().mkpath(folder);
    return PathToBytes(folder);
}

bool QtSystem::HasFont(const std::string& name) const
{
    return FontAvailable(ToUnicode(name));
}

void QtSystem::SetWaitCursor(bool on)
{
    if (on && !QApplication::overrideCursor())
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else if (!on)
        QApplication::restoreOverrideCursor();
}

std::string EnsureWritableFolder(const std::string& path)
{
    const QDir current = QDir::current();
    const QFileInfo folder(current.path());
    if (folder.isDir() && folder.isWritable())
        return path;
    QDir::setCurrent(QDir::homePath());
    return path.empty() ? path : PathToBytes(current.absoluteFilePath(PathFromBytes(path)));
}

}  // namespace quillon
