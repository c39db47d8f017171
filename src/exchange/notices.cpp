#include "exchange/notices.h"

#include <algorithm>

namespace quillon {

void Notices::Say(std::string sentence)
{
    if (std::ranges::find(notices, sentence, &Notice::One) == notices.end())
        notices.push_back({std::move(sentence), "", 1});
}

void Notices::Count(std::string_view one, std::string_view many, int count)
{
    if (count == 0)
        return;
    const auto found = std::ranges::find(notices, one, &Notice::One);
    if (found != notices.end())
        found->Count += count;
    else
        notices.push_back({std::string(one), std::string(many), count});
}

std::vector<std::string> Notices::Lines() const
{
    std::vector<std::string> lines;
    lines.reserve(notices.size());
    for (const Notice& notice : notices)
        lines.push_back(notice.Count == 1 ? notice.One
                                          : std::to_string(notice.Count) + " " + notice.Many);
    return lines;
}

}  // namespace quillon
