// A tune found in another program's file.

#pragma once

#include "exchange/music.h"
#include "exchange/notices.h"

#include <stdexcept>
#include <string>

namespace quillon {

struct FoundTune {
    Music Tune;
    Notices Said;         // what of it could not be read
    std::string Failure;  // why it cannot be read at all; "" if it can
};

/// What cannot be read or made; what() says where, what is wrong and what to do.
class ExchangeError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace quillon
