#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

namespace fernwick::testing {

/// Drops the right to read every file until the end of its scope, if the test has it.
class Unprivileged {
 public:
  Unprivileged() : user_(geteuid()) { EXPECT_EQ(seteuid(user_ == 0 ? NobodyUser : user_), 0); }
  ~Unprivileged() { EXPECT_EQ(seteuid(user_), 0); }
  Unprivileged(const Unprivileged&) = delete;
  Unprivileged& operator=(const Unprivileged&) = delete;

 private:
  static constexpr uid_t NobodyUser = 65534;

  uid_t user_;
};

}  // namespace fernwick::testing
