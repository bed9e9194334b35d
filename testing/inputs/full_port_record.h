#pragma once

#include "registry/hardware_record.h"

namespace fernwick::testing {

/// A port below a Thunderbolt controller, with a value under every key that a record can have.
inline const HardwareRecord FullPortRecord = {
    {"RID", 2},
    {"Port Silicon Vendor ID", 0x4D1},
    {"Port Silicon Device ID", 18},
    {"Port Silicon Revision", 7},
    {"Port OTP Revision", 1},
    {"Port Address", 0},
    {"Version", 41.050000000999994},
    {"Port UUID", "b0A1"},
    {"Ridge Silicon Vendor ID", 0x5A86},
    {"Ridge Silicon Device ID", 0x1D3},
    {"Ridge Silicon Revision", 4},
    {"Device Model Name", "Grat"},
    {"Device Model ID", 30},
    {"Device Model Revision", 1},
    {"Firmware Mode", true},
    {"Ridge UID", 0x5A3},
    {"Engineering Version", 0},
};

}  // namespace fernwick::testing
