#include "qt/file_exchange.h"

#include "exchange/forms.h"
#include "qt/sheets.h"
#include "qt/text.h"
#include "shell/recent_tunes.h"

#include <QFileInfo>

namespace quillon {

namespace {

QString NameOf(const std::string& path)
{
    return QFileInfo(PathFromBytes(path)).fileName();
}

QString PatternsOf(const ExchangeForm& form)
{
    QStringList patterns{"*." + ToUnicode(form.Name)};
    if (!form.OtherExtension.empty())
        patterns += "*." + ToUnicode(form.OtherExtension);
    return patterns.join(' ');
}

QString ImportFilters()
{
    QStringList patterns;
    QStringList filters;
    for (const ExchangeForm& form : ExchangeForms()) {
        if (!form.Read)
            continue;
        patterns += PatternsOf(form);
        filters += ToUnicode(form.About) + " (" + PatternsOf(form) + ')';
    }
    filters.prepend("Other programs' tunes (" + patterns.join(' ') + ')');
    return filters.join(";;") + ";;All files (*)";
}

QStringList TitlesOf(const std::vector<FoundTune>& tunes)
{
    QStringList titles;
    for (const FoundTune& tune : tunes) {
        const QString title = ToUnicode(tune.Tune.Title).trimmed();
        titles += title.isEmpty() ? QString("Tune %1").arg(titles.size() + 1) : title;
    }
    return titles;
}

}  // namespace

void FileExchange::Import()
{
    std::optional<std::string> path;
    runner.RunUnobserved("Import", [&] { path = dialogs.ImportFile(ImportFilters()); });
    if (!path)
        return;
    if (FormOfFile(*path) && !IsForeign(*path))
        runner.Run(
            "Open", [&] { OpenWithInstrument(win, *path); }, Input::Command, "Open");
    else
        ImportFile(*path);
}

void FileExchange::ImportFile(const std::string& path)
{
    Notices said;
    const std::string step = "Import " + PathToBytes(NameOf(path));
    runner.Run(
        "Import", [&] { said = Take(path); }, Input::Command, step);
    QString text = NameOf(path) + " has been imported.\n";
    for (const std::string& line : said.Lines())
        text += '\n' + ToUnicode(line);
    if (!said.Lines().empty())
        ShowNote(mainWindow, "ImportNote", text);
}

/// What is to be told about a tune that has taken the place of the present one.
Notices FileExchange::Take(const std::string& path)
{
    Notices said;
    std::unique_ptr<Tune> made;
    try {
        made = TuneFrom(path, said);
    } catch (const std::exception& error) {  // nothing has changed
        dialogs.Tell("Import", NameOf(path) + " cannot be imported.\n" + ToUnicode(error.what()));
    }
    return made && TakeImported(win, *made) ? said : Notices();
}

/// None if no tune was chosen.
std::unique_ptr<Tune> FileExchange::TuneFrom(const std::string& path, Notices& said)
{
    std::vector<FoundTune> found = TunesIn(path);
    FoundTune* chosen = Choose(NameOf(path), found);
    return chosen ? MakeImported(win, std::move(*chosen), said) : nullptr;
}

FoundTune* FileExchange::Choose(const QString& name, std::vector<FoundTune>& found)
{
    if (found.size() == 1)
        return &found.front();
    const QString question =
        QString("There are %1 tunes in %2. Which one do you want?").arg(found.size()).arg(name);
    const std::optional<int> line = dialogs.ChooseLine("Import", question, TitlesOf(found));
    return line ? &found[static_cast<std::size_t>(*line)] : nullptr;
}

}  // namespace quillon
