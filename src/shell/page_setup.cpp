#include "shell/page_setup.h"

#include "store/numbers.h"

#include <utility>

namespace quillon {

PageSetup::PageSetup(Tune& theTune, PageSettings& pageSettings, const Platform& thePlatform,
                     std::function<void()> returnToMainForm)
    : txtLeft(NumberText(pageSettings.PageLeft)), txtRight(NumberText(pageSettings.PageRight)),
      txtTop(NumberText(pageSettings.PageTop)), txtStaveSpace(NumberText(pageSettings.StaveSpace)),
      tune(theTune), page(pageSettings), platform(thePlatform),
      giveBack(std::move(returnToMainForm))
{
}

void PageSetup::Activate()
{
    Text1 = tune[0].ChordText;
    Text2 = tune[0].Slot(1);
    Text3 = tune[0].Slot(2);
    ShowFonts();
    Focus = Box::Text1;
}

void PageSetup::ShowFonts()
{
    LblBodyFontName = page.BodyFontName;
    lblBodyFontSize = NumberText(page.BodyFontSize);
    lblTitleFontName = page.TitleFontName;
    lblTitleFontSize = NumberText(page.TitleFontSize);
}

void PageSetup::Enter()
{
    Focus = Focus == Box::Text1 ? Box::Text2 : Focus == Box::Text2 ? Box::Text3 : Box::cmdPgExit;
}

void PageSetup::chkJustifyChange()
{
    page.TitleCentered = chkJustify;
}

void PageSetup::cmdBodyFont()
{
    const auto font = platform.dialogs.ChooseFont({page.BodyFontName, page.BodyFontSize});
    if (!font)
        return;
    page.BodyFontName = font->Name;
    page.BodyFontSize = font->Size;
    if (page.BodyFontSize != 8 && page.BodyFontSize != 10 && page.BodyFontSize != 12) {
        page.BodyFontSize = 10;
        platform.dialogs.Message(Icon::None, "Font Size Error",
                                 "Quillon only allows a body font size of 8, 10, or 12.\r\n"
                                 " Defaulting to font size of 10");
    }
    tune[0].Slot(6) = page.BodyFontName;
    tune[0].Slot(5) = NumberText(page.BodyFontSize);
    ShowFonts();
}

void PageSetup::cmdTitleFont()
{
    const auto font = platform.dialogs.ChooseFont({page.TitleFontName, page.TitleFontSize});
    if (!font)
        return;
    page.TitleFontName = font->Name;
    page.TitleFontSize = font->Size;
    tune[0].Slot(3) = page.TitleFontName;
    tune[0].NoteCode = Round(page.TitleFontSize);
    ShowFonts();
}

void PageSetup::cmdPgExit()
{
    NoteRecord& header = tune[0];
    header.ChordText = Text1;
    header.Slot(1) = Text2;
    header.Slot(2) = Text3;
    page.PageTop = Single(Val(txtTop));
    page.PageLeft = Single(Val(txtLeft));
    page.PageRight = Single(Val(txtRight));
    page.StaveSpace = Single(Val(txtStaveSpace));
    Settings& settings = platform.settings;
    settings.Set(kPrefs, "StaveSpace", NumberText(page.StaveSpace));
    settings.Set(kPrefs, "PageTop", NumberText(page.PageTop));
    settings.Set(kPrefs, "PageRight", NumberText(page.PageRight));
    settings.Set(kPrefs, "PageLeft", NumberText(page.PageLeft));
    Unload();
}

void PageSetup::Unload()
{
    Loaded = false;
    Settings& settings = platform.settings;
    const auto store = [&](const char* key, const std::string& text, float& value) {
        settings.Set(kPrefs, key, text);
        value = Single(Val(text));
    };
    store("PageLeft", txtLeft, page.PageLeft);
    store("PageRight", txtRight, page.PageRight);
    store("PageTop", txtTop, page.PageTop);
    store("StaveSpace", txtStaveSpace, page.StaveSpace);
    // The title's size is read back from another key: only a tune's header keeps it.
    settings.Set(kPrefs, "TitleFont", page.TitleFontName);
    settings.Set(kPrefs, "TFontSize", NumberText(page.TitleFontSize));
    settings.Set(kPrefs, "FontName", page.BodyFontName);
    settings.Set(kPrefs, "FontSize", NumberText(page.BodyFontSize));
    page.TitleCentered = chkJustify;
    settings.Set(kPrefs, "TitleCentered", page.TitleCentered ? "True" : "False");
    giveBack();
}

}  // namespace quillon
