// What a conversion could not carry over, for the player to read.

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

class Notices {
public:
    /// A sentence, said once however often it is added.
    void Say(std::string sentence);

    /// Things that are counted: `one` says it of a single thing ("A grace note is left out."),
    /// `many` follows the number ("grace notes are left out.").
    void Count(std::string_view one, std::string_view many, int count = 1);

    /// In the order in which each was first added.
    std::vector<std::string> Lines() const;

private:
    struct Notice {
        std::string One;
        std::string Many;
        int Count;
    };

    std::vector<Notice> notices;
};

}  // namespace quillon
