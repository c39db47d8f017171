// Run-time errors: failures that nothing handles and that end the program.
//
// A handler does not catch a Fault. The application's event loop does, in one place: it shows the
// error and ends with status 1. The work from before the event is in the journal. The few commands
// that do handle failures (opening a tune, saving under a new name, printing, building MIDI) catch
// it themselves.

#pragma once

#include <stdexcept>
#include <string>

namespace quillon {

enum class Error {
    InvalidProcedureCall = 5,
    Overflow = 6,
    SubscriptOutOfRange = 9,
    DivisionByZero = 11,
    FileNotFound = 53,
    InputPastEnd = 62,
    PathFileAccess = 75,
    ObjectRequired = 424,
    ControlArrayElement = 340,
    InvalidPropertyValue = 380,
};

/// The words for an error, such as "subscript out of range".
const char* ErrorWords(Error error);

class Fault : public std::runtime_error {
public:
    /// what() is "run-time error 9: subscript out of range".
    explicit Fault(Error error);

    /// As above; `explanation` says in terms of the tune what is wrong ("No Coda follows
    /// measure 12.") and is shown on a line of its own.
    Fault(Error error, std::string explanation);

    /// About a file: `path` and `reason`, such as "No space left on device", are shown at the end.
    static Fault OfFile(Error error, const std::string& path, const std::string& reason);

    Error Number() const { return number; }
    const std::string& Explanation() const { return words; }
    const std::string& File() const { return file; }  // as it is shown, "" for none

private:
    Error number;
    std::string words;
    std::string file;
};

}  // namespace quillon
