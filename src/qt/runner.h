// How the forms run a handler of the core.
//
// Every event of every form goes through Run: the handler runs to its end, what it changed is
// shown, and a fault that it throws ends the program here and nowhere else.

#pragma once

#include <QString>

#include <functional>
#include <string>

namespace quillon {

class Runner {
public:
    /// Copies the main form's values to its controls. Also called before a dialog opens.
    std::function<void()> ShowForm = [] {};

    /// Keeps unsaved work in the rescue copy. Called after each event.
    std::function<void()> KeepWork = [] {};

    /// A fault is about to end the program. Returns the path of the rescue copy, "" without one.
    std::function<std::string()> KeepAtFault = [] { return std::string(); };

    /// `doing` is what the user did, for the error box. While a handler waits in a dialog, no
    /// other one starts: such a call does nothing and returns false.
    bool Run(const QString& doing, const std::function<void()>& handler);

    bool Busy() const { return busy; }

private:
    [[noreturn]] void EndWithFault(const QString& doing, const std::string& error,
                                   const std::string& explanation, const std::string& file);

    bool busy = false;
};

}  // namespace quillon
