// The user's settings, by section and key, all stored as text.

#pragma once

#include <string>

namespace quillon {

class Settings {
public:
    virtual ~Settings() = default;

    virtual std::string Get(const std::string& section, const std::string& key,
                            const std::string& byDefault) const = 0;
    virtual void Set(const std::string& section, const std::string& key,
                     const std::string& value) = 0;
};

}  // namespace quillon
