// What the desktop offers around the program: its folder, fonts, forms, the end of the run.

#pragma once

#include "platform/system.h"

#include <QObject>

#include <csignal>
#include <functional>
#include <iterator>

namespace quillon {

class QtSystem : public System {
public:
    /// Callbacks that show a form and end the run; the main window sets them.
    std::function<void(Form)> OnShow = [](Form) {};
    std::function<void()> OnEnd = [] {};

    std::string ProgramFolder() const override;  // made on first use
    bool HasFont(const std::string& name) const override;
    void Show(Form form) override { OnShow(form); }
    void End() override { OnEnd(); }
    void SetWaitCursor(bool on) override;
};

/// Ends of the run that come from outside: SIGTERM, SIGHUP, SIGINT and the desktop session's end.
/// There may be one at a time. A signal that comes twice ends the program at once.
class EndFromOutside : public QObject {
public:
    explicit EndFromOutside(std::function<void()> endRun);
    ~EndFromOutside() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static constexpr int kSignals[] = {SIGTERM, SIGHUP, SIGINT};

    std::function<void()> end;
    int pipeEnds[2] = {-1, -1};
    struct sigaction before[std::size(kSignals)] = {};
};

}  // namespace quillon
