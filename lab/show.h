#pragma once

namespace fernwick::lab {

/// The verb `show`: the registry of a recorded computer as a tree, with the controllers picked out,
/// and both inventories as the tool sees them. `arguments` are those behind the verb. Returns the
/// process's exit status.
int Show(int argumentCount, char* const arguments[]);

}  // namespace fernwick::lab
