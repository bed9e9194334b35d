#pragma once

#include "lab/lint/finding.h"
#include "lab/lint/subject.h"

namespace fernwick::lab {

/// Whether no Thunderbolt controller has both an "RID" and a "Ridge UID" that the personality
/// accepts: the RID is the low 4 bits of the unique id. Only of LegacyThunderbolt, since a port may
/// have an RID of its own.
bool RidContradictsUid(const LocatedPersonality& personality);

/// Reports values of "RID" and "Ridge UID" that exclude each other.
void LintRidAndUid(const LocatedPersonality& personality, ConfigurationFindings& findings);

}  // namespace fernwick::lab
