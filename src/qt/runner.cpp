#include "qt/runner.h"

#include "qt/text.h"
#include "store/fault.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include <cstdlib>
#include <exception>
#include <utility>

namespace quillon {

bool Runner::Run(const QString& doing, const std::function<void()>& handler, Input input,
                 const std::string& stepName)
{
    return RunUnobserved(doing, [&] {
        BeginEvent();
        handler();
        if (Steps)
            Steps->Observe(input, stepName);
        begun = false;
    });
}

bool Runner::RunBeginning(const QString& doing, const std::function<void()>& handler)
{
    return RunUnobserved(doing, [&] {
        BeginEvent();
        handler();
    });
}

void Runner::BeginEvent()
{
    if (Steps && !std::exchange(begun, true))
        Steps->Begin();
}

bool Runner::RunUnobserved(const QString& doing, const std::function<void()>& handler)
{
    if (busy)
        return false;
    busy = true;
    try {
        handler();
    } catch (const Fault& fault) {
        EndWithFault(doing, fault.what(), fault.Explanation(), fault.File());
    } catch (const std::exception& error) {
        EndWithFault(doing, error.what(), {}, {});
    }
    busy = false;
    ShowForm();
    return true;
}

void Runner::EndWithFault(const QString& doing, const std::string& error,
                          const std::string& explanation, const std::string& file)
{
    const KeptWork kept = KeepAtFault();
    ShowForm();
    QString text = ToUnicode(error);
    text.replace(0, 1, text.left(1).toUpper());
    if (!explanation.empty())
        text += '\n' + ToUnicode(explanation);
    text += "\nThe error occurred during: " + doing;
    if (!kept.Journal.empty())
        text += "\nStart again goes on where you were before it happened.";
    if (!kept.Journal.empty() && kept.Changed)
        text += "\nYour work is also kept under More > Rescued Tunes.";
    if (!kept.Tune.empty())
        text += "\nYour work has been saved in " + PathFromBytes(kept.Tune);
    if (!file.empty())
        text += "\nThe file: " + PathFromBytes(file);
    QMessageBox box(QMessageBox::Critical, "Run-time error", text, QMessageBox::Ok,
                    QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    box.setEscapeButton(QMessageBox::Ok);
    const QAbstractButton* startAgain =
        kept.Journal.empty() ? nullptr : box.addButton("&Start Again", QMessageBox::ActionRole);
    QApplication::restoreOverrideCursor();
    box.exec();
    EndByFault(startAgain && box.clickedButton() == startAgain);
    // The program's state cannot be trusted: nothing else of it may run.
    std::quick_exit(EXIT_FAILURE);
}

}  // namespace quillon
