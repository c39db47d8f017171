// MusicXML in a ZIP archive, as most programs save it.

#pragma once

#include "exchange/found_tune.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// The tune of a document, packed or not, whatever its file is called.
std::vector<FoundTune> ReadMxl(std::string_view bytes);

std::string WriteMxl(const Music& music, Notices& notices);

}  // namespace quillon
