#include "shell/key_sheet.h"

#include "shell/menus.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>

namespace quillon {
namespace {

std::vector<std::string> Keys(std::string text)
{
    std::vector<std::string> keys;
    std::istringstream stream(text);
    for (std::string key; std::getline(stream >> std::ws, key, ',');)
        keys.push_back(key);
    return keys;
}

TEST(KeySheet, HasTheKeysOfEveryMenu)
{
    std::set<std::string> keys;
    for (const KeyGroup& group : KeySheet())
        for (const KeyLine& line : group.Lines)
            keys.insert(line.Keys);
    for (const Menu& menu : Menus())
        for (const MenuEntry& entry : menu.Entries)
            if (entry.Name && *entry.Shortcut != '\0') {
                EXPECT_TRUE(keys.contains(entry.Shortcut)) << entry.Name;
            }
}

TEST(KeySheet, EndsWithTheKeysOfTheStrip)
{
    const KeyGroup strip = KeySheet().back();
    EXPECT_EQ(strip.Title, "Beside the menus");
    std::vector<std::string> expected;
    for (const StripCommand& command : StripCommands())
        if (*command.Shortcuts != '\0')
            expected.push_back(command.Shortcuts);
    std::vector<std::string> keys;
    for (const KeyLine& line : strip.Lines)
        keys.push_back(line.Keys);
    EXPECT_EQ(keys, expected);
}

TEST(KeySheet, SaysWhatEachKeyDoesWithoutMarksForLetters)
{
    for (const KeyGroup& group : KeySheet()) {
        EXPECT_FALSE(group.Lines.empty()) << group.Title;
        EXPECT_EQ(group.Title.find('&'), std::string::npos) << group.Title;
        for (const KeyLine& line : group.Lines) {
            EXPECT_FALSE(line.Meaning.empty()) << line.Keys;
            EXPECT_EQ(line.Meaning.find('&'), std::string::npos) << line.Meaning;
        }
    }
}

TEST(StripCommands, HaveKeysThatNoMenuUses)
{
    for (const StripCommand& command : StripCommands())
        for (const std::string& key : Keys(command.Shortcuts))
            EXPECT_EQ(FindShortcut(key), nullptr) << key;
}

TEST(StripCommands, MoreHasALetterThatNoMenuUses)
{
    for (const Menu& menu : Menus())
        EXPECT_EQ(std::string(menu.Caption).find("&R"), std::string::npos) << menu.Caption;
}

}  // namespace
}  // namespace quillon
