#include "lab/support/abnormal_end.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

#include "lab/support/isolation.h"
#include "platform/diagnostics.h"

namespace fernwick::lab {
namespace {

int faultFile = -1;

void KeepFault(const char* fault) {
  [[maybe_unused]] const auto written = write(faultFile, fault, std::strlen(fault));
}

std::string KeptFault() {
  std::string fault(256, '\0');
  const auto size = pread(faultFile, fault.data(), fault.size(), 0);
  fault.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
  return fault;
}

}  // namespace

std::optional<std::string> FaultThatEnds(const std::function<void()>& work) {
  faultFile = memfd_create("fault", MFD_CLOEXEC);
  const int signal = SignalThatEnds([&] {
    AbnormalEndObserver = KeepFault;
    work();
  });
  auto fault = KeptFault();
  close(faultFile);
  if (signal == 0) return std::nullopt;
  if (fault.empty()) fault = "signal " + std::to_string(signal);
  return fault;
}

}  // namespace fernwick::lab
