// Undo and redo: every moment in which a step began can be restored.
//
// Handlers know nothing about it. After each event, whoever runs events tells it to look: it
// compares the program with the moment after the previous event, and keeps the difference as a
// delta. Deltas form one unbroken chain. A step holds all that happened until the next one began,
// so moving about is undone together with the step that it followed.
//
// What counts as a step depends on the values alone. One begins when a tune is begun or opened,
// when a text mode is entered, and when a record changes (but for XPos, Spacing and BeamCode, which
// a redraw works out anew), the name, the instrument, fonts or margins. What is being typed goes on
// in the step that is open: the strings of a note up to Enter or to another note, a text until its
// mode ends, page setup until the form closes. A tune that is unsaved as soon as it is begun, such
// as one made of another program's file, is work.

#pragma once

#include "history/timeline.h"

#include <array>
#include <string>
#include <string_view>

namespace quillon {

/// What an event came from. Key: a character or key for StaffBox, or for the bracket's box.
enum class Input { Command, Key, Enter };

/// Is told how the timeline grows.
class HistoryKeeper {
public:
    virtual ~HistoryKeeper() = default;

    /// An event is about to be taken in: the steps are as they were before it.
    virtual void Happens(const Event& event) = 0;

    /// The timeline has grown by this.
    virtual void Append(std::string_view entry) = 0;
};

class History {
public:
    explicit History(const Values& program);

    /// Before an event: takes in what has changed between events, such as the blinking caret.
    void Begin();

    /// After an event. `name` is what a step that begins with it is called.
    void Observe(Input input, std::string_view name);

    /// Go back, and forward again, by up to `count` steps. A scratch file that cannot be restored
    /// is a path/file-access Fault, and nothing has changed.
    void Undo(int count = 1);
    void Redo(int count = 1);

    int UndoCount() const { return timeline.UndoCount(); }
    int RedoCount() const { return timeline.RedoCount(); }

    /// What would be undone or redone next, such as "Delete Measure 7"; "" if there is nothing.
    std::string UndoName() const { return timeline.UndoName(); }
    std::string RedoName() const { return timeline.RedoName(); }

    /// The moment after the last event. At a fault: the one before the event that failed.
    const Moment& Last() const { return timeline.Last(); }

    /// Whether the table differs from its file: as last saved, opened or begun. One that was begun
    /// unsaved differs until it is saved.
    bool Changed() const { return timeline.Changed(); }

    /// Opens the tune in which another run has ended, as a step. The steps of that run come after
    /// it, so they can be undone as well. A Fault as above.
    void Adopt(const Timeline& run, std::string name);

    const Timeline& Steps() const { return timeline; }

    /// Who keeps the history on disk, if anybody does.
    HistoryKeeper* Keeper = nullptr;

private:
    /// What is being typed, and into which record.
    enum class Typing { Note, Chord, LeftHand, RightHand, Bracket, PageSetup, Nothing };
    struct Open {
        Typing What = Typing::Nothing;
        int Record = 0;

        bool operator==(const Open&) const = default;
    };

    static Open TypingIn(const Values& values);
    static bool IsText(Typing what);
    std::string StepName(std::string_view name, Open typing, const Changes& changes,
                         int measureBefore) const;
    bool BelongsToOpen(const Changes& changes) const;
    bool TakeOpening(Event& event);
    std::string TakeChanges(Changes& changes);
    void Add(const Event& event);
    void Tell(std::string_view entry);
    void GoBack(int back);
    void Arrived();

    Values program;
    Timeline timeline;
    unsigned picture = 0;  // revision of the picture in the last moment
    std::array<ScratchFile, kScratchFiles.size()> scratchFiles;
    int openings = 0;  // form.Openings and form.Writes at the last look
    int writes = 0;
    Open open;
};

}  // namespace quillon
