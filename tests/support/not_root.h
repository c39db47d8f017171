// Turns root into an ordinary user, for tests of permissions: they do not hold for root.

#pragma once

#include <stdexcept>
#include <string>
#include <unistd.h>

namespace quillon {

/// While it exists, root acts as the user "nobody", who is made the owner of `folder`. For any
/// other user nothing changes.
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
