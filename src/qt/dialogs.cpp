#include "qt/dialogs.h"

#include "qt/documents.h"
#include "qt/font_metrics.h"
#include "qt/own_folder.h"
#include "qt/text.h"
#include "shell/rescued.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDialog>
#include <QFontInfo>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPointer>
#include <QRegularExpression>
#include <QUrl>
#include <QVBoxLayout>

namespace quillon {

namespace {

QMessageBox::Icon BoxIcon(Icon icon)
{
    switch (icon) {
    case Icon::Stop:
        return QMessageBox::Critical;
    case Icon::Question:
        return QMessageBox::Question;
    case Icon::Information:
        return QMessageBox::Information;
    case Icon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

/// The window that a dialog belongs to. It becomes the active one again also where no window
/// manager sees to that.
class Owner {
public:
    Owner() : window(QApplication::activeWindow()) {}
    ~Owner()
    {
        if (window)
            window->activateWindow();
    }
    operator QWidget*() const { return window; }  // NOLINT: meant to convert

private:
    QPointer<QWidget> window;
};

/// A Yes/No question that needs an answer: "No" may discard work, so neither Escape nor
/// the close button means "No".
class Question : public QMessageBox {
public:
    using QMessageBox::QMessageBox;

private:
    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->key() != Qt::Key_Escape)
            QMessageBox::keyPressEvent(event);
    }

    void closeEvent(QCloseEvent* event) override { event->ignore(); }
};

void ShowBox(QMessageBox::Icon icon, const QString& title, const QString& text)
{
    const Owner owner;
    QMessageBox box(icon, title, text, QMessageBox::Ok, owner);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

/// Whether a file is among those that the program keeps for the user.
bool IsKept(const QString& path)
{
    const QString own = PathFromBytes(ChosenOwnFolder().Path);
    return QFileInfo(path).absoluteFilePath().startsWith(own + '/');
}

/// The extension in a filter such as "ABC (*.abc)".
QString ExtensionOf(const QString& filter)
{
    return filter.section("*.", 1).chopped(1);
}

/// Asked here, as a desktop's own dialog asks before the extension is added, about another file.
bool MayReplace(QWidget* owner, const QString& path)
{
    const QFileInfo file(path);
    if (!file.exists())
        return true;
    QMessageBox box(QMessageBox::Warning, "File Exists",
                    file.fileName() + " already exists.\nDo you want to replace it?",
                    QMessageBox::Yes | QMessageBox::No, owner);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

}  // namespace

void QtDialogs::Message(Icon icon, const std::string& title, const std::string& text)
{
    runner.ShowForm();
    ShowBox(BoxIcon(icon), ToUnicode(title), BoxText(text));
}

void QtDialogs::Tell(const QString& title, const QString& text)
{
    runner.ShowForm();
    ShowBox(QMessageBox::Critical, title, text);
}

std::optional<int> QtDialogs::ChooseLine(const QString& title, const QString& question,
                                         const QStringList& lines)
{
    runner.ShowForm();
    const Owner owner;
    QDialog dialog(owner);
    dialog.setWindowTitle(title);
    auto* layout = new QVBoxLayout(&dialog);
    auto* label = new QLabel(question);
    label->setTextFormat(Qt::PlainText);
    layout->addWidget(label);
    auto* list = new QListWidget;
    list->setAccessibleName(question);
    list->addItems(lines);
    list->setCurrentRow(0);
    layout->addWidget(list);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    layout->addWidget(buttons);
    QObject::connect(list, &QListWidget::itemActivated, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    list->setFocus();
    return dialog.exec() == QDialog::Accepted ? std::optional(list->currentRow()) : std::nullopt;
}

bool QtDialogs::Ask(const std::string& title, const std::string& text)
{
    runner.ShowForm();
    const Owner owner;
    Question box(QMessageBox::Question, ToUnicode(title), BoxText(text),
                 QMessageBox::Yes | QMessageBox::No, owner);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::Yes);
    return box.exec() == QMessageBox::Yes;
}

std::optional<std::string> QtDialogs::Prompt(const std::string& prompt, const std::string& offered)
{
    runner.ShowForm();
    const Owner owner;
    bool accepted = false;
    const QString answer =
        QInputDialog::getText(owner, QApplication::applicationDisplayName(), BoxText(prompt),
                              QLineEdit::Normal, ToUnicode(offered), &accepted);
    return accepted ? std::optional(FromUnicode(answer)) : std::nullopt;
}

QString FileFilters(const QString& filter)
{
    static const QRegularExpression shownPattern(R"(\s*\([^()]*\)$)");
    const QStringList parts = filter.split('|');
    QStringList filters;
    for (qsizetype i = 0; i < parts.size(); i += 2) {
        const bool bare = i + 1 == parts.size();
        const QString pattern = bare ? "*." + parts[i] : parts[i + 1];
        const QString label =
            bare ? parts[i].toUpper() + " Files" : QString(parts[i]).remove(shownPattern);
        filters += label + " (" + (pattern == "*.*" ? "*" : pattern) + ')';
    }
    return filters.join(";;");
}

std::optional<std::string> QtDialogs::RunFileDialog(QFileDialog& dialog)
{
    runner.ShowForm();
    QList<QUrl> places = dialog.sidebarUrls();
    for (const QString& folder :
         {PathFromBytes(RescuedFolder(ChosenOwnFolder().Path)), ExamplesFolder()})
        if (QFileInfo(folder).isDir())
            places += QUrl::fromLocalFile(folder);
    dialog.setSidebarUrls(places);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    const QString path = dialog.selectedFiles().first();
    if (!IsKept(path))
        lastFolder = QFileInfo(path).absolutePath();
    return PathToBytes(path);
}

QString QtDialogs::FolderToBeginIn() const
{
    return lastFolder.isEmpty() ? QDir::currentPath() : lastFolder;
}

std::optional<std::string> QtDialogs::OpenFile(const std::string& filter,
                                               const std::string& defaultExtension)
{
    const Owner owner;
    QFileDialog dialog(owner, "Open", FolderToBeginIn(), FileFilters(ToUnicode(filter)));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(ToUnicode(defaultExtension));
    return RunFileDialog(dialog);
}

std::optional<std::string> QtDialogs::ImportFile(const QString& filters)
{
    const Owner owner;
    QFileDialog dialog(owner, "Import", FolderToBeginIn(), filters);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return RunFileDialog(dialog);
}

std::optional<std::string> QtDialogs::SaveFile(const std::string& initialName,
                                               const std::string& filter,
                                               const std::string& defaultExtension)
{
    const Owner owner;
    QFileDialog dialog(owner, "Save As", FolderOf(initialName), FileFilters(ToUnicode(filter)));
    dialog.setDefaultSuffix(ToUnicode(defaultExtension));
    if (!initialName.empty())
        dialog.selectFile(QFileInfo(PathFromBytes(initialName)).fileName());
    return RunSaveDialog(dialog);
}

std::optional<std::string> QtDialogs::ExportFile(const QString& name, const std::string& beside,
                                                 const QStringList& filters, QString& filter)
{
    const Owner owner;
    QFileDialog dialog(owner, "Export", FolderOf(beside), filters.join(";;"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    const auto setExtension = [&](const QString& chosen) {
        const QString before = dialog.defaultSuffix();
        const QString extension = ExtensionOf(chosen);
        dialog.setDefaultSuffix(extension);
        const QFileInfo file(dialog.selectedFiles().value(0));
        if (!before.isEmpty() && file.suffix() == before)
            dialog.selectFile(file.completeBaseName() + '.' + extension);
    };
    dialog.selectNameFilter(filter);
    setExtension(filter);
    dialog.selectFile(name + '.' + ExtensionOf(filter));
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, setExtension);
    const std::optional<std::string> path = RunSaveDialog(dialog);
    filter = dialog.selectedNameFilter();
    return path;
}

/// The folder of a file of the user's own, else where to begin.
QString QtDialogs::FolderOf(const std::string& path) const
{
    const QFileInfo file(PathFromBytes(path));
    const bool isUsersOwn = !path.empty() && !IsKept(file.absoluteFilePath());
    return isUsersOwn ? file.absolutePath() : FolderToBeginIn();
}

std::optional<std::string> QtDialogs::RunSaveDialog(QFileDialog& dialog)
{
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    std::optional<std::string> path = RunFileDialog(dialog);
    while (path && !MayReplace(dialog.parentWidget(), PathFromBytes(*path)))
        path = RunFileDialog(dialog);
    return path;
}

std::optional<FontChoice> QtDialogs::ChooseFont(const FontChoice& current)
{
    runner.ShowForm();
    const Owner owner;
    QFont font(ToUnicode(current.Name));
    font.setPointSizeF(current.Size > 0 ? double{current.Size} : 1.0);
    font.setFamily(QFontInfo(font).family());  // the list holds no name that another font shows
    QFontDialog dialog(owner);
    // Some desktops' own dialogs lose the font and the size that they are given.
    dialog.setOption(QFontDialog::DontUseNativeDialog);
    dialog.setCurrentFont(font);
    const QFont offered = dialog.currentFont();  // its size is a whole number
    if (dialog.exec() != QDialog::Accepted)
        return {};
    const QFont chosen = dialog.selectedFont();
    FontChoice choice = current;
    if (chosen.family() != offered.family())
        choice.Name = FromUnicode(NameOfFont(chosen.family()));
    if (chosen.pointSizeF() != offered.pointSizeF())
        choice.Size = static_cast<float>(chosen.pointSizeF());
    return choice;
}

}  // namespace quillon
