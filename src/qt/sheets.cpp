#include "qt/sheets.h"

#include "qt/text.h"
#include "shell/key_sheet.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QListWidget>
#include <QMessageBox>
#include <QScrollBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace quillon {

namespace {

constexpr QSize kLinesShown(70, 12);   // characters and lines
constexpr int kKeysShown = 30;         // lines
constexpr QPoint kFromCorner(40, 60);  // pixels: a note stands where a page is mostly white

void ShowSheet(QWidget* mainWindow, const QString& title, QAbstractItemView* list, QSize size)
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
    list->setSelectionMode(QAbstractItemView::NoSelection);
    list->setCurrentIndex(list->model()->index(0, 0));
    list->setMinimumSize(size);
    sheet->show();
    list->setFocus();
}

}  // namespace

void ShowLines(QWidget* mainWindow, const QString& title, const QStringList& lines)
{
    auto* list = new QListWidget;
    list->setWordWrap(true);
    list->addItems(lines);
    const QFontMetrics metrics = list->fontMetrics();
    ShowSheet(mainWindow, title, list,
              {metrics.averageCharWidth() * kLinesShown.width(),
               metrics.lineSpacing() * kLinesShown.height()});
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
    int width = 2 * list->verticalScrollBar()->sizeHint().width();
    for (int column : {0, 1}) {
        list->resizeColumnToContents(column);
        width += list->columnWidth(column);
    }
    ShowSheet(mainWindow, "Keys", list, {width, list->fontMetrics().lineSpacing() * kKeysShown});
}

void ShowNote(QWidget* mainWindow, const QString& name, const QString& text)
{
    delete mainWindow->findChild<QMessageBox*>(name, Qt::FindDirectChildrenOnly);
    auto* note =
        new QMessageBox(QMessageBox::Information, "Quillon", text, QMessageBox::Ok, mainWindow);
    note->setObjectName(name);
    note->setTextFormat(Qt::PlainText);
    note->setModal(false);
    note->setAttribute(Qt::WA_DeleteOnClose);
    note->setAttribute(Qt::WA_ShowWithoutActivating);
    note->adjustSize();
    note->move(mainWindow->mapToGlobal(
        QPoint(mainWindow->width() - note->width() - kFromCorner.x(), kFromCorner.y())));
    note->show();
    mainWindow->activateWindow();  // where a window is always shown with the focus
}

}  // namespace quillon
