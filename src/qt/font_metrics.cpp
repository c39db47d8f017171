#include "qt/font_metrics.h"

#include "notation/signs.h"
#include "qt/text.h"

#include <QCoreApplication>
#include <QFile>
#include <QFontDatabase>
#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace quillon {

void LoadNotationFont()
{
    const QString bin = QCoreApplication::applicationDirPath();
    for (const char* folder : {"/../share/quillon/fonts", "/../fonts"}) {
        const QString file = bin + folder + "/TAB.TTF";
        if (QFile::exists(file) && QFontDatabase::addApplicationFont(file) >= 0)
            return;
    }
}

bool FontAvailable(const QString& name)
{
    if (QFontDatabase::hasFamily(name))
        return true;
    return name.compare("Arial", Qt::CaseInsensitive) == 0 &&
           QFontDatabase::hasFamily("Liberation Sans");
}

QFont FontInTwips(const Typeface& typeface)
{
    const QString name = ToUnicode(typeface.Name);
    const double twips = std::isfinite(typeface.Size) ? typeface.Size * kTwips : 1;
    QFont font(name);
    font.setPixelSize(static_cast<int>(std::lround(std::clamp(twips, 1.0, 20000.0))));
    font.setHintingPreference(QFont::PreferNoHinting);
    // The signs have one weight, and a character that is no sign shows nothing else's letter.
    if (name.compare(kTabFont, Qt::CaseInsensitive) == 0)
        font.setStyleStrategy(QFont::NoFontMerging);
    else
        font.setBold(typeface.Bold);
    return font;
}

double FontMetrics::Width(std::string_view text, const Typeface& font) const
{
    return QFontMetricsF(FontInTwips(font)).horizontalAdvance(ToUnicode(text)) / kTwips;
}

double FontMetrics::LineHeight(const Typeface& font) const
{
    return QFontMetricsF(FontInTwips(font)).height() / kTwips;
}

}  // namespace quillon
