#include "qt/system.h"

#include "qt/font_metrics.h"
#include "qt/own_folder.h"
#include "qt/text.h"

#include <QApplication>
#include <QDir>
#include <QSocketNotifier>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace quillon {

namespace {

// A signal handler may do little more than write: the byte wakes the event loop.
volatile std::sig_atomic_t wakeUpPipe = -1;

void OnSignal(int)
{
    const int error = errno;
    [[maybe_unused]] const ssize_t written = write(wakeUpPipe, "", 1);
    errno = error;
}

}  // namespace

std::string QtSystem::ProgramFolder() const
{
    const std::string& folder = ChosenOwnFolder().Path;
    QDir().mkpath(PathFromBytes(folder));  // it may have been removed since
    return folder;
}

bool QtSystem::HasFont(const std::string& name) const
{
    return FontAvailable(ToUnicode(name));
}

void QtSystem::SetWaitCursor(bool on)
{
    if (on && !QApplication::overrideCursor())
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else if (!on)
        QApplication::restoreOverrideCursor();
}

EndFromOutside::EndFromOutside(std::function<void()> endRun) : end(std::move(endRun))
{
    qApp->installEventFilter(this);
    if (pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    wakeUpPipe = pipeEnds[1];
    auto* notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        end();
    });
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    for (std::size_t i = 0; i < std::size(kSignals); ++i) {
        sigaction(kSignals[i], nullptr, &before[i]);
        if (before[i].sa_handler != SIG_IGN)  // nohup
            sigaction(kSignals[i], &action, nullptr);
    }
}

EndFromOutside::~EndFromOutside()
{
    if (pipeEnds[0] < 0)
        return;
    for (std::size_t i = 0; i < std::size(kSignals); ++i)
        sigaction(kSignals[i], &before[i], nullptr);
    wakeUpPipe = -1;
    close(pipeEnds[0]);
    close(pipeEnds[1]);
}

// The desktop session ends; the program's own exit does not send this event.
bool EndFromOutside::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != qApp || event->type() != QEvent::Quit)
        return QObject::eventFilter(watched, event);
    end();
    return true;
}

}  // namespace quillon
