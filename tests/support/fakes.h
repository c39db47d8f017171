// The platform as the tests see it: answers are scripted, effects are written down.

#pragma once

#include "notation/drawing.h"
#include "platform/platform.h"

#include <deque>
#include <map>
#include <set>
#include <utility>

namespace quillon {

/// Gives queued answers; with none left, everything is cancelled and a question gets No.
class FakeDialogs : public Dialogs {
public:
    using Answer = std::optional<std::string>;

    struct Box {
        quillon::Icon Icon;
        std::string Title;
        std::string Text;
    };

    std::deque<Answer> Files;
    std::deque<Answer> Prompts;
    std::deque<bool> YesNo;
    std::deque<std::optional<FontChoice>> Fonts;

    std::vector<Box> Shown;                // boxes, questions too
    std::vector<std::string> PromptTexts;  // "prompt|offered"
    std::vector<std::string> FileDialogs;  // "open|filter|ext" and "save|name|filter|ext"
    std::vector<FontChoice> FontDialogs;   // what each offered

    void Message(Icon icon, const std::string& title, const std::string& text) override
    {
        Shown.push_back({icon, title, text});
    }

    bool Ask(const std::string& title, const std::string& text) override
    {
        Shown.push_back({Icon::Question, title, text});
        return Next(YesNo, false);
    }

    Answer Prompt(const std::string& prompt, const std::string& offered) override
    {
        PromptTexts.push_back(prompt + "|" + offered);
        return Next(Prompts, Answer());
    }

    Answer OpenFile(const std::string& filter, const std::string& extension) override
    {
        FileDialogs.push_back("open|" + filter + "|" + extension);
        return Next(Files, Answer());
    }

    Answer SaveFile(const std::string& name, const std::string& filter,
                    const std::string& extension) override
    {
        FileDialogs.push_back("save|" + name + "|" + filter + "|" + extension);
        return Next(Files, Answer());
    }

    std::optional<FontChoice> ChooseFont(const FontChoice& current) override
    {
        FontDialogs.push_back(current);
        return Next(Fonts, std::optional<FontChoice>());
    }

private:
    template <typename T> static T Next(std::deque<T>& answers, T otherwise)
    {
        if (answers.empty())
            return otherwise;
        T answer = std::move(answers.front());
        answers.pop_front();
        return answer;
    }
};

class FakeSettings : public Settings {
public:
    std::map<std::pair<std::string, std::string>, std::string> Values;  // by section and key
    std::vector<std::string> Written;                                   // "section/key=value"

    std::string Get(const std::string& section, const std::string& key,
                    const std::string& byDefault) const override
    {
        const auto found = Values.find({section, key});
        return found == Values.end() ? byDefault : found->second;
    }

    void Set(const std::string& section, const std::string& key, const std::string& value) override
    {
        Values[{section, key}] = value;
        Written.push_back(section + "/" + key + "=" + value);
    }
};

class FakeSystem : public System {
public:
    std::string Folder = ".";
    std::set<std::string> MissingFonts;
    std::vector<Form> Forms;  // shown so far
    int Ends = 0;
    bool WaitCursor = false;
    bool HasWaited = false;  // has shown that cursor before

    std::string ProgramFolder() const override { return Folder; }
    bool HasFont(const std::string& name) const override { return !MissingFonts.contains(name); }
    void Show(Form form) override { Forms.push_back(form); }
    void End() override { ++Ends; }
    void SetWaitCursor(bool on) override
    {
        WaitCursor = on;
        HasWaited = HasWaited || on;
    }
};

class FakePrinter : public Printer {
public:
    std::deque<std::optional<int>> Copies;  // answers of the dialog; cancelled when empty
    int OfferedCopies = 1;
    double PaperWidth = 12240;
    double PaperHeight = 15840;
    std::vector<std::vector<Drawing>> Jobs;
    std::vector<std::string> JobNames;

    std::optional<int> ShowDialog(const std::string& jobName) override
    {
        JobNames.push_back(jobName);
        if (Copies.empty())
            return std::nullopt;
        const std::optional<int> answer = Copies.front();
        Copies.pop_front();
        return answer;
    }

    void SetCopies(int copies) override { OfferedCopies = copies; }
    double Width() const override { return PaperWidth; }
    double Height() const override { return PaperHeight; }

    void Print(const std::vector<Drawing>& pages) override { Jobs.push_back(pages); }
};

class FakeClipboard : public Clipboard {
public:
    struct Cut {
        Drawing Page;
        PagePart Part;
        double Width, Height;  // pixels
    };

    double TwipsPerPixel = 15;
    std::vector<Cut> Pictures;

    double TwipsPerPixelX() const override { return TwipsPerPixel; }
    double TwipsPerPixelY() const override { return TwipsPerPixel; }

    void SetPicture(const Drawing& page, const PagePart& part, double width, double height) override
    {
        Pictures.push_back({page, part, width, height});
    }
};

class FakePlayer : public Player {
public:
    bool Works = true;
    std::string Loaded;              // path of the tune, "" when there is none
    std::string Midi;                // bytes of the tune that was loaded as such
    int Tick = 0;                    // that is heard
    std::vector<std::string> Calls;  // in order

    bool Init() override
    {
        Calls.push_back("Init");
        return Works;
    }

    std::string Trouble() const override { return "There is no sound."; }

    void Close() override
    {
        Calls.push_back("Close");
        Loaded.clear();
    }

    void Load(const std::string& path) override
    {
        Calls.push_back("Load");
        Loaded = path;
    }

    void LoadBytes(const std::string& midi) override
    {
        Calls.push_back("LoadBytes");
        Midi = midi;
    }

    bool HasTune() const override { return !Loaded.empty(); }
    int TickHeard() const override { return Tick; }
    void Play(bool forEver) override { Calls.push_back(forEver ? "Play for ever" : "Play"); }
    void Stop() override { Calls.push_back("Stop"); }

    void SetTempoFactor(double factor) override
    {
        Calls.push_back("SetTempoFactor " + std::to_string(factor));
    }

    void SetVolume(int hundredthsOfDecibel) override
    {
        Calls.push_back("SetVolume " + std::to_string(hundredthsOfDecibel));
    }
};

class FakeMidiPorts : public MidiPorts {
public:
    std::vector<std::string> Names;

    int Count() const override { return static_cast<int>(Names.size()); }

    std::string Name(int index) const override
    {
        return index == -1 ? "Default" : Names.at(static_cast<std::size_t>(index));
    }
};

}  // namespace quillon
