#include "platform/diagnostics.h"

#include <syslog.h>

#include <cstdio>
#include <cstdlib>

namespace fernwick {

void (*AbnormalEndObserver)(const char* fault) = nullptr;

void WriteDiagnostic(const char* message) {
  std::fputs(message, stderr);
  std::fflush(stderr);
}

void EndAbnormally(const char* fault) {
  openlog("fernwick", 0, LOG_USER);
  syslog(LOG_CRIT, "%s", fault);
  if (AbnormalEndObserver != nullptr) AbnormalEndObserver(fault);
  std::abort();
}

}  // namespace fernwick
