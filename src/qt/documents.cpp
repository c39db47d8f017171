#include "qt/documents.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace quillon {

namespace {

/// The first of some places, seen from the program's folder, at which there is something.
template <typename... Places> QString FirstThatIsThere(Places... places)
{
    const QString bin = QCoreApplication::applicationDirPath();
    for (const char* place : {places...})
        if (QFileInfo::exists(bin + place))
            return QDir::cleanPath(bin + place);
    return {};
}

}  // namespace

QString ManualFile()
{
    return FirstThatIsThere("/../share/doc/quillon/manual.html", "/../docs/manual.html");
}

QString ExamplesFolder()
{
    return FirstThatIsThere("/../share/doc/quillon/examples");
}

}  // namespace quillon
