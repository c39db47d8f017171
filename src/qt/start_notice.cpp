#include "qt/start_notice.h"

#include "qt/own_folder.h"
#include "qt/text.h"
#include "shell/rescue.h"

#include <QMessageBox>

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

QString AboutRescueCopies(const std::string& folder)
{
    constexpr std::size_t kMostNamed = 3;
    const std::vector<std::string> copies = RescueCopiesIn(folder);
    if (copies.empty())
        return {};
    QString text = "Unsaved work from an earlier session is in " + PathFromBytes(folder) + ':';
    const std::size_t named = std::min(copies.size(), kMostNamed);
    for (std::size_t i = copies.size(); i > copies.size() - named; --i)
        text += '\n' + PathFromBytes(copies[i - 1]);
    if (copies.size() > named)
        text += QString("\nand %1 more").arg(copies.size() - named);
    return text + "\nTo look at it, choose File > Open.";
}

}  // namespace

QString StartNotice()
{
    const OwnFolder& folder = ChosenOwnFolder();
    const QString trouble = AboutOwnFolder(folder);
    const QString copies = AboutRescueCopies(folder.Path);
    return trouble + (trouble.isEmpty() || copies.isEmpty() ? "" : "\n\n") + copies;
}

void ShowStartNote(QWidget* mainWindow)
{
    const QString text = StartNotice();
    if (text.isEmpty())
        return;
    auto* note =
        new QMessageBox(QMessageBox::Information, "Quillon", text, QMessageBox::Ok, mainWindow);
    note->setObjectName("StartNote");
    note->setTextFormat(Qt::PlainText);
    note->setModal(false);
    note->setAttribute(Qt::WA_DeleteOnClose);
    note->setAttribute(Qt::WA_ShowWithoutActivating);
    note->show();
    mainWindow->activateWindow();  // where a window is always shown with the focus
}

}  // namespace quillon
