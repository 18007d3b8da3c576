// System calls that signals interrupt; POSIX.
#pragma once

#include <cerrno>

namespace lagestatus {

// Makes a call again as long as it returns -1 because a signal interrupted it. Returned: what it returned in the end.
template <typename Call>
auto uninterrupted(Call call) noexcept {
    auto returned = call();
    while (returned == -1 && errno == EINTR) {
        returned = call();
    }
    return returned;
}

}  // namespace lagestatus
