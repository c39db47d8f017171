// Boxes and dialogs of the desktop.

#pragma once

#include "platform/dialogs.h"
#include "qt/runner.h"

#include <QString>

class QFileDialog;

namespace quillon {

/// Each shows what has changed in the form before it opens, and belongs to the active window.
class QtDialogs : public Dialogs {
public:
    /// File dialogs begin in `startFolder`; "" is the current directory.
    explicit QtDialogs(Runner& theRunner, QString startFolder = {})
        : runner(theRunner), lastFolder(std::move(startFolder))
    {
    }

    void Message(Icon icon, const std::string& title, const std::string& text) override;
    bool Ask(const std::string& title, const std::string& text) override;
    std::optional<std::string> Prompt(const std::string& prompt,
                                      const std::string& offered) override;
    std::optional<std::string> OpenFile(const std::string& filter,
                                        const std::string& defaultExtension) override;
    std::optional<std::string> SaveFile(const std::string& initialName, const std::string& filter,
                                        const std::string& defaultExtension) override;
    std::optional<FontChoice> ChooseFont(const FontChoice& current) override;

    // What the described forms do not ask. Filters are the toolkit's.
    void Tell(const QString& title, const QString& text);
    std::optional<std::string> ImportFile(const QString& filters);

    /// Begins with `name`, without an extension, in the folder of the file `beside` if there is
    /// one. The extension is that of `filter`, one of `filters`, until the user says otherwise;
    /// `filter` becomes the one chosen.
    std::optional<std::string> ExportFile(const QString& name, const std::string& beside,
                                          const QStringList& filters, QString& filter);

    /// Which of some lines, from 0; nothing if cancelled.
    std::optional<int> ChooseLine(const QString& title, const QString& question,
                                  const QStringList& lines);

private:
    std::optional<std::string> RunFileDialog(QFileDialog& dialog);
    QString FolderToBeginIn() const;
    QString FolderOf(const std::string& path) const;
    std::optional<std::string> RunSaveDialog(QFileDialog& dialog);

    Runner& runner;
    QString
        lastFolder;  // of the last file chosen that was the user's own; at first, where to begin
};

/// "Label|pattern|Label|pattern" as the toolkit's filters. A part without a pattern is a bare
/// extension.
QString FileFilters(const QString& filter);

}  // namespace quillon
