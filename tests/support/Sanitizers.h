// SPDX-License-Identifier: MIT
#pragma once

namespace orvtest {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool isSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
inline constexpr bool isSanitized = true;
#else
inline constexpr bool isSanitized = false;
#endif
#else
inline constexpr bool isSanitized = false;
#endif

/// A sanitizer takes its time: it sees a share of the random cases, or of the size of a huge one.
template <typename Count>
constexpr Count fewerIfSanitized(Count count, Count share) {
    return isSanitized ? count / share : count;
}

}  // namespace orvtest
