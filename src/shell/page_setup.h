// frmPgSetup, "Page Setup": title and credits, the fonts, margins and spacing.
//
// Title and credits belong to the tune and go into its header, margins belong to the user and go
// into the settings, fonts go into both. Nothing here counts as an edit: `Saved` stays, and the
// pages stay as they are until the next refresh.

#pragma once

#include "platform/platform.h"
#include "store/page_settings.h"
#include "store/tune.h"

#include <functional>
#include <string>

namespace quillon {

/// The form while it is open; each opening makes a new one. Texts of margins are in inches.
class PageSetup {
public:
    enum class Box { Text1, Text2, Text3, cmdPgExit };

    /// All must outlive the form. `returnToMainForm` is called when it goes away.
    PageSetup(Tune& theTune, PageSettings& pageSettings, const Platform& thePlatform,
              std::function<void()> returnToMainForm);

    std::string Text1;  // title
    std::string Text2;  // credits
    std::string Text3;
    std::string txtLeft;
    std::string txtRight;
    std::string txtTop;
    std::string txtStaveSpace;
    bool chkJustify = false;  // never shows the setting that is in force
    std::string lblTitleFontName;
    std::string lblTitleFontSize;
    std::string LblBodyFontName;
    std::string lblBodyFontSize;
    Box Focus = Box::Text1;  // as far as this form moves it
    bool Loaded = true;      // false once it is closed

    /// The form has become the active one.
    void Activate();

    /// The Enter key in one of the three text boxes.
    void Enter();

    /// The box has been ticked or cleared.
    void chkJustifyChange();

    void cmdTitleFont();
    void cmdBodyFont();

    /// Stores the texts and the margins, then unloads the form.
    void cmdPgExit();

    /// The form goes away, by cmdPgExit or by the system: stores fonts and margins, and gives the
    /// main form back. Edits of the three texts are dropped unless cmdPgExit stored them.
    void Unload();

private:
    void ShowFonts();

    Tune& tune;
    PageSettings& page;
    Platform platform;
    std::function<void()> giveBack;
};

}  // namespace quillon
