#include "notation/symbols.h"
#include "support/editor_desk.h"

#include <functional>

namespace quillon {
namespace {

class Redraws : public EditorDesk {
protected:
    struct Command {
        const char* Name;
        std::function<void()> Run;
    };

    NoteRecord& Head() { return tune[form.MeasHead]; }

    /// True if the command, given in measure 2 of three full ones with the cursor on the staff,
    /// leaves the picture that a redraw gives.
    bool IsRedrawn(const Command& command)
    {
        NewTune(6);
        ShowFullMeasures(3);
        editor.cmdNext();
        view.StaffBox.PrintLineAt(300, 100, "stale");
        command.Run();
        const std::string picture = Log();
        editor.Activate();
        return picture == Log();
    }
};

TEST_F(Redraws, FollowEveryCommandThatChangesWhatTheStaffShows)
{
    const std::vector<Command> commands = {
        {"Next",                               [&] { editor.cmdNext(); }        },
        {"Previous",                           [&] { editor.cmdPrevious(); }    },
        {"Go To",                              [&] { Goto("3"); }               },
        {"Insert Note Before",                 [&] { editor.mnuNoteBefore(); }  },
        {"Insert Note After",                  [&] { editor.mnuInsNoteAfter(); }},
        {"Delete Note",                        [&] { editor.mnuDelNote(); }     },
        {"Delete Measure",                     [&] { editor.mnuDelMeas(); }     },
        {"Delete Measure on the last one",
         [&] {
             editor.cmdNext();
             editor.mnuDelMeas();
         }                                                                      },
        {"OK",
         [&] {
             editor.mnuInsMeas();
             Type("7\r");
             editor.cmdNext();
         }                                                                      },
        {"Cancel",
         [&] {
             editor.mnuInsMeas();
             Type("7\r");
             editor.cmdPrevious();
         }                                                                      },
        {"Left Hand",                          [&] { editor.mnuLHEdit(); }      },
        {"Right Hand",                         [&] { editor.mnuRHEdit(); }      },
        {"Rest",                               [&] { editor.mnuRest(); }        },
        {"Half Rest",                          [&] { editor.mnuHalfRest(); }    },
        {"Whole Rest",                         [&] { editor.mnuWholeRest(); }   },
        {"Delete",                             [&] { Key(kKeyDelete); }         },
        {"Backspace",                          [&] { Key(kKeyBackspace); }      },
        {"Enter",                              [&] { Type("\r"); }              },
        {"Enter after a chord",
         [&] {
             editor.mnuChord();
             Type("Am\r");
         }                                                                      },
        {"a bar instead of another",
         [&] {
             Head().BarCode = "99";
             editor.mnuDoubBar();
         }                                                                      },
        {"the same sign again",
         [&] {
             Head().Slot(1) = kDc;
             editor.mnuDC();
         }                                                                      },
        {"a sign of words instead of another",
         [&] {
             Head().Slot(1) = kDc;
             editor.mnuFine();
         }                                                                      },
        {"an ending taken away",
         [&] {
             Head().Slot(2) = "1";
             editor.mnuRepeatEnds();
         }                                                                      },
        {"a line break taken away",
         [&] {
             Head().Slot(6) = kLineBreak;
             editor.mnuHardBrk();
         }                                                                      },
    };
    for (const Command& command : commands)
        EXPECT_TRUE(IsRedrawn(command)) << command.Name;
}

}  // namespace
}  // namespace quillon
