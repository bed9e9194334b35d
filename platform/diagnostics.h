#pragma once

namespace fernwick {

/// Writes one of the fixed diagnostics of the requirement checks to standard error and flushes it.
/// `message` begins with "** " and carries its own newline.
void WriteDiagnostic(const char* message);

/// Ends the process abnormally (SIGABRT) because of a fault that has no gentler path. `fault` goes
/// to the system log alone; nothing more reaches standard output, not even what waits in its
/// buffer, nor standard error.
[[noreturn]] void EndAbnormally(const char* fault);

/// Told of the fault before the process ends abnormally. Null, as the tool leaves it: nobody is.
extern void (*AbnormalEndObserver)(const char* fault);

}  // namespace fernwick
