#pragma once

#include <string>
#include <string_view>

#include "value/share.h"
#include "value/shared_bytes.h"

namespace fernwick {

/// The key of a dictionary's entry: text in UTF-8, in one pointer. Copies share the text: most
/// dictionaries of a file have the same few keys, and who reads them all has half as much to go
/// through. A key that has been moved from may only be given another or be destroyed. Not for use
/// across threads.
class DictionaryKey {
 public:
  /// Shares the bytes.
  explicit DictionaryKey(const SharedBytes& text) : share_(new SharingHolder(text)) {}

  /// Holds a copy.
  explicit DictionaryKey(std::string_view text) : share_(new OwningHolder(text)) {}

  /// Valid as long as any copy of the key lives.
  std::string_view View() const { return static_cast<const Holder*>(share_.Get())->text; }

  /// The text, which lives as long as any share in it.
  SharedBytes Text() const { return {share_, View()}; }

  /// One address for all copies of the key, as long as one of them lives; equal keys may have two.
  const void* Address() const { return share_.Get(); }

  friend bool operator==(const DictionaryKey& a, const DictionaryKey& b) {
    return a.View() == b.View();
  }

 private:
  struct Holder : Shared {
    std::string_view text;
  };
  struct SharingHolder final : Holder {
    explicit SharingHolder(const SharedBytes& shared) : source(shared.Held()) {
      text = shared.View();
    }
    const Share source;
  };
  struct OwningHolder final : Holder {
    explicit OwningHolder(std::string_view copied) : owned(copied) { text = owned; }
    const std::string owned;
  };

  Share share_;
};

}  // namespace fernwick
