// Tells what journals hold. Each line on standard input is the path of one; the answer is a line of
// JSON. Tunes are told as the bytes of their files, in hexadecimal digits.

#include "history/journal_file.h"
#include "shell/rescued.h"
#include "store/growing_file.h"
#include "store/staged_file.h"
#include "store/tune_file.h"

#include <iostream>
#include <string>

using namespace quillon;

namespace {

std::string Hex(const std::string& bytes)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string digits;
    for (const char byte : bytes) {
        digits += kDigits[static_cast<unsigned char>(byte) / 16];
        digits += kDigits[static_cast<unsigned char>(byte) % 16];
    }
    return digits;
}

/// The members of a JSON object.
class Members {
public:
    void Add(std::string_view name, std::string_view value)
    {
        text += text.empty() ? "\"" : ", \"";
        text += name;
        text += "\": ";
        text += value;
    }

    void AddText(std::string_view name, const std::string& value) { Add(name, '"' + value + '"'); }
    void AddNumber(std::string_view name, auto value) { Add(name, std::to_string(value)); }
    void AddFlag(std::string_view name, bool value) { Add(name, value ? "true" : "false"); }

    std::string Object() const { return '{' + text + '}'; }

private:
    std::string text;
};

std::string NameOf(std::optional<Ending> ending)
{
    if (!ending)
        return "";
    return *ending == Ending::Lost ? "lost" : "discarded";
}

std::string Told(const std::string& path)
{
    const bool isLocked = FileLock(path).IsTaken();
    const JournalContents contents = ReadJournal(ReadFileBytes(path));
    Members members;
    members.AddFlag("locked", isLocked);
    members.AddNumber("entries", contents.Reached.Entries);
    members.AddText("ended", NameOf(contents.Ended));
    members.AddText("trouble", contents.Trouble);
    if (const auto& run = contents.Run) {
        members.AddText("tune", Hex(RescueBytes(run->Last().Music, run->Last().Form)));
        members.AddFlag("changed", run->Changed());
        members.AddNumber("undo", run->UndoCount());
        members.AddNumber("redo", run->RedoCount());
    }
    const Saving saved = contents.Saved.value_or(Saving());
    members.AddText("saved_path", Hex(saved.Path));
    members.AddText("saved", Hex(saved.Bytes));
    return members.Object();
}

}  // namespace

int main()
{
    for (std::string path; std::getline(std::cin, path);) {
        try {
            std::cout << Told(path) << std::endl;
        } catch (const std::exception& error) {
            Members members;
            members.AddText("trouble", error.what());
            std::cout << members.Object() << std::endl;
        }
    }
    return 0;
}
