#include "lab/messages.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "lab/exit_status.h"
#include "lab/printable_text.h"
#include "platform/output.h"

namespace fernwick::lab {

void PrintError(std::string_view message) {
  std::fprintf(stderr, "fernwick-lab: %s\n", PrintableText(message).c_str());
}

int FinishOutput(Output& out) {
  out.Flush();
  if (out.Error() == 0) return LabStatus::Done;
  PrintError(std::string("standard output could not be written: ") + std::strerror(out.Error()));
  return LabStatus::OutputLost;
}

int PrintResult(std::string_view text) {
  Output out(stdout);
  out.Write(text);
  return FinishOutput(out);
}

}  // namespace fernwick::lab
