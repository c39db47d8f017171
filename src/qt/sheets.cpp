#include "qt/sheets.h"

#include "qt/text.h"
#include "shell/key_sheet.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QListWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace quillon {

namespace {

constexpr int kLinesShown = 12;
constexpr int kKeysShown = 28;

/// Shows a list in a window that is some characters wide and some lines high.
void ShowSheet(QWidget* mainWindow, const QString& title, QAbstractItemView* list, QSize characters)
{
    delete mainWindow->findChild<QDialog*>(title, Qt::FindDirectChildrenOnly);
    auto* sheet = new QDialog(mainWindow);
    sheet->setObjectName(title);
    sheet->setWindowTitle(title);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(sheet);
    list->setAccessibleName(title);
    layout->addWidget(list);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, sheet);
    layout->addWidget(buttons);
    QObject::connect(buttons, &QDialogButtonBox::rejected, sheet, &QDialog::reject);
    QObject::connect(sheet, &QDialog::finished, mainWindow, [mainWindow] {
        mainWindow->activateWindow();  // also where no window manager sees to that
    });
    const QFontMetrics metrics = list->fontMetrics();
    sheet->resize(metrics.averageCharWidth() * characters.width(),
                  metrics.lineSpacing() * characters.height());
    sheet->show();
    list->setFocus();
}

}  // namespace

void ShowLines(QWidget* mainWindow, const QString& title, const QStringList& lines)
{
    auto* list = new QListWidget;
    list->setWordWrap(true);
    list->addItems(lines);
    list->setCurrentRow(0);
    ShowSheet(mainWindow, title, list, {70, kLinesShown + 4});
}

void ShowKeys(QWidget* mainWindow)
{
    auto* list = new QTreeWidget;
    list->setColumnCount(2);
    list->setHeaderLabels({"Key", "What it does"});
    list->setRootIsDecorated(false);
    for (const KeyGroup& group : KeySheet()) {
        auto* title = new QTreeWidgetItem(list, {ToUnicode(group.Title)});
        QFont bold = list->font();
        bold.setBold(true);
        title->setFont(0, bold);
        for (const KeyLine& line : group.Lines)
            new QTreeWidgetItem(title, {ToUnicode(line.Keys), ToUnicode(line.Meaning)});
    }
    list->expandAll();
    list->resizeColumnToContents(0);
    list->setCurrentItem(list->topLevelItem(0));
    ShowSheet(mainWindow, "Keys", list, {70, kKeysShown + 4});
}

}  // namespace quillon
