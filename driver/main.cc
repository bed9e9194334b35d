#include <cstdio>

#include "driver/process.h"
#include "driver/run.h"
#include "registry/host_registry.h"

int main(int argc, char* argv[]) {
  fernwick::PrepareProcess();
  fernwick::EndWhenOutOfMemory(fernwick::ExitStatus::NoMatches);
  fernwick::HostRegistry registry;
  return fernwick::Run(argc, argv, registry, stdout);
}
