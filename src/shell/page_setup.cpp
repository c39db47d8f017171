#include "shell/page_setup.h"

namespace quillon {

PageSetup::PageSetup(MainWin& mainWin)
    : txtLeft(NumberText(mainWin.page.PageLeft)), txtRight(NumberText(mainWin.page.PageRight)),
      txtTop(NumberText(mainWin.page.PageTop)), txtStaveSpace(NumberText(mainWin.page.StaveSpace)),
      win(mainWin)
{
}

void PageSetup::Activate()
{
    Text1 = win.tune[0].ChordText;
    Text2 = win.tune[0].Slot(1);
    Text3 = win.tune[0].Slot(2);
    ShowFonts();
    Focus = Box::Text1;
}

void PageSetup::ShowFonts()
{
    LblBodyFontName = win.page.BodyFontName;
    lblBodyFontSize = NumberText(win.page.BodyFontSize);
    lblTitleFontName = win.page.TitleFontName;
    lblTitleFontSize = NumberText(win.page.TitleFontSize);
}

void PageSetup::Enter()
{
    Focus = Focus == Box::Text1 ? Box::Text2 : Focus == Box::Text2 ? Box::Text3 : Box::cmdPgExit;
}

void PageSetup::chkJustifyChange()
{
    win.page.TitleCentered = chkJustify;
}

void PageSetup::cmdBodyFont()
{
    PageSettings& page = win.page;
    const auto font = win.platform.dialogs.ChooseFont({page.BodyFontName, page.BodyFontSize});
    if (!font)
        return;
    page.BodyFontName = font->Name;
    page.BodyFontSize = font->Size;
    if (page.BodyFontSize != 8 && page.BodyFontSize != 10 && page.BodyFontSize != 12) {
        page.BodyFontSize = 10;
        win.platform.dialogs.Message(Icon::None, "Font Size Error",
                                     "Quillon only allows a body font size of 8, 10, or 12.\r\n"
                                     " Defaulting to font size of 10");
    }
    win.tune[0].Slot(6) = page.BodyFontName;
    win.tune[0].Slot(5) = NumberText(page.BodyFontSize);
    ShowFonts();
}

void PageSetup::cmdTitleFont()
{
    PageSettings& page = win.page;
    const auto font = win.platform.dialogs.ChooseFont({page.TitleFontName, page.TitleFontSize});
    if (!font)
        return;
    page.TitleFontName = font->Name;
    page.TitleFontSize = font->Size;
    win.tune[0].Slot(3) = page.TitleFontName;
    win.tune[0].NoteCode = Round(page.TitleFontSize);
    ShowFonts();
}

void PageSetup::cmdPgExit()
{
    NoteRecord& header = win.tune[0];
    header.ChordText = Text1;
    header.Slot(1) = Text2;
    header.Slot(2) = Text3;
    PageSettings& page = win.page;
    page.PageTop = Single(Val(txtTop));
    page.PageLeft = Single(Val(txtLeft));
    page.PageRight = Single(Val(txtRight));
    page.StaveSpace = Single(Val(txtStaveSpace));
    Settings& settings = win.platform.settings;
    settings.Set(kPrefs, "StaveSpace", NumberText(page.StaveSpace));
    settings.Set(kPrefs, "PageTop", NumberText(page.PageTop));
    settings.Set(kPrefs, "PageRight", NumberText(page.PageRight));
    settings.Set(kPrefs, "PageLeft", NumberText(page.PageLeft));
    Unload();
}

void PageSetup::Unload()
{
    Loaded = false;
    PageSettings& page = win.page;
    Settings& settings = win.platform.settings;
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
    win.form.FormEnabled = true;
    win.editor.SetFocus(Control::StaffBox);
}

}  // namespace quillon
