// Import and Export: tunes that come from other programs, and go to them.

#pragma once

#include "qt/dialogs.h"
#include "qt/runner.h"
#include "shell/export_tune.h"
#include "shell/import.h"

#include <string>

class QWidget;

namespace quillon {

class FileExchange {
public:
    /// All must outlive it.
    FileExchange(MainWin& mainWin, Runner& theRunner, QtDialogs& theDialogs, QWidget* theMainWindow)
        : win(mainWin), runner(theRunner), dialogs(theDialogs), mainWindow(theMainWindow)
    {
    }

    /// Asks for a file.
    void Import();

    /// Makes a new tune of a file, as a step. Of several tunes in it, one is chosen from a list.
    /// What could not be taken over is told in a note beside the window; of a file that cannot be
    /// read, a box says why.
    void ImportFile(const std::string& path);

    /// Asks for a file, and writes the tune there in the form that its extension says.
    void Export();

private:
    std::optional<std::string> FileToExport();
    Notices ExportTo(const std::string& path);
    void MakeFiles(const std::string& path, Notices& said);
    void WriteSound(const std::string& midi, const std::string& path, const ExportForm& form);
    void TellOf(const QString& what, const Notices& said);
    const Renderer& TheRenderer();
    Notices Take(const std::string& path);
    std::unique_ptr<Tune> TuneFrom(const std::string& path, Notices& said);
    FoundTune* Choose(const QString& name, std::vector<FoundTune>& found);

    MainWin& win;
    Runner& runner;
    QtDialogs& dialogs;
    QWidget* mainWindow;
    std::unique_ptr<Renderer> renderer;  // loaded when it is first needed
    QString exportFilter;                // chosen last
};

}  // namespace quillon
