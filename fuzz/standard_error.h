#pragma once

#include <string>

namespace fernwick::fuzz {

/// Whatever went to standard error by way of its stream, and to the system log, since it was last
/// asked. From the first call on the stream leads nowhere else: to write it out for every input
/// would cost more than the input does. The descriptor stays what it was, so that the reports of
/// sanitizers and of the fuzzing engine still come through.
std::string TakeStandardError();

/// The last line that went to the system log alone since ForgetFault, in this process or in one
/// that it started since then.
std::string LastFault();
/// From now on LastFault tells of none, until there is another.
void ForgetFault();

}  // namespace fernwick::fuzz
