#include "history/journal_file.h"

#include "history/bytes.h"
#include "history/entries.h"

#include <array>
#include <limits>

namespace quillon {

namespace {

constexpr std::size_t kFrameHead = 8;  // length and checksum, the low byte first

// The kinds of entries that are not about the timeline. They appear in journals.
constexpr unsigned kSaving = 101;
constexpr unsigned kEnding = 102;
constexpr unsigned kLink = 103;

/// The CRC-32 of Ethernet and ZIP, a byte at a time.
constexpr std::array<std::uint32_t, 256> kCrcTable = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit)
            value = value >> 1 ^ (value & 1 ? 0xEDB88320U : 0);
        table[i] = value;
    }
    return table;
}();

std::uint32_t Crc(std::string_view bytes, std::uint32_t before)
{
    std::uint32_t crc = ~before;
    for (char byte : bytes)
        crc = crc >> 8 ^ kCrcTable[(crc ^ static_cast<unsigned char>(byte)) & 255];
    return ~crc;
}

std::string FourBytes(std::uint32_t value)
{
    std::string bytes;
    for (int i = 0; i < 4; ++i, value >>= 8)
        bytes += static_cast<char>(value & 255);
    return bytes;
}

std::uint32_t NumberFrom(std::string_view fourBytes)
{
    std::uint32_t value = 0;
    for (std::size_t i = 4; i-- > 0;)
        value = value << 8 | static_cast<unsigned char>(fourBytes[i]);
    return value;
}

/// Reads frames until one is not whole.
class Unframer {
public:
    explicit Unframer(std::string_view theBytes) : bytes(theBytes) {}

    std::optional<std::string_view> Next()
    {
        if (bytes.size() < kFrameHead)
            return {};
        const std::string_view length = bytes.substr(0, 4);
        const std::uint32_t told = NumberFrom(bytes.substr(4));
        const std::string_view entry = bytes.substr(kFrameHead, NumberFrom(length));
        if (entry.size() != NumberFrom(length) || Crc(entry, Crc(length, check)) != told)
            return {};
        check = told;
        bytes.remove_prefix(kFrameHead + entry.size());
        return entry;
    }

    void LinkTo(std::uint32_t otherCheck) { check = otherCheck; }
    bool AtEnd() const { return bytes.empty(); }
    std::uint32_t Check() const { return check; }

private:
    std::string_view bytes;
    std::uint32_t check = 0;
};

/// Takes in an entry that is not about the timeline. False if it is.
bool TakeOther(std::string_view entry, Unframer& frames, JournalContents& contents)
{
    ByteReader bytes(entry);
    switch (bytes.Byte()) {
    case kSaving: {
        const std::string_view path = bytes.Text();
        contents.Saved = Saving{std::string(path), std::string(bytes.Text())};
        return true;
    }
    case kEnding:
        contents.Ended = bytes.Byte() == 0 ? Ending::Lost : Ending::Discarded;
        return true;
    case kLink:
        frames.LinkTo(static_cast<std::uint32_t>(bytes.Unsigned()));
        contents.Reached.Entries = bytes.Unsigned() - 1;
        contents.Reached.Forgotten = bytes.Integer(0, std::numeric_limits<int>::max());
        return true;
    default:
        return false;
    }
}

void Take(std::string_view entry, Unframer& frames, JournalContents& contents)
{
    contents.Ended.reset();
    if (!contents.Run)
        contents.Run = BeginningFrom(entry);
    else if (!TakeOther(entry, frames, contents))
        Replay(entry, *contents.Run);
    ++contents.Reached.Entries;
}

/// Undoes and redoes all, so that nobody who does it later meets a delta that does not fit.
void TryAllSteps(const Timeline& run)
{
    run.MomentAfter(0);
    run.MomentAfter(run.UndoCount() + run.RedoCount());
}

/// The frames after it follow as in another file, of which the first steps are forgotten.
std::string LinkTo(const Progress& progress)
{
    ByteWriter bytes;
    bytes.Byte(kLink);
    bytes.Unsigned(progress.Check);
    bytes.Unsigned(progress.Entries);
    bytes.Signed(progress.Forgotten);
    return bytes.Take();
}

/// The first step to keep. What was undone is always kept.
int FirstOf(StepsToKeep kept, const Timeline& run)
{
    std::size_t size = 0;
    int first = run.UndoCount() + run.RedoCount() + 1;
    for (; first > 1; --first) {
        const Step& step = run.At(first - 1);
        size += step.Deltas.size() + step.Detour.size() + step.Written.size() + step.Name.size();
        if (size > kept.Bytes && first <= run.UndoCount() + 1 - kept.Least)
            break;
    }
    return first;
}

std::string TroubleWith(std::string_view bytes)
{
    if (bytes.empty())
        return "it is empty";
    if (bytes.starts_with(kJournalMark.substr(0, kJournalMark.find('1'))))
        return "it was written by another version of Quillon";
    return "it is damaged from its beginning";
}

}  // namespace

std::string EntryOf(const Saving& saving)
{
    ByteWriter bytes;
    bytes.Byte(kSaving);
    bytes.Text(saving.Path);
    bytes.Text(saving.Bytes);
    return bytes.Take();
}

std::string EntryOf(Ending ending)
{
    ByteWriter bytes;
    bytes.Byte(kEnding);
    bytes.Byte(ending == Ending::Lost ? 0 : 1);
    return bytes.Take();
}

JournalContents ReadJournal(std::string_view bytes)
{
    JournalContents contents;
    if (!bytes.starts_with(kJournalMark)) {
        contents.Trouble = TroubleWith(bytes);
        return contents;
    }
    Unframer frames(bytes.substr(kJournalMark.size()));
    try {
        while (const auto entry = frames.Next())
            Take(*entry, frames, contents);
        if (contents.Run)
            TryAllSteps(*contents.Run);
    } catch (const DamagedDelta&) {
        contents.Run.reset();  // its checksums are right, so this program has not written it
    }
    contents.Reached.Check = frames.Check();
    if (!contents.Run)
        contents.Trouble = "it is damaged from its beginning";
    else if (!frames.AtEnd())
        contents.Trouble = "its end is damaged";
    return contents;
}

std::string Frame(std::string_view entry, Progress& progress)
{
    const std::string length = FourBytes(static_cast<std::uint32_t>(entry.size()));
    progress.Check = Crc(entry, Crc(length, progress.Check));
    ++progress.Entries;
    std::string frame = length + FourBytes(progress.Check);
    frame += entry;
    return frame;
}

std::string Summary(const Timeline& run, const std::optional<Saving>& saved, StepsToKeep kept,
                    Progress& progress)
{
    const int dropped = FirstOf(kept, run) - 1;
    progress.Forgotten += dropped;
    std::vector<std::string> entries = EntriesOf(run, dropped);
    if (saved)
        entries.push_back(EntryOf(*saved));
    entries.push_back(LinkTo(progress));
    Progress own;
    std::string bytes(kJournalMark);
    for (const std::string& entry : entries)
        bytes += Frame(entry, own);
    return bytes;
}

}  // namespace quillon
