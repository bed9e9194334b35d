#pragma once

namespace fernwick::lab {

/// What `fernwick-lab replay --help` prints.
inline constexpr char ReplayHelp[] =
    "Runs the tool, unchanged, over a recorded computer.\n"
    "Usage: fernwick-lab replay RECORDING [TOOL-ARGUMENT...]\n"
    "\n"
    "Everything behind RECORDING is the tool's own command line; standard output, standard error\n"
    "and exit status are the tool's own. When the recording is not well formed, nothing runs and\n"
    "the status is 65; 66 when it cannot be read.\n"
    "\n"
    "Example:\n"
    "  fernwick-lab replay desk.registry.plist -v -p payload\n";

/// The verb `replay`. `arguments` are those behind the verb, with a null behind the last. Returns
/// the process's exit status.
int Replay(int argumentCount, char* const arguments[]);

}  // namespace fernwick::lab
