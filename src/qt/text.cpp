#include "qt/text.h"

#include <QFile>

#include <algorithm>
#include <iterator>

namespace quillon {

namespace {

/// The characters of bytes 0x80..0x9f. The five bytes that the code page leaves open stand for
/// themselves, so that every byte comes back as it was.
constexpr char16_t kUpperControls[] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char16_t ToUnicode(unsigned char byte)
{
    return byte >= 0x80 && byte <= 0x9f ? kUpperControls[byte - 0x80] : char16_t{byte};
}

char FromUnicode(char32_t character)
{
    if (character < 0x80 || (character >= 0xa0 && character <= 0xff))
        return static_cast<char>(character);
    const auto found = std::find(std::begin(kUpperControls), std::end(kUpperControls), character);
    return found == std::end(kUpperControls)
               ? '?'
               : static_cast<char>(0x80 + (found - std::begin(kUpperControls)));
}

}  // namespace

QString ToUnicode(std::string_view bytes)
{
    QString text;
    text.reserve(static_cast<qsizetype>(bytes.size()));
    for (char byte : bytes)
        text += QChar(ToUnicode(static_cast<unsigned char>(byte)));
    return text;
}

std::string FromUnicode(const QString& text)
{
    // An accent typed or pasted as a character of its own joins its letter.
    std::string bytes;
    for (uint character : text.normalized(QString::NormalizationForm_C).toUcs4())
        bytes += FromUnicode(char32_t{character});
    return bytes;
}

QString BoxText(std::string_view bytes)
{
    return ToUnicode(bytes).replace("\r\n", "\n");
}

QString PathFromBytes(const std::string& path)
{
    return QFile::decodeName(QByteArray::fromStdString(path));
}

std::string PathToBytes(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

}  // namespace quillon
