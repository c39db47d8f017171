// A tune to be laid out, and the pages it comes out on, as the lines of their drawing logs.

#pragma once

#include "notation/page_layout.h"
#include "notation/print_pass.h"
#include "support/faults.h"
#include "support/tunes.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

using LogLines = std::vector<std::string>;

inline LogLines LinesOf(const Drawing& drawing)
{
    std::istringstream log(drawing.Log());
    LogLines lines;
    for (std::string line; std::getline(log, line);)
        if (line != "clear")
            lines.push_back(line);
    return lines;
}

/// The lines that begin and end in these texts.
inline LogLines Only(const LogLines& lines, std::string_view begin, std::string_view end = {})
{
    LogLines found;
    std::copy_if(
        lines.begin(), lines.end(), std::back_inserter(found),
        [&](const std::string& line) { return line.starts_with(begin) && line.ends_with(end); });
    return found;
}

inline bool Has(const LogLines& lines, std::string_view line)
{
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

inline std::string Joined(const LogLines& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    return text;
}

/// A tune without title, on six strings: the first line's staff begins at y 765.
class PageDesk : public testing::Test {
protected:
    PageDesk() { tune[0].ChordText = " "; }

    /// Lays the tune out; the log of page `index`.
    LogLines Screen(int index = 0)
    {
        tooWide = LayOutPages(tune, page, pages);
        return LinesOf(pages.Page(index).Surface.Picture());
    }

    /// Prints the tune; the log of page `index`.
    LogLines Paper(std::size_t index = 0, double width = kPageWidth)
    {
        const PrintedTune printed = RunPrintPass(tune, page, metrics, width, kPageHeight);
        tooWide = printed.TooWideMeasure;
        paperPages = printed.Pages.size();
        return LinesOf(printed.Pages.at(index));
    }

    /// A measure of quarters on string 1, fret 3.
    NoteRecord& AddQuarters(int count, const std::string& fret = "3")
    {
        NoteRecord& head = AddMeasure(tune);
        for (int i = 0; i < count; ++i)
            AddNote(tune, kQuarter, 1, fret);
        return head;
    }

    Tune tune;
    PageSettings page;
    FixedTextMetrics metrics;
    PageView pages{metrics};
    std::optional<int> tooWide;
    std::size_t paperPages = 0;
};

}  // namespace quillon
