// Boxes and dialogs: everything that asks or tells the user something and waits.

#pragma once

#include <optional>
#include <string>

namespace quillon {

enum class Icon { None, Stop, Question, Information };

struct FontChoice {
    std::string Name;
    float Size = 0;  // points
};

/// Texts are Windows-1252, with the line ends that the box should show; paths are the system's.
class Dialogs {
public:
    virtual ~Dialogs() = default;

    virtual void Message(Icon icon, const std::string& title, const std::string& text) = 0;

    /// Yes or No, with a question icon.
    virtual bool Ask(const std::string& title, const std::string& text) = 0;

    /// A one-line answer, nothing if cancelled.
    virtual std::optional<std::string> Prompt(const std::string& prompt,
                                              const std::string& offered) = 0;

    /// `filter` is "Label|pattern|Label|pattern"; nothing if cancelled.
    virtual std::optional<std::string> OpenFile(const std::string& filter,
                                                const std::string& defaultExtension) = 0;

    /// Asks before a file is overwritten.
    virtual std::optional<std::string> SaveFile(const std::string& initialName,
                                                const std::string& filter,
                                                const std::string& defaultExtension) = 0;

    virtual std::optional<FontChoice> ChooseFont(const FontChoice& current) = 0;
};

}  // namespace quillon
