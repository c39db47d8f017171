#include "shell/menus.h"

#include "support/desk.h"

#include <gtest/gtest.h>

#include <set>

namespace quillon {
namespace {

/// The entries of a menu by name, a separator as ";".
std::string Names(const Menu& menu)
{
    std::string names;
    for (const MenuEntry& entry : menu.Entries)
        names += (names.empty() ? "" : " ") + std::string(entry.Name ? entry.Name : ";");
    return names;
}

TEST(Menus, StandInTheirOrderWithTheirSeparators)
{
    // clang-format off
    const std::pair<const char*, const char*> menus[] = {
        {"mnuFile &File",
         "mnuNew mnuOpen mnuAppend ; mnuSave mnuSaveAs ; mnuPageSet mnuPrint ; mnuExit"},
        {"mnuEdit &Edit",
         "mnuNoteBefore mnuInsNoteAfter mnuDelNote ; mnuClipbrd mnuCopy mnuPaste ; "
         "mnuInsMeas mnuDelMeas ; mnuChord mnuRemarks mnuRHEdit mnuLHEdit mnuHardBrk"},
        {"mnuSymbols &Symbols",
         "mnuRest mnuHalfRest mnuWholeRest ; mnuRptSign mnuRptStart mnuDoubBar mnuBegDoubBar"},
        {"mnuEndings E&ndings",
         "mnuSign mnuCoda mnuFine mnuDS mnuDC mnuDSfine mnuDCfine mnuDScoda mnuDCcoda "
         "mnuRepeatEnds"},
        {"mnuInst &Instrument", "mnuGuitar mnuBanjo mnuMandolin"},
        {"mnuMIDI &MIDI", "mnuOpnMidi mnuSetup mnuTuning"},
        {"mnuPage &Page", "mnuLargeview mnuSmallView mnuPgDown"},
        {"mnuHelp &Help", "mnuAbout"},
    };
    // clang-format on
    ASSERT_EQ(Menus().size(), std::size(menus));
    for (std::size_t i = 0; i < std::size(menus); ++i) {
        const Menu& menu = Menus()[i];
        EXPECT_EQ(menu.Name + std::string(" ") + menu.Caption, menus[i].first);
        EXPECT_EQ(Names(menu), menus[i].second);
    }
}

TEST(Menus, HaveTheirCaptions)
{
    const std::pair<const char*, const char*> captions[] = {
        {"mnuNew",          "&New"               },
        {"mnuAppend",       "Appen&d"            },
        {"mnuSaveAs",       "Save &As"           },
        {"mnuPageSet",      "Page Setup"         },
        {"mnuExit",         "E&xit"              },
        {"mnuNoteBefore",   "Insert Note &Before"},
        {"mnuInsNoteAfter", "Insert Note &After" },
        {"mnuDelNote",      "Delete Note"        },
        {"mnuClipbrd",      "Copy to Clipboard"  },
        {"mnuInsMeas",      "&Insert Measure"    },
        {"mnuDelMeas",      "&Delete Measure"    },
        {"mnuRemarks",      "Re&marks"           },
        {"mnuRHEdit",       "&Right Hand Editing"},
        {"mnuLHEdit",       "&Left Hand Editing" },
        {"mnuHardBrk",      "&Hard Line Break"   },
        {"mnuRest",         "Rest"               },
        {"mnuHalfRest",     "&Half Rest"         },
        {"mnuWholeRest",    "&Whole Rest"        },
        {"mnuRptSign",      "&Repeat Sign"       },
        {"mnuRptStart",     "Repeat &Start"      },
        {"mnuDoubBar",      "&Double Bar"        },
        {"mnuBegDoubBar",   "&Begin Double Bar"  },
        {"mnuFine",         "fine"               },
        {"mnuDS",           "D.S."               },
        {"mnuDCcoda",       "D.C. al Coda"       },
        {"mnuRepeatEnds",   "Repeat Brackets"    },
        {"mnuMandolin",     "&Mandolin/Bass"     },
        {"mnuOpnMidi",      "&Open MIDI"         },
        {"mnuSetup",        "&Set up"            },
        {"mnuTuning",       "&Tunings"           },
        {"mnuLargeview",    "&Large View"        },
        {"mnuPgDown",       "&Page Down"         },
        {"mnuAbout",        "&About"             },
    };
    for (const auto& [name, caption] : captions) {
        ASSERT_NE(FindMenuEntry(name), nullptr) << name;
        EXPECT_STREQ(FindMenuEntry(name)->Caption, caption);
    }
}

TEST(Menus, HaveTheirShortcutsAndNoOthers)
{
    const std::pair<const char*, const char*> shortcuts[] = {
        {"F1",       "mnuChord"     },
        {"F2",       "mnuRHEdit"    },
        {"F3",       "mnuLHEdit"    },
        {"F4",       "mnuRest"      },
        {"F6",       "mnuRptSign"   },
        {"F7",       "mnuRepeatEnds"},
        {"F8",       "mnuRptStart"  },
        {"F9",       "mnuDoubBar"   },
        {"F12",      "mnuBegDoubBar"},
        {"Shift+F1", "mnuDSfine"    },
        {"Shift+F2", "mnuDCfine"    },
        {"Shift+F3", "mnuFine"      },
        {"Shift+F4", "mnuCoda"      },
        {"Shift+F5", "mnuSign"      },
        {"Shift+F6", "mnuDScoda"    },
        {"Shift+F7", "mnuDCcoda"    },
        {"Shift+F8", "mnuDS"        },
        {"Shift+F9", "mnuDC"        },
        {"Ctrl+C",   "mnuCopy"      },
        {"Ctrl+P",   "mnuPaste"     },
        {"Ctrl+N",   "mnuHardBrk"   },
        {"Ctrl+H",   "mnuHalfRest"  },
        {"Ctrl+W",   "mnuWholeRest" },
    };
    for (const auto& [shortcut, name] : shortcuts) {
        ASSERT_NE(FindShortcut(shortcut), nullptr) << shortcut;
        EXPECT_STREQ(FindShortcut(shortcut)->Name, name);
    }
    std::size_t count = 0;
    for (const Menu& menu : Menus())
        for (const MenuEntry& entry : menu.Entries)
            count += entry.Name && *entry.Shortcut;
    EXPECT_EQ(count, std::size(shortcuts));
    EXPECT_EQ(FindShortcut(""), nullptr);
    EXPECT_EQ(FindMenuEntry("mnuNone"), nullptr);
}

TEST(Menus, NameEveryEntryOnce)
{
    std::set<std::string> names;
    for (const Menu& menu : Menus())
        for (const MenuEntry& entry : menu.Entries)
            if (entry.Name) {
                EXPECT_TRUE(names.insert(entry.Name).second) << entry.Name;
                EXPECT_NE(entry.Run, nullptr) << entry.Name;
            }
}

class MenusOnTheDesk : public Desk {};

TEST_F(MenusOnTheDesk, SaveAndPasteAreOffAtStartUp)
{
    Start();
    EXPECT_FALSE(IsEnabled(*FindMenuEntry("mnuSave"), win));
    EXPECT_FALSE(IsEnabled(*FindMenuEntry("mnuPaste"), win));
    win.form.mnuSaveEnabled = win.form.mnuPasteEnabled = true;
    EXPECT_TRUE(IsEnabled(*FindMenuEntry("mnuSave"), win));
    EXPECT_TRUE(IsEnabled(*FindMenuEntry("mnuPaste"), win));
}

TEST_F(MenusOnTheDesk, RunTheHandlerOfTheirName)
{
    Start();
    Type("1\r");
    FindMenuEntry("mnuHardBrk")->Run(win);
    EXPECT_EQ(win.tune[1].Slot(6), "NL");
    FindMenuEntry("mnuAbout")->Run(win);
    EXPECT_EQ(system.Forms.back(), Form::frmAbout);
    FindMenuEntry("mnuLargeview")->Run(win);
    EXPECT_TRUE(win.pages.LargeView);
    FindMenuEntry("mnuSmallView")->Run(win);
    EXPECT_FALSE(win.pages.LargeView);
}

TEST_F(MenusOnTheDesk, EachFormIsReadyWhenItIsShown)
{
    Start();
    midiPorts.Names = {"A port"};
    win.tune[0].ChordText = "Air";
    win.mnuOpnMidi();
    EXPECT_TRUE(win.frmBldMidi.Loaded);
    win.mnuSetup();
    EXPECT_TRUE(win.frmMidiSetup.Visible);
    EXPECT_EQ(win.frmMidiSetup.ComboMidiOut, (std::vector<std::string>{"Default", "A port"}));
    win.mnuTuning();
    EXPECT_TRUE(win.tuningForms[0].Loaded);
    win.mnuPageSet();
    EXPECT_EQ(win.frmPgSetup->Text1, "Air");
    win.mnuAbout();
    EXPECT_EQ(system.Forms, (std::vector{Form::frmBldMidi, Form::frmMidiSetup, Form::Guitar,
                                         Form::frmPgSetup, Form::frmAbout}));
}

}  // namespace
}  // namespace quillon
