#include "driver/options.h"
#include "driver/process.h"
#include "driver/run.h"
#include "platform/console.h"
#include "registry/host/host_registry.h"

int main(int argc, char* argv[]) {
  fernwick::PrepareProcess();
  fernwick::EndWhenOutOfMemory(fernwick::ExitStatus::OutOfMemory);
  const auto options = fernwick::ParseOptions(argc, argv);
  fernwick::HostRegistry registry;
  fernwick::ProcessConsole console;
  const auto result = fernwick::Run(options, registry, console);
  if (result.fault) fernwick::LogAndAbort(*result.fault);
  return result.status;
}
