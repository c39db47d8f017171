// Writes MusicXML: a score of one part on a tablature staff.

#pragma once

#include "exchange/music.h"
#include "exchange/notices.h"

#include <string>

namespace quillon {

/// A partwise document, valid as MusicXML 3.1 and 4.0.
std::string WriteMusicXml(const Music& music, Notices& notices);

}  // namespace quillon
