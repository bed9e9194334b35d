#pragma once

namespace fernwick::testing {

/// Whether the program is built with AddressSanitizer, which reserves more address space than any
/// limit allows and ends the process itself when memory runs out.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool UnderAddressSanitizer = true;
#elif defined(__has_feature)
inline constexpr bool UnderAddressSanitizer = __has_feature(address_sanitizer);
#else
inline constexpr bool UnderAddressSanitizer = false;
#endif

}  // namespace fernwick::testing
