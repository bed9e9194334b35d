#include "lab/report/bounded_list.h"

namespace fernwick::lab {

bool ByteBudget::Use(std::size_t bytes) {
  if (bytes > left_) return false;
  left_ -= bytes;
  return true;
}

bool ListLimit::Accept(std::size_t bytes, ByteBudget& shared) {
  if (items_ == 0) return false;
  const bool isAccepted = own_.Use(bytes) || shared.Use(bytes);
  items_ = isAccepted ? items_ - 1 : 0;
  return isAccepted;
}

bool BoundedList::Add(std::string_view markup, ListLimit& limit, ByteBudget& shared) {
  ++count_;
  if (!limit.Accept(markup.size(), shared)) return false;
  ++listed_;
  markup_ += markup;
  return true;
}

}  // namespace fernwick::lab
