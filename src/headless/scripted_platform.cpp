#include "headless/scripted_platform.h"

namespace quillon {

namespace {

template <typename Answer> Answer TakeFirst(std::deque<Answer>& queue, Answer byDefault)
{
    if (queue.empty())
        return byDefault;
    Answer answer = std::move(queue.front());
    queue.pop_front();
    return answer;
}

}  // namespace

void ScriptedDialogs::Message(Icon icon, const std::string& title, const std::string& text)
{
    Shown.push_back({icon, title, text});
}

bool ScriptedDialogs::Ask(const std::string& title, const std::string& text)
{
    Shown.push_back({Icon::Question, title, text});
    return TakeFirst(Answers, false);
}

std::optional<std::string> ScriptedDialogs::Prompt(const std::string&, const std::string&)
{
    return TakeFirst(Prompts, std::optional<std::string>());
}

std::optional<std::string> ScriptedDialogs::OpenFile(const std::string&, const std::string&)
{
    return TakeFirst(Paths, std::optional<std::string>());
}

std::optional<std::string> ScriptedDialogs::SaveFile(const std::string&, const std::string&,
                                                     const std::string&)
{
    return TakeFirst(Paths, std::optional<std::string>());
}

std::optional<FontChoice> ScriptedDialogs::ChooseFont(const FontChoice&)
{
    if (Fonts.empty())
        return std::nullopt;
    FontChoice choice = Fonts.front();
    Fonts.pop_front();
    return choice;
}

std::string MemorySettings::Get(const std::string& section, const std::string& key,
                                const std::string& byDefault) const
{
    const auto value = Values.find({section, key});
    return value == Values.end() ? byDefault : value->second;
}

void MemorySettings::Set(const std::string& section, const std::string& key,
                         const std::string& value)
{
    Values[{section, key}] = value;
}

}  // namespace quillon
