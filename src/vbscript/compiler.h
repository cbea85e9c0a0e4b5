// Turns a syntax tree into bytecode: names are resolved to local slots, ByRef parameters,
// fields of `Me` or entries of the procedure's link table into module slots, so running code
// never looks a variable up by name.
#pragma once

#include <memory>
#include <vector>

#include "vbscript/program.h"

namespace qv::vbs {

// One compiled piece of source, not yet visible in its module: Link makes it so. Nothing of
// a unit that failed to compile is ever linked.
struct CompiledUnit {
  std::unique_ptr<Proc> top;  // the module-level statements
  std::vector<std::unique_ptr<Proc>> procs;
  std::vector<std::unique_ptr<Proc>> class_procs;
  std::vector<Ref<ClassInfo>> classes;
  std::vector<std::pair<String, Variant>> constants;
  std::vector<String> variables;
};

// Compiles a program for `module`. `outer`, when given, is the procedure whose locals the
// code sees (Execute inside a procedure); `outer_me_class` the class of its `Me`.
CompiledUnit CompileProgram(const Program& program, Module& module, const String& source,
                            const Proc* outer, const std::vector<String>* scope_names = nullptr);

// Compiles an expression into a procedure that returns its value.
std::unique_ptr<Proc> CompileExpression(const Expr& expr, Module& module, const String& source,
                                        const Proc* outer,
                                        const std::vector<String>* scope_names = nullptr);

// Makes the unit's variables, constants, procedures and classes visible in the module
// (replacing earlier definitions of the same names) and hands the procedures to the module.
// Returns the module-level code, still owned by the caller.
std::unique_ptr<Proc> Link(CompiledUnit& unit, Module& module);

// What one Link made visible, kept so that the same unit can be made visible again without
// compiling it: the procedures and classes stay owned by the module they were linked into.
struct LinkedUnit {
  std::unique_ptr<Proc> top;
  std::vector<const Proc*> procs;
  std::vector<ClassInfo*> classes;
  std::vector<String> variables;
  std::vector<std::pair<String, Variant>> constants;
};

// Link that keeps the record of what it linked.
LinkedUnit LinkKeeping(CompiledUnit& unit, Module& module);

// Repeats a LinkKeeping into the same module: the unit's names take its definitions again.
void Relink(const LinkedUnit& linked, Module& module);

}  // namespace qv::vbs
