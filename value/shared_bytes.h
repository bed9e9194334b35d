#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "value/share.h"

namespace fernwick {

/// An immutable run of bytes with a share in what holds them: copying copies no bytes, and they
/// live as long as any run of them. Not for use across threads.
class SharedBytes {
 public:
  SharedBytes() = default;

  /// Takes `bytes` over.
  explicit SharedBytes(std::string bytes) : SharedBytes(new Holder(std::move(bytes))) {}

  /// Views `part` of `whole`. REQUIRES: it lies inside.
  SharedBytes(const SharedBytes& whole, std::string_view part) : SharedBytes(whole.share_, part) {}

  /// Views `bytes`. REQUIRES: what `share` is in holds them.
  SharedBytes(Share share, std::string_view bytes) : share_(std::move(share)), bytes_(bytes) {}

  /// Valid as long as any copy of this value lives.
  std::string_view View() const { return bytes_; }

  /// The share in what holds the bytes.
  const Share& Held() const { return share_; }

  friend bool operator==(const SharedBytes& a, const SharedBytes& b) {
    return a.View() == b.View();
  }

 private:
  struct Holder final : Shared {
    explicit Holder(std::string held) : bytes(std::move(held)) {}
    const std::string bytes;
  };

  explicit SharedBytes(const Holder* holder) : SharedBytes(Share(holder), holder->bytes) {}

  Share share_;
  std::string_view bytes_;
};

/// The bytes of one file, read once; values view into it and share it.
using SourceBuffer = SharedBytes;

}  // namespace fernwick
