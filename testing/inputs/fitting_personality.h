#pragma once

#include "testing/dictionaries.h"
#include "value/property_value.h"

namespace fernwick::testing {

/// A controller with a value under everything that any requirement check reads. The values are in
/// the middle of ValueDomain.
inline const Record FullController = {
    {"Version", 2},
    {"Engineering Version", 0},
    {"Port Address", 2},
    {"RID", 2},
    {"Port Silicon Vendor ID", 2},
    {"Port Silicon Device ID", 2},
    {"Port Silicon Revision", 2},
    {"Port OTP Revision", 2},
    {"Port UUID", "b0A1"},
    {"Ridge Silicon Vendor ID", 2},
    {"Ridge Silicon Device ID", 2},
    {"Ridge Silicon Revision", 2},
    {"Ridge UID", 2},
    {"Device Model Name", "b0A1"},
    {"Device Model ID", 2},
    {"Device Model Revision", 2},
    {"Firmware Mode", true},
};

/// A personality that constrains all that can be constrained and, on a board of revision 2, passes
/// every check on that controller.
inline const Record FittingPersonality =
    With(Without(FullController, "Engineering Version"), {{"Version", 3},
                                                          {"Existing Min Version", 2},
                                                          {"Existing Max Version", 2},
                                                          {"MinBoardRevision", 2},
                                                          {"MaxBoardRevision", 2},
                                                          {"Port UUID", List({"b0A1"})}});

}  // namespace fernwick::testing
