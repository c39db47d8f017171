#include "qt/file_exchange.h"

#include "exchange/forms.h"
#include "notation/draw_surface.h"
#include "qt/module.h"
#include "qt/sheets.h"
#include "qt/text.h"
#include "shell/recent_tunes.h"
#include "store/staged_file.h"

#include <QFileInfo>
#include <QLocale>
#include <QPageSize>
#include <QProgressDialog>

#include <algorithm>
#include <cmath>
#include <system_error>

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

QStringList ExportFilters()
{
    QStringList filters;
    for (const ExportForm& form : ExportForms())
        filters += ToUnicode(form.About) + " (*." + ToUnicode(form.Extension) + ')';
    return filters;
}

/// What the locale prints on; one that says nothing of a place, what tunes are laid out for.
PageChoices LocalPaper()
{
    const QLocale locale = QLocale::system();
    const bool letter =
        locale.language() == QLocale::C || locale.measurementSystem() == QLocale::ImperialUSSystem;
    const QSizeF inches =
        QPageSize(letter ? QPageSize::Letter : QPageSize::A4).size(QPageSize::Millimeter) / 25.4;
    PageChoices paper;
    paper.Width = std::round(inches.width() * kTwipsPerInch);
    paper.Height = std::round(inches.height() * kTwipsPerInch);
    return paper;
}

/// The files of a tune's pages appear together.
void WriteTogether(const std::string& path, const std::vector<std::string>& files)
{
    const std::vector<std::string> names = NumberedNames(path, files.size());
    std::vector<std::unique_ptr<StagedFile>> staged;
    for (std::size_t i = 0; i < files.size(); ++i)
        staged.emplace_back(std::make_unique<StagedFile>(names[i]))->Write(files[i]);
    for (const auto& file : staged)
        file->TakePlace();
}

/// The user has had enough of waiting.
struct Stopped {};

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
    TellOf(NameOf(path) + " has been imported.", said);
}

void FileExchange::TellOf(const QString& what, const Notices& said)
{
    QString text = what + '\n';
    for (const std::string& line : said.Lines())
        text += '\n' + ToUnicode(line);
    if (!said.Lines().empty())
        ShowNote(mainWindow, "ExchangeNote", text);
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
    return made && TakeImported(win, *made, said) ? said : Notices();
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

void FileExchange::Export()
{
    std::optional<std::string> path;
    Notices said;
    runner.RunUnobserved("Export", [&] {
        path = FileToExport();
        if (path)
            said = ExportTo(*path);
    });
    mainWindow->activateWindow();  // after the progress of a sound nobody else may see to that
    if (path)
        TellOf(NameOf(*path) + " has been written.", said);
}

std::optional<std::string> FileExchange::FileToExport()
{
    const QStringList filters = ExportFilters();
    if (exportFilter.isEmpty())
        exportFilter = filters.first();
    QString name = QFileInfo(PathFromBytes(win.tune.FileName)).completeBaseName();
    if (name.isEmpty())
        name = ToUnicode(win.tune[0].ChordText).replace('/', ' ').trimmed();
    if (name.isEmpty())
        name = "Untitled";
    return dialogs.ExportFile(name, win.tune.FileName, filters, exportFilter);
}

Notices FileExchange::ExportTo(const std::string& path)
{
    Notices said;
    const auto fail = [&](const QString& why) {
        said = {};
        dialogs.Tell("Export", NameOf(path) + " has not been written.\n" + why);
    };
    try {
        MakeFiles(path, said);
    } catch (const Stopped&) {
        said = {};
    } catch (const std::system_error& error) {
        fail(QString::fromStdString(error.code().message()) + ". Choose another place.");
    } catch (const Fault& fault) {
        const std::string& why = fault.Explanation();
        fail(ToUnicode(why.empty() ? fault.what() : why));
    } catch (const std::exception& error) {
        fail(ToUnicode(error.what()));
    }
    return said;
}

void FileExchange::MakeFiles(const std::string& path, Notices& said)
{
    if (path == win.tune.FileName)
        throw CannotExport("It is the tune's own file. Choose another name.");
    const std::vector<ExportForm> forms = ExportForms();
    const std::string extension = QFileInfo(PathFromBytes(path)).suffix().toLower().toStdString();
    const ExchangeForm* foreign = FindForm(extension);  // may be another extension of a form
    const auto form = std::ranges::find(forms, foreign ? foreign->Name : extension,
                                        [](const ExportForm& one) { return one.Extension; });
    if (form == forms.end())
        throw CannotExport(
            "Its extension is not one of a form that can be written. Choose the form "
            "in the list of the dialog, or type its extension, such as .pdf.");
    const std::vector<std::string> files =
        ExportedFiles(win, *form, LocalPaper(), TheRenderer(), said);
    if (form->IsSound)
        WriteSound(files.front(), path, *form);
    else
        WriteTogether(path, files);
}

void FileExchange::WriteSound(const std::string& midi, const std::string& path,
                              const ExportForm& form)
{
    QProgressDialog progress("Making the sound...", "Stop", 0, 100, mainWindow);
    progress.setWindowModality(Qt::WindowModal);
    StagedFile file(path);
    TheRenderer().Sound(midi, file.Path(), form.Extension, [&](double part) {
        progress.setValue(qRound(100 * part));
        if (progress.wasCanceled())
            throw Stopped();
    });
    file.Sync();
    file.TakePlace();
}

const Renderer& FileExchange::TheRenderer()
{
    if (!renderer)
        renderer = MadeByModule<Renderer>("libquillon-render.so", "MakeQuillonRenderer");
    if (!renderer)
        throw CannotExport("Pages and sound cannot be made: a part of Quillon is missing. "
                           "Install it again.");
    return *renderer;
}

}  // namespace quillon
