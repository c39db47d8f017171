// Text at the boundary: the core's Windows-1252 bytes and Qt's Unicode.

#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace quillon {

QString ToUnicode(std::string_view bytes);

/// Characters that the code page lacks become "?".
std::string FromUnicode(const QString& text);

/// As a label or box shows it: line ends are single line feeds.
QString BoxText(std::string_view bytes);

/// Paths are the file system's own bytes.
QString PathFromBytes(const std::string& path);
std::string PathToBytes(const QString& path);

}  // namespace quillon
