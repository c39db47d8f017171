#include "qt/start_notice.h"

#include "qt/own_folder.h"
#include "qt/sheets.h"
#include "qt/text.h"
#include "shell/rescued.h"

#include <algorithm>

namespace quillon {

namespace {

QString AboutOwnFolder(const OwnFolder& folder)
{
    if (folder.Trouble.empty())
        return {};
    return "The folder for unsaved work and tunings cannot be used: " +
           QString::fromStdString(folder.Trouble) + ".\nUntil it can, they are kept in " +
           PathFromBytes(folder.Path) + ", which the system may clear.";
}

QString AboutRescuedWork(const std::string& folder)
{
    constexpr std::size_t kMostNamed = 3;
    std::vector<Rescued> rescued = RescuedIn(folder);
    std::erase_if(rescued, [](const Rescued& one) { return one.Discarded; });
    if (rescued.empty())
        return {};
    QString text = "Unsaved work from an earlier session:";
    const std::size_t named = std::min(rescued.size(), kMostNamed);
    for (std::size_t i = 0; i < named; ++i)
        text += '\n' + PathFromBytes(rescued[i].Name);
    if (rescued.size() > named)
        text += QString("\nand %1 more").arg(rescued.size() - named);
    return text + "\nTo bring it back, choose More > Rescued Tunes.";
}

}  // namespace

QString StartNotice()
{
    const OwnFolder& folder = ChosenOwnFolder();
    QStringList parts{AboutOwnFolder(folder)};
    for (const std::string& note : RescueEndedRuns(folder.Path))
        parts += PathFromBytes(note);
    parts += AboutRescuedWork(folder.Path);
    parts.removeAll(QString());
    return parts.join("\n\n");
}

void ShowStartNote(QWidget* mainWindow)
{
    const QString text = StartNotice();
    if (!text.isEmpty())
        ShowNote(mainWindow, "StartNote", text);
}

}  // namespace quillon
