#pragma once

namespace fernwick::testing {

// What the requirements print on standard error.
inline constexpr char NoVersion[] = "** No current firmware version?\n";
inline constexpr char BadMinimum[] = "** minversion bad object type in personality\n";
inline constexpr char MinimumNotMet[] = "** Min firmware version not met.  Aborting\n";
inline constexpr char BadMaximum[] = "** maxversion bad object type in personality\n";
inline constexpr char MaximumNotMet[] = "** Max firmware version not met.  Aborting\n";
inline constexpr char MissingRevision[] = "** Missing port silicon revision key(s)\n";
inline constexpr char MissingOtpRevision[] = "** Missing port OTP revision key(s) **\n";
inline constexpr char MissingUuid[] = "** Missing port UUID(s)\n";

}  // namespace fernwick::testing
