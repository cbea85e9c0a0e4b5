// Superinstructions: a pass over a compiled procedure that replaces the first instruction of
// common short sequences (load, operator, store or branch) with one that does the whole
// sequence when its operands are plain numbers.
#pragma once

#include "vbscript/program.h"

namespace qv::vbs {

// Rewrites the opcodes of `proc` in place. Instruction indexes, lines and statement starts
// stay as they were, so jump targets and error positions need no fixing.
void FuseInstructions(Proc& proc);

}  // namespace qv::vbs
