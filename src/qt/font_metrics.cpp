#include "qt/font_metrics.h"

#include "notation/symbols.h"
#include "qt/text.h"

#include <QCoreApplication>
#include <QFile>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>

namespace quillon {

namespace {

constexpr const char* kArial = "Arial";
constexpr const char* kServesForArial = "Liberation Sans";
constexpr std::size_t kLongText = 2000;  // characters, more than any line has
constexpr std::size_t kMostInks = 1000;  // kept; a tune has about fifty different figures

int SizeInTwips(const Typeface& typeface)
{
    const double twips = std::isfinite(typeface.Size) ? typeface.Size * kTwips : 1;
    return static_cast<int>(std::lround(std::clamp(twips, 1.0, 20000.0)));
}

/// The widths of single characters in twips, measured when they are first asked for.
class CharacterWidths {
public:
    explicit CharacterWidths(const QFont& font) : metrics(font) { widths.fill(-1); }

    double operator()(char byte)
    {
        double& width = widths[static_cast<unsigned char>(byte)];
        if (width < 0)
            width = metrics.horizontalAdvance(ToUnicode({&byte, 1}));
        return width;
    }

private:
    QFontMetricsF metrics;
    std::array<double, 256> widths;
};

}  // namespace

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
    return name.compare(kArial, Qt::CaseInsensitive) == 0 &&
           QFontDatabase::hasFamily(kServesForArial);
}

QString NameOfFont(const QString& family)
{
    return family == kServesForArial && !QFontDatabase::hasFamily(kArial) ? kArial : family;
}

QFont FontInTwips(const Typeface& typeface)
{
    const QString name = ToUnicode(typeface.Name);
    QFont font(name);
    font.setPixelSize(SizeInTwips(typeface));
    font.setHintingPreference(QFont::PreferNoHinting);
    // The signs have one weight, and a character that is no sign shows nothing else's letter.
    if (IsNotation(typeface))
        font.setStyleStrategy(QFont::NoFontMerging);
    else
        font.setBold(typeface.Bold);
    return font;
}

bool IsNotation(const Typeface& typeface)
{
    return ToUnicode(typeface.Name).compare(kTabFont, Qt::CaseInsensitive) == 0;
}

std::string_view Beginning(std::string_view text, const QFont& font, double width)
{
    if (text.size() <= kLongText)
        return text;
    CharacterWidths widthOf(font);
    std::size_t end = 0;
    for (double sum = 0; end < text.size() && sum < width; ++end)
        sum += widthOf(text[end]);
    return text.substr(0, std::max(end, kLongText));
}

double WidthInTwips(std::string_view text, const QFont& font)
{
    if (text.size() <= kLongText)
        return QFontMetricsF(font).horizontalAdvance(ToUnicode(text));
    CharacterWidths widthOf(font);
    double sum = 0;
    for (const char byte : text)
        sum += widthOf(byte);
    return sum;
}

double FontMetrics::Width(std::string_view text, const Typeface& font) const
{
    return WidthInTwips(text, FontInTwips(font)) / kTwips;
}

double FontMetrics::LineHeight(const Typeface& font) const
{
    return QFontMetricsF(FontInTwips(font)).height() / kTwips;
}

InkBox FontMetrics::Ink(std::string_view text, const Typeface& typeface) const
{
    const std::string shown(text.substr(0, kLongText));
    const InkKey key{shown, typeface.Name, SizeInTwips(typeface), typeface.Bold};
    if (const auto known = inks.find(key); known != inks.end())
        return known->second;
    const QFont font = FontInTwips(typeface);
    QPainterPath path;
    path.addText(0, QFontMetricsF(font).ascent(), font, ToUnicode(shown));
    const QRectF ink = path.boundingRect();
    if (inks.size() >= kMostInks)
        inks.clear();
    return inks[key] = {ink.left() / kTwips, ink.top() / kTwips, ink.right() / kTwips,
                        ink.bottom() / kTwips};
}

}  // namespace quillon
