// The bytecode of the virtual machine: a stack machine whose variables are resolved at
// compile time to slots (locals of a frame, ByRef parameters, module variables through the
// procedure's link table, fields of `Me`).
#pragma once

#include <cstdint>

namespace qv::vbs {

enum class Op : uint8_t {
  Nop,
  PushConst,  // a: constant index
  PushEmpty,
  PushMe,
  Pop,
  // Variables: a is the slot; flags bit kSetFlag on stores means `Set`.
  LoadLocal,
  LoadRef,
  LoadGlobal,
  LoadField,
  StoreLocal,
  StoreRef,
  StoreGlobal,
  StoreField,
  // Arguments that may be passed by reference: push the value and remember its variable.
  ArgLocal,
  ArgRef,
  ArgGlobal,
  ArgField,
  ArgElem,  // an array element (flags: VarKind, a: slot, n: index count), locked for the call
  // s = s & x on a variable (flags: VarKind, a: slot); pops x.
  Append,
  // Operators.
  Add,
  Sub,
  Mul,
  Div,
  IntDiv,
  Mod,
  Pow,
  Concat,
  Eq,
  Ne,
  Lt,
  Le,
  Gt,
  Ge,
  Is,  // flags: compare hints
  And,
  Or,
  Xor,
  Eqv,
  Imp,
  Neg,
  Not,
  // The same with the right operand a constant (K, a: constant) or a local (L, a: slot).
  AddK,
  AddL,
  SubK,
  SubL,
  MulK,
  MulL,
  EqK,
  EqL,
  NeK,
  NeL,
  LtK,
  LtL,
  LeK,
  LeL,
  GtK,
  GtL,
  GeK,
  GeL,
  // The same with the left operand a local (a: slot) and the right one on the stack.
  AddLeft,
  SubLeft,
  MulLeft,
  // Control flow; a: target.
  Jmp,
  JmpFalse,
  JmpTrue,
  // Calls: n = argument count, b = mask of arguments pushed by reference,
  // flags bit kWantResult when the value is used.
  CallGlobal,  // a: link slot
  CallMember,  // a: call site; stack: object, args
  CallMethod,  // a: member of Me's class
  Index,       // variable (flags: VarKind, a: slot) applied to args
  IndexValue,  // value on the stack applied to args
  New,         // a: link slot of the class name
  // Stores through indexes and members; the value stands last.
  StoreIndex,       // flags: VarKind | set flag, a: slot, n: index count
  StoreMember,      // a: call site; stack: object, args, value
  StoreIndexValue,  // stack: object, args, value
  // An element of the array element pushed by reference below the args (stack: element, args),
  // itself pushed by reference and locked, so `a(i)(j)(k) = v` reaches the innermost array.
  ArgElemOf,
  // Arrays: flags VarKind, a slot, n bound count.
  DimArray,
  ReDim,        // b: 1 for Preserve
  ReDimMember,  // a: call site, stack: object, bounds
  Erase,
  // Loops; flags VarKind, a: variable slot, n: first hidden local, b: jump target.
  ForInit,
  ForNext,
  ForEachInit,
  ForEachNext,
  OnError,  // a: 1 resume next, 0 goto 0
  Raise,    // a: run-time error number
  Return,
  // Fused sequences (see fuse.h), written over the first instruction of the sequence; the
  // instructions they cover stay in place for jumps that land on them. a: the loaded
  // variable (for AddStore..MulStore: the operator's operand), b: the operator's operand or
  // its Integer value, n: the local stored to.
  LoadAdd,  // LoadLocal|LoadRef, AddK|AddL: pushes the sum
  LoadSub,
  LoadMul,
  LoadAddStore,  // LoadLocal|LoadRef, AddK|AddL, StoreLocal
  LoadSubStore,
  LoadMulStore,
  LoadEqJmp,  // LoadLocal|LoadRef, EqK|EqL, JmpFalse
  LoadNeJmp,
  LoadLtJmp,
  LoadLeJmp,
  LoadGtJmp,
  LoadGeJmp,
  AddStore,  // AddK|AddL, StoreLocal
  SubStore,
  MulStore,
  AddPopStore,  // Add, StoreLocal (n: the local)
  LoadStore,    // LoadLocal|LoadRef, StoreLocal (n: the local)
};

// Where a variable lives.
enum VarKind : uint8_t { kVarLocal = 0, kVarRef = 1, kVarGlobal = 2, kVarField = 3 };
inline constexpr uint8_t kVarKindMask = 3;
inline constexpr uint8_t kSetFlag = 4;
inline constexpr uint8_t kWantResult = 8;
// A store that keeps an object as it is, neither Let's default value nor Set's check: Eval's
// result, which its caller's own assignment judges.
inline constexpr uint8_t kRawStore = 16;
// Flags of the fused instructions: the loaded variable is a ByRef parameter; the operand is
// a local rather than a constant; the operand is an Integer constant held in b itself.
inline constexpr uint8_t kFusedRef = 1;
inline constexpr uint8_t kFusedLocal = 2;
inline constexpr uint8_t kFusedImmediate = 4;

struct Instr {
  Op op = Op::Nop;
  uint8_t flags = 0;
  uint16_t n = 0;
  int32_t a = 0;
  int32_t b = 0;
};

}  // namespace qv::vbs
