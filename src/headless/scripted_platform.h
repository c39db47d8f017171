// A platform without a screen: dialogs answered from queues, settings in memory, nothing printed
// or played. It serves the scripted window, the export command and tests.

#pragma once

#include "notation/page_view.h"
#include "platform/platform.h"

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillon {

struct ShownBox {
    quillon::Icon Icon;
    std::string Title;
    std::string Text;
};

/// A dialog, prompt or question without a queued answer is cancelled; a question gets No.
class ScriptedDialogs : public Dialogs {
public:
    std::deque<std::optional<std::string>> Paths;    // nothing: cancel
    std::deque<std::optional<std::string>> Prompts;  // nothing: cancel
    std::deque<bool> Answers;
    std::deque<FontChoice> Fonts;
    std::vector<ShownBox> Shown;

    void Message(Icon icon, const std::string& title, const std::string& text) override;
    bool Ask(const std::string& title, const std::string& text) override;
    std::optional<std::string> Prompt(const std::string& prompt,
                                      const std::string& offered) override;
    std::optional<std::string> OpenFile(const std::string& filter,
                                        const std::string& defaultExtension) override;
    std::optional<std::string> SaveFile(const std::string& initialName, const std::string& filter,
                                        const std::string& defaultExtension) override;
    std::optional<FontChoice> ChooseFont(const FontChoice& current) override;
};

class MemorySettings : public Settings {
public:
    std::string Get(const std::string& section, const std::string& key,
                    const std::string& byDefault) const override;
    void Set(const std::string& section, const std::string& key, const std::string& value) override;

    std::map<std::pair<std::string, std::string>, std::string> Values;
};

/// Tells whether a font can be selected.
using FontCheck = std::function<bool(const std::string&)>;

class ScriptedSystem : public System {
public:
    /// Without a check every font can be selected.
    explicit ScriptedSystem(std::string programFolder, FontCheck fontCheck = nullptr)
        : folder(std::move(programFolder)), hasFont(std::move(fontCheck))
    {
    }

    std::vector<Form> Forms;  // shown so far
    bool Ended = false;

    std::string ProgramFolder() const override { return folder; }
    bool HasFont(const std::string& name) const override { return !hasFont || hasFont(name); }
    void Show(Form form) override { Forms.push_back(form); }
    void End() override { Ended = true; }
    void SetWaitCursor(bool) override {}

private:
    std::string folder;
    FontCheck hasFont;
};

class NoPrinter : public Printer {
public:
    std::optional<int> ShowDialog(const std::string&) override { return std::nullopt; }
    void SetCopies(int) override {}
    double Width() const override { return kPageWidth; }
    double Height() const override { return kPageHeight; }
    void Print(const std::vector<Drawing>&) override {}
};

class NoClipboard : public Clipboard {
public:
    double TwipsPerPixelX() const override { return 15; }
    double TwipsPerPixelY() const override { return 15; }
    void SetPicture(const Drawing&, const PagePart&, double, double) override {}
};

class NoPlayer : public Player {
public:
    bool Init() override { return true; }
    std::string Trouble() const override { return {}; }
    void Close() override {}
    void Load(const std::string&) override {}
    void LoadBytes(const std::string&) override {}
    bool HasTune() const override { return false; }
    void Play(bool) override {}
    void Stop() override {}
    int TickHeard() const override { return 0; }
    void SetTempoFactor(double) override {}
    void SetVolume(int) override {}
};

class NoMidiPorts : public MidiPorts {
public:
    int Count() const override { return 0; }
    std::string Name(int) const override { return {}; }
};

/// All of the above; `get()` is what the core is made with.
struct ScriptedPlatform {
    explicit ScriptedPlatform(std::string programFolder, FontCheck hasFont = nullptr)
        : system(std::move(programFolder), std::move(hasFont))
    {
    }

    ScriptedDialogs dialogs;
    MemorySettings settings;
    ScriptedSystem system;
    NoPrinter printer;
    NoClipboard clipboard;
    NoPlayer player;
    NoMidiPorts midiPorts;

    Platform get() { return {dialogs, settings, system, printer, clipboard, player, midiPorts}; }
};

}  // namespace quillon
