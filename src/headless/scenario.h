// The scripted window: plays a script against the editor's own handlers, without a toolkit. Keys
// and clicks reach the same handlers as in the window.

#pragma once

#include "headless/script.h"
#include "headless/scripted_platform.h"
#include "history/history.h"

#include <string>
#include <string_view>

namespace quillon {

class Scenario : public Script {
public:
    /// The program has started without a command line. Tuning files are in `programFolder`.
    Scenario(std::string programFolder, std::ostream& output);

    MainWin& Window() { return win; }
    History* Steps() override { return &history; }

private:
    void Menu(const MenuEntry& entry) override;
    void Press(std::string_view name) override;
    void Key(const std::string& name) override;
    void Type(const std::string& text) override;
    void Toolbar(int button) override;
    void Click(double x, double y) override;
    void Tick() override;
    void Copy(const std::string& from, const std::string& to) override;
    bool Ended() const override { return platform.system.Ended; }
    template <typename Handler>
    void Event(Input input, const std::string& name, const Handler& handler);
    void PressButton(Control button);
    void SendKey(int keyCode, char character);
    void KeyInBracketBox(int keyCode, char character);
    void KeyInCopyBox(int keyCode, char character);
    void EditText(std::string& text, int keyCode, char character);

    FixedTextMetrics metrics;
    ScriptedPlatform platform;
    MainWin win;
    History history;
};

}  // namespace quillon
