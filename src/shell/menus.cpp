#include "shell/menus.h"

#include <algorithm>
#include <iterator>

namespace quillon {

namespace {

constexpr MenuEntry kSeparator{nullptr, nullptr, nullptr, nullptr};

bool CanSave(const MainWin& win)
{
    return win.form.mnuSaveEnabled;
}

bool CanPaste(const MainWin& win)
{
    return win.form.mnuPasteEnabled;
}

// A handler of the main form or of its editor as a table entry.
template <void (MainWin::*handler)()> void Run(MainWin& win)
{
    (win.*handler)();
}

template <void (Editor::*handler)()> void Run(MainWin& win)
{
    (win.editor.*handler)();
}

template <void (PageView::*handler)()> void Run(MainWin& win)
{
    (win.pages.*handler)();
}

// clang-format off
constexpr MenuEntry kFile[] = {
    {"mnuNew",     "&New",       "", Run<&MainWin::mnuNew>,    nullptr, "Start a new tune"},
    {"mnuOpen",    "&Open",      "", Run<&MainWin::mnuOpen>,   nullptr, "Open a tune file"},
    {"mnuAppend",  "Appen&d",    "", Run<&Editor::mnuAppend>,  nullptr, "Add a measure at the end of the tune"},
    kSeparator,
    {"mnuSave",    "&Save",      "", Run<&MainWin::mnuSave>,   CanSave, "Save the tune to its file"},
    {"mnuSaveAs",  "Save &As",   "", Run<&MainWin::mnuSaveAs>, nullptr, "Save the tune under another name"},
    kSeparator,
    {"mnuPageSet", "Page Setup", "", Run<&MainWin::mnuPageSet>, nullptr, "Set the title, credits, fonts and margins"},
    {"mnuPrint",   "&Print",     "", Run<&MainWin::mnuPrint>, nullptr, "Print the tune"},
    kSeparator,
    {"mnuExit",    "E&xit",      "", Run<&MainWin::mnuExit>,   nullptr, "Close the program"},
};

constexpr MenuEntry kEdit[] = {
    {"mnuNoteBefore",   "Insert Note &Before", "",       Run<&Editor::mnuNoteBefore>,   nullptr,  "Insert an empty note before this one"},
    {"mnuInsNoteAfter", "Insert Note &After",  "",       Run<&Editor::mnuInsNoteAfter>, nullptr,  "Insert an empty note after this one"},
    {"mnuDelNote",      "Delete Note",         "",       Run<&Editor::mnuDelNote>,      nullptr,  "Delete this note"},
    kSeparator,
    {"mnuClipbrd",      "Copy to Clipboard",   "",       Run<&MainWin::mnuClipbrd>, nullptr,  "Copy the selected part of the page as a picture"},
    {"mnuCopy",         "&Copy",               "Ctrl+C", Run<&Editor::mnuCopy>,         nullptr,  "Copy measures"},
    {"mnuPaste",        "&Paste",              "Ctrl+P", Run<&Editor::mnuPaste>,        CanPaste, "Paste the copied measures after this one"},
    kSeparator,
    {"mnuInsMeas",      "&Insert Measure",     "",       Run<&Editor::mnuInsMeas>,      nullptr,  "Insert a new measure before this one"},
    {"mnuDelMeas",      "&Delete Measure",     "",       Run<&Editor::mnuDelMeas>,      nullptr,  "Delete this measure"},
    kSeparator,
    {"mnuChord",        "&Chord",              "F1",     Run<&Editor::mnuChord>,        nullptr,  "Type a chord name above the note, then press Enter"},
    {"mnuRemarks",      "Re&marks",            "",       Run<&Editor::mnuRemarks>,      nullptr,  "Write a remark above the measure"},
    {"mnuRHEdit",       "&Right Hand Editing", "F2",     Run<&Editor::mnuRHEdit>,       nullptr,  "Type a letter for right-hand fingering"},
    {"mnuLHEdit",       "&Left Hand Editing",  "F3",     Run<&Editor::mnuLHEdit>,       nullptr,  "Type a letter or digit for left-hand fingering"},
    {"mnuHardBrk",      "&Hard Line Break",    "Ctrl+N", Run<&Editor::mnuHardBrk>,      nullptr,  "Start a new line at this measure, or remove the break"},
};

constexpr MenuEntry kSymbols[] = {
    {"mnuRest",       "Rest",              "F4",     Run<&Editor::mnuRest>,       nullptr, "Enter a rest of the selected value"},
    {"mnuHalfRest",   "&Half Rest",        "Ctrl+H", Run<&Editor::mnuHalfRest>,   nullptr, "Enter a half rest"},
    {"mnuWholeRest",  "&Whole Rest",       "Ctrl+W", Run<&Editor::mnuWholeRest>,  nullptr, "Enter a whole rest"},
    kSeparator,
    {"mnuRptSign",    "&Repeat Sign",      "F6",     Run<&Editor::mnuRptSign>,    nullptr, "Repeat sign at the end of the measure"},
    {"mnuRptStart",   "Repeat &Start",     "F8",     Run<&Editor::mnuRptStart>,   nullptr, "Repeat sign at the start of the measure"},
    {"mnuDoubBar",    "&Double Bar",       "F9",     Run<&Editor::mnuDoubBar>,    nullptr, "Double bar at the end of the measure"},
    {"mnuBegDoubBar", "&Begin Double Bar", "F12",    Run<&Editor::mnuBegDoubBar>, nullptr, "Double bar at the start of the measure"},
};

constexpr MenuEntry kEndings[] = {
    {"mnuSign",       "Sign",            "Shift+F5", Run<&Editor::mnuSign>,       nullptr, "The Sign that D.S. returns to"},
    {"mnuCoda",       "Coda",            "Shift+F4", Run<&Editor::mnuCoda>,       nullptr, "The Coda that /To Coda jumps to"},
    {"mnuFine",       "fine",            "Shift+F3", Run<&Editor::mnuFine>,       nullptr, "The tune ends here after \"al Fine\""},
    {"mnuDS",         "D.S.",            "Shift+F8", Run<&Editor::mnuDS>,         nullptr, "Back to the Sign (not played)"},
    {"mnuDC",         "D.C.",            "Shift+F9", Run<&Editor::mnuDC>,         nullptr, "Back to the beginning (not played)"},
    {"mnuDSfine",     "D.S. al Fine",    "Shift+F1", Run<&Editor::mnuDSfine>,     nullptr, "Back to the Sign, then on to Fine"},
    {"mnuDCfine",     "D.C. al Fine",    "Shift+F2", Run<&Editor::mnuDCfine>,     nullptr, "Back to the beginning, then on to Fine"},
    {"mnuDScoda",     "D.S. al Coda",    "Shift+F6", Run<&Editor::mnuDScoda>,     nullptr, "Back to the Sign, then to the Coda"},
    {"mnuDCcoda",     "D.C. al Coda",    "Shift+F7", Run<&Editor::mnuDCcoda>,     nullptr, "Back to the beginning, then to the Coda"},
    {"mnuRepeatEnds", "Repeat Brackets", "F7",       Run<&Editor::mnuRepeatEnds>, nullptr, "Ending (volta) bracket with its number"},
};

constexpr MenuEntry kInst[] = {
    {"mnuGuitar",   "&Guitar",        "", Run<&MainWin::mnuGuitar>,   nullptr, "Six strings; starts a new tune"},
    {"mnuBanjo",    "&Banjo",         "", Run<&MainWin::mnuBanjo>,    nullptr, "Five strings; starts a new tune"},
    {"mnuMandolin", "&Mandolin/Bass", "", Run<&MainWin::mnuMandolin>, nullptr, "Four strings; starts a new tune"},
};

constexpr MenuEntry kMIDI[] = {
    {"mnuOpnMidi", "&Open MIDI", "", Run<&MainWin::mnuOpnMidi>, nullptr,"Play the tune or make a MIDI file"},
    {"mnuSetup",   "&Set up",    "", Run<&MainWin::mnuSetup>, nullptr,"Choose a MIDI output device"},
    {"mnuTuning",  "&Tunings",   "", Run<&MainWin::mnuTuning>, nullptr,"Edit the instrument's tunings"},
};

constexpr MenuEntry kPage[] = {
    {"mnuLargeview", "&Large View", "", Run<&PageView::mnuLargeview>, nullptr, "Show the page in the whole window"},
    {"mnuSmallView", "&Small View", "", Run<&PageView::mnuSmallView>, nullptr, "Show the page and the measure"},
    {"mnuPgDown",    "&Page Down",  "", Run<&PageView::mnuPgDown>, nullptr, "Show the next page"},
};

constexpr MenuEntry kHelp[] = {
    {"mnuAbout", "&About", "", Run<&MainWin::mnuAbout>, nullptr, "About this program"},
};

constexpr Menu kMenus[] = {
    {"mnuFile",    "&File",       kFile},
    {"mnuEdit",    "&Edit",       kEdit},
    {"mnuSymbols", "&Symbols",    kSymbols},
    {"mnuEndings", "E&ndings",    kEndings},
    {"mnuInst",    "&Instrument", kInst},
    {"mnuMIDI",    "&MIDI",       kMIDI},
    {"mnuPage",    "&Page",       kPage},
    {"mnuHelp",    "&Help",       kHelp},
};
// clang-format on

template <typename Matches> const MenuEntry* Find(Matches matches)
{
    for (const Menu& menu : kMenus)
        for (const MenuEntry& entry : menu.Entries)
            if (entry.Name && matches(entry))
                return &entry;
    return nullptr;
}

}  // namespace

std::span<const Menu> Menus()
{
    return kMenus;
}

const MenuEntry* FindMenuEntry(std::string_view name)
{
    return Find([&](const MenuEntry& entry) { return name == entry.Name; });
}

const MenuEntry* FindShortcut(std::string_view shortcut)
{
    return Find([&](const MenuEntry& entry) {
        return *entry.Shortcut != '\0' && shortcut == entry.Shortcut;
    });
}

bool IsEnabled(const MenuEntry& entry, const MainWin& win)
{
    return !entry.Enabled || entry.Enabled(win);
}

}  // namespace quillon
