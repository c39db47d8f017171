#include "shell/key_sheet.h"

#include "shell/menus.h"

#include <algorithm>

namespace quillon {

namespace {

// clang-format off
constexpr StripCommand kStrip[] = {
    {"stripUndo",     "Undo",           "Ctrl+Z",               "Take the last step back"},
    {"stripRedo",     "Redo",           "Ctrl+Shift+Z, Ctrl+Y", "Take the step again that was undone last"},
    {"stripPlay",     "Play",           "F5",                   "Play from the measure in view, or stop; Escape stops too"},
    {"stripSave",     "&Save",          "Ctrl+S",               "Save the tune; a new one under a name that is asked for"},
    {"stripImport",   "&Import...",     "",                     "Make a tune of another program's file"},
    {"stripExport",   "E&xport...",     "",                     "Make pages, sound or another program's file of the tune"},
    {"stripPractice", "Pr&actice...",   "Ctrl+F5",              "Play a part of the tune in a loop, at any speed"},
    {"stripCheck",    "&Check the Tune", "",                    "List what is wrong with the tune"},
    {"stripOrder",    "&Playing Order", "",                     "Show the order in which the measures are played"},
    {"stripLook",     "Engraved &Look", "",                     "Thin strings and thick beams, as in printed music: on the screen, on paper and in copies"},
    {"stripManual",   "&Manual",        "F11",                  "Open the manual"},
    {"stripKeys",     "&Keys",          "",                     "Show all keys"},
};

constexpr struct {
    const char* Keys;
    const char* Meaning;
} kStaff[] = {
    {"0 to 9",                "Fret number"},
    {"x",                     "Muted string"},
    {"^",                     "Tie to the next note"},
    {"-",                     "Hammer-on or pull-off between two frets"},
    {"=",                     "Slide between two frets"},
    {"> <",                   "Bend, release"},
    {"/",                     "Rhythm slash"},
    {"( )",                   "Ghost note"},
    {"+ . *",                 "Change the note value; with a dot; to a triplet"},
    {"Enter",                 "Finish the note; on Next, go to the next measure"},
    {"Up, Down",              "Go to the next string"},
    {"Left, Right",           "Go to the previous or next note"},
    {"Backspace",             "Take back what was typed last, at the end of the tune"},
    {"Delete",                "Empty the string under the cursor"},
    {"Page Up, Page Down",    "Scroll the page"},
    {"Tab",                   "Go to the next control"},
    {"Alt and a letter",      "Open the menu that has the letter underlined; Alt+R opens More"},
};
// clang-format on

std::string WithoutMark(std::string caption)
{
    std::erase(caption, '&');
    return caption;
}

KeyGroup GroupOf(const Menu& menu)
{
    KeyGroup group{WithoutMark(menu.Caption), {}};
    for (const MenuEntry& entry : menu.Entries)
        if (entry.Name && *entry.Shortcut != '\0')
            group.Lines.push_back({entry.Shortcut, entry.Hint});
    return group;
}

}  // namespace

std::span<const StripCommand> StripCommands()
{
    return kStrip;
}

const StripCommand& FindStripCommand(std::string_view name)
{
    return *std::ranges::find(kStrip, name, &StripCommand::Name);
}

std::vector<KeyGroup> KeySheet()
{
    std::vector<KeyGroup> sheet{
        {"Staff", {}}
    };
    for (const auto& line : kStaff)
        sheet.front().Lines.push_back({line.Keys, line.Meaning});
    for (const Menu& menu : Menus())
        if (KeyGroup group = GroupOf(menu); !group.Lines.empty())
            sheet.push_back(std::move(group));
    KeyGroup strip{"Beside the menus", {}};
    for (const StripCommand& command : kStrip)
        if (*command.Shortcuts != '\0')
            strip.Lines.push_back({command.Shortcuts, command.Hint});
    sheet.push_back(std::move(strip));
    return sheet;
}

}  // namespace quillon
