// How the forms run a handler of the core.
//
// Every event of every form goes through Run: the handler runs to its end, what it changed is
// shown, and a fault that it throws ends the program here and nowhere else. The history looks at
// the program before and after.

#pragma once

#include "history/history.h"
#include "shell/run_keeper.h"

#include <QString>

#include <functional>
#include <optional>
#include <string>

namespace quillon {

class Runner {
public:
    /// Copies the main form's values to its controls. Also called before a dialog opens.
    std::function<void()> ShowForm = [] {};

    /// A fault is about to end the program. Returns where the work is kept.
    std::function<KeptWork()> KeepAtFault = [] { return KeptWork(); };

    /// The fault ends it, and another run takes over if the user wishes.
    std::function<void(bool startAgain)> EndByFault = [](bool) {};

    /// Why work is not being kept at the moment, "" if it is.
    std::function<std::string()> Trouble = [] { return std::string(); };

    /// What can be undone. It begins when the start is over.
    std::optional<History> Steps;

    /// `doing` is what the user did, for the error box; `input` and `stepName` are for the history.
    /// While a handler waits in a dialog, no other one starts: such a call does nothing and returns
    /// false.
    bool Run(const QString& doing, const std::function<void()>& handler,
             Input input = Input::Command, const std::string& stepName = {});

    /// The same for the beginning of an event: to the history, the next call is the rest of it. So
    /// a click that gives a button the focus first is one event.
    bool RunBeginning(const QString& doing, const std::function<void()>& handler);

    /// The same for what the history does not look at: the cursor's blinking, and undo itself.
    bool RunUnobserved(const QString& doing, const std::function<void()>& handler);

    bool Busy() const { return busy; }

private:
    [[noreturn]] void EndWithFault(const QString& doing, const std::string& error,
                                   const std::string& explanation, const std::string& file);

    void BeginEvent();

    bool busy = false;
    bool begun = false;  // the event that comes next has begun
};

}  // namespace quillon
