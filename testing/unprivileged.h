#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

namespace fernwick::testing {

/// Gives up the right to read every file until the end of its scope, where a test runs with it.
class Unprivileged {
 public:
  Unprivileged() : user_(geteuid()) { EXPECT_EQ(seteuid(user_ == 0 ? Nobody : user_), 0); }
  ~Unprivileged() { EXPECT_EQ(seteuid(user_), 0); }
  Unprivileged(const Unprivileged&) = delete;
  Unprivileged& operator=(const Unprivileged&) = delete;

 private:
  static constexpr uid_t Nobody = 65534;

  uid_t user_;
};

}  // namespace fernwick::testing
