// An ordinary user for tests that are run by root, from whom nothing is protected.

#pragma once

#include <stdexcept>
#include <string>
#include <unistd.h>

namespace quillon {

/// As long as it lives root is nobody, with `folder` as his own; anybody else stays who he is.
class NotRoot {
public:
    explicit NotRoot(const std::string& folder)
    {
        constexpr uid_t kNobody = 65534;
        if (userBefore == 0 && (chown(folder.c_str(), kNobody, -1) != 0 || seteuid(kNobody) != 0))
            throw std::runtime_error("cannot be nobody");
    }
    ~NotRoot() { [[maybe_unused]] const int done = seteuid(userBefore); }

    NotRoot(const NotRoot&) = delete;
    NotRoot& operator=(const NotRoot&) = delete;

private:
    uid_t userBefore = geteuid();
};

}  // namespace quillon
