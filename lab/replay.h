#pragma once

namespace fernwick::lab {

/// What `fernwick-lab replay --help` prints.
inline constexpr char ReplayHelp[] =
    "usage: fernwick-lab replay RECORDING [TOOL-ARGUMENT...]\n"
    "\n"
    "Runs the tool, unchanged, over the recorded computer. Everything behind RECORDING is the\n"
    "tool's own command line; standard output, standard error and exit status are the tool's own.\n"
    "\n"
    "  fernwick-lab replay desk.registry.plist -v -p payload\n"
    "\n"
    "When the recording is not well formed, nothing runs and the status is 65; 66 when it cannot "
    "be\n"
    "read.\n";

/// The verb `replay`. `arguments` are those behind the verb, with a null behind the last. Returns
/// the process's exit status.
int Replay(int argumentCount, char* const arguments[]);

}  // namespace fernwick::lab
