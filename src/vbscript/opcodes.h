// The bytecode of the virtual machine: a stack machine whose variables are resolved at
// compile time to slots (locals of a frame, ByRef parameters, module variables through the
// procedure's link table, fields of `Me`).
#pragma once

#include <cstdint>

namespace qv::vbs {

// Every opcode, in the order of the enumeration. The dispatch loop jumps straight from one HOT
// instruction to the next; COLD ones take the way through its switch. Marking an opcode HOT
// needs a label of its name in the loop (the build fails without one). Order matters within
// the families that fuse.cpp addresses by offset (Add, Sub, Mul; Eq, Ne, Lt, Le, Gt, Ge).
// clang-format off
#define QV_OPCODES(COLD, HOT)                                                                     \
  COLD(Nop)                                                                                       \
  HOT(PushConst) /* a: constant index */                                                          \
  COLD(PushEmpty)                                                                                 \
  COLD(PushMe)                                                                                    \
  COLD(Pop)                                                                                       \
  /* Variables: a is the slot; flags bit kSetFlag on stores means `Set`. */                       \
  HOT(LoadLocal)                                                                                  \
  HOT(LoadRef)                                                                                    \
  HOT(LoadGlobal)                                                                                 \
  COLD(LoadField)                                                                                 \
  HOT(StoreLocal)                                                                                 \
  COLD(StoreRef)                                                                                  \
  HOT(StoreGlobal)                                                                                \
  COLD(StoreField)                                                                                \
  /* Arguments that may be passed by reference: push the value and remember its variable. */      \
  HOT(ArgLocal)                                                                                   \
  COLD(ArgRef)                                                                                    \
  HOT(ArgGlobal)                                                                                  \
  COLD(ArgField)                                                                                  \
  /* an array element (flags: VarKind, a: slot, n: index count), locked for the call */           \
  COLD(ArgElem)                                                                                   \
  /* s = s & x on a variable (flags: VarKind, a: slot); pops x. */                                \
  HOT(Append)                                                                                     \
  /* Operators. */                                                                                \
  HOT(Add)                                                                                        \
  HOT(Sub)                                                                                        \
  HOT(Mul)                                                                                        \
  COLD(Div)                                                                                       \
  COLD(IntDiv)                                                                                    \
  COLD(Mod)                                                                                       \
  COLD(Pow)                                                                                       \
  HOT(Concat)                                                                                     \
  HOT(Eq)                                                                                         \
  HOT(Ne)                                                                                         \
  HOT(Lt)                                                                                         \
  HOT(Le)                                                                                         \
  HOT(Gt)                                                                                         \
  HOT(Ge)                                                                                         \
  COLD(Is) /* flags: compare hints */                                                             \
  COLD(And)                                                                                       \
  COLD(Or)                                                                                        \
  COLD(Xor)                                                                                       \
  COLD(Eqv)                                                                                       \
  COLD(Imp)                                                                                       \
  COLD(Neg)                                                                                       \
  COLD(Not)                                                                                       \
  /* The same with the right operand a constant (K, a: constant) or a local (L, a: slot). */      \
  HOT(AddK)                                                                                       \
  HOT(AddL)                                                                                       \
  HOT(SubK)                                                                                       \
  HOT(SubL)                                                                                       \
  HOT(MulK)                                                                                       \
  HOT(MulL)                                                                                       \
  HOT(EqK)                                                                                        \
  HOT(EqL)                                                                                        \
  HOT(NeK)                                                                                        \
  HOT(NeL)                                                                                        \
  HOT(LtK)                                                                                        \
  HOT(LtL)                                                                                        \
  HOT(LeK)                                                                                        \
  HOT(LeL)                                                                                        \
  HOT(GtK)                                                                                        \
  HOT(GtL)                                                                                        \
  HOT(GeK)                                                                                        \
  HOT(GeL)                                                                                        \
  /* The same with the left operand a local (a: slot) and the right one on the stack. */          \
  HOT(AddLeft)                                                                                    \
  HOT(SubLeft)                                                                                    \
  HOT(MulLeft)                                                                                    \
  /* Control flow; a: target. */                                                                  \
  HOT(Jmp)                                                                                        \
  HOT(JmpFalse)                                                                                   \
  HOT(JmpTrue)                                                                                    \
  /* Calls: n = argument count, b = mask of arguments pushed by reference, */                     \
  /* flags bit kWantResult when the value is used. */                                             \
  HOT(CallGlobal) /* a: link slot */                                                              \
  HOT(CallMember) /* a: call site; stack: object, args */                                         \
  COLD(CallMethod) /* a: member of Me's class */                                                  \
  HOT(Index) /* variable (flags: VarKind, a: slot) applied to args */                             \
  COLD(IndexValue) /* value on the stack applied to args */                                       \
  COLD(New) /* a: link slot of the class name */                                                  \
  /* Stores through indexes and members; the value stands last. */                                \
  COLD(StoreIndex) /* flags: VarKind | set flag, a: slot, n: index count */                       \
  COLD(StoreMember) /* a: call site; stack: object, args, value */                                \
  COLD(StoreIndexValue) /* stack: object, args, value */                                          \
  /* An element of the array element pushed by reference below the args (stack: element,          \
     args), itself pushed by reference and locked, so `a(i)(j)(k) = v` reaches the                \
     innermost array. */                                                                          \
  COLD(ArgElemOf)                                                                                 \
  /* Arrays: flags VarKind, a slot, n bound count. */                                             \
  COLD(DimArray)                                                                                  \
  COLD(ReDim) /* b: 1 for Preserve */                                                             \
  COLD(ReDimMember) /* a: call site, stack: object, bounds */                                     \
  COLD(Erase)                                                                                     \
  /* Loops; flags VarKind, a: variable slot, n: first hidden local, b: jump target. */            \
  COLD(ForInit)                                                                                   \
  HOT(ForNext)                                                                                    \
  HOT(ForNextGlobal) /* ForNext whose counter is a module variable */                             \
  COLD(ForEachInit)                                                                               \
  COLD(ForEachNext)                                                                               \
  COLD(OnError) /* a: 1 resume next, 0 goto 0 */                                                  \
  COLD(Raise) /* a: run-time error number */                                                      \
  HOT(Return)                                                                                     \
  /* Fused sequences (see fuse.h), written over the first instruction of the sequence; the */     \
  /* instructions they cover stay in place for jumps that land on them. a: the loaded */          \
  /* variable (for AddStore..MulStore: the operator's operand), b: the operator's operand or */   \
  /* its Integer value, n: the local stored to. */                                                \
  HOT(LoadAdd) /* LoadLocal|LoadRef, AddK|AddL: pushes the sum */                                 \
  HOT(LoadSub)                                                                                    \
  HOT(LoadMul)                                                                                    \
  HOT(LoadAddStore) /* LoadLocal|LoadRef, AddK|AddL, StoreLocal */                                \
  HOT(LoadSubStore)                                                                               \
  HOT(LoadMulStore)                                                                               \
  HOT(LoadEqJmp) /* LoadLocal|LoadRef, EqK|EqL, JmpFalse */                                       \
  HOT(LoadNeJmp)                                                                                  \
  HOT(LoadLtJmp)                                                                                  \
  HOT(LoadLeJmp)                                                                                  \
  HOT(LoadGtJmp)                                                                                  \
  HOT(LoadGeJmp)                                                                                  \
  HOT(AddStore) /* AddK|AddL, StoreLocal */                                                       \
  HOT(SubStore)                                                                                   \
  HOT(MulStore)                                                                                   \
  HOT(AddPopStore) /* Add, StoreLocal (n: the local) */                                           \
  HOT(LoadStore) /* LoadLocal|LoadRef, StoreLocal|StoreGlobal (n: the local or link slot) */                               \
  /* The same for module variables, each one read or written only while its slot holds a          \
     variable (a constant too, for reads): a: the link slot of the loaded variable, b: the        \
     operand as above or, with kFusedGlobal, the link slot of a module variable whose             \
     LoadGlobal stands before the operator (Add..Ge instead of their K and L forms), n: the       \
     local or, with kFusedStoreGlobal, the link slot stored to. */                                \
  HOT(LoadGlobalAdd) /* LoadGlobal, AddK|AddL: pushes the sum */                                  \
  HOT(LoadGlobalSub)                                                                              \
  HOT(LoadGlobalMul)                                                                              \
  /* LoadGlobal, AddK|AddL, then Add|Sub|Mul (n: 0, 1, 2) on the value below */                   \
  HOT(LoadGlobalAddOp)                                                                            \
  HOT(LoadGlobalSubOp)                                                                            \
  HOT(LoadGlobalMulOp)                                                                            \
  /* LoadGlobal whose value is the left operand of the LoadGlobalAddOp..MulOp after it; n: the     \
     statement's shape (kLeftInner..kLeftStore), b: how far the operator that ends it stands      \
     from that LoadGlobalAddOp..MulOp, flags kLeftStoresBack when it stores to the loaded one */  \
  HOT(LoadGlobalLeft)                                                                             \
  HOT(LoadGlobalAddStore) /* LoadGlobal, AddK|AddL, StoreLocal|StoreGlobal */                     \
  HOT(LoadGlobalSubStore)                                                                         \
  HOT(LoadGlobalMulStore)                                                                         \
  HOT(LoadGlobalEqJmp) /* LoadGlobal, EqK|EqL, JmpFalse */                                        \
  HOT(LoadGlobalNeJmp)                                                                            \
  HOT(LoadGlobalLtJmp)                                                                            \
  HOT(LoadGlobalLeJmp)                                                                            \
  HOT(LoadGlobalGtJmp)                                                                            \
  HOT(LoadGlobalGeJmp)                                                                            \
  HOT(AddStoreGlobal) /* AddK|AddL, StoreGlobal (n: the link slot) */                             \
  HOT(SubStoreGlobal)                                                                             \
  HOT(MulStoreGlobal)                                                                             \
  HOT(AddPopStoreGlobal) /* Add, StoreGlobal (n: the link slot) */                                \
  HOT(LoadGlobalStore) /* LoadGlobal, StoreLocal|StoreGlobal */
// clang-format on

enum class Op : uint8_t {
#define QV_OPCODE_NAME(name) name,
  QV_OPCODES(QV_OPCODE_NAME, QV_OPCODE_NAME)
#undef QV_OPCODE_NAME
};

#define QV_OPCODE_COUNT(name) +1
inline constexpr int kOpCount = 0 QV_OPCODES(QV_OPCODE_COUNT, QV_OPCODE_COUNT);
#undef QV_OPCODE_COUNT

// Where a variable lives.
enum VarKind : uint8_t { kVarLocal = 0, kVarRef = 1, kVarGlobal = 2, kVarField = 3 };
inline constexpr uint8_t kVarKindMask = 3;
inline constexpr uint8_t kSetFlag = 4;
inline constexpr uint8_t kWantResult = 8;
// A store that keeps an object as it is, neither Let's default value nor Set's check: Eval's
// result, which its caller's own assignment judges.
inline constexpr uint8_t kRawStore = 16;
// A member call written with empty parentheses, `obj.Name()`: a call of the member as a method,
// never a read of it.
inline constexpr uint8_t kEmptyParens = 32;
// Flags of the fused instructions: the loaded variable is a ByRef parameter; the operand is
// a local rather than a constant; the operand is an Integer constant held in b itself; the
// operand is a module variable; the variable stored to is a module variable.
inline constexpr uint8_t kFusedRef = 1;
inline constexpr uint8_t kFusedLocal = 2;
inline constexpr uint8_t kFusedImmediate = 4;
inline constexpr uint8_t kFusedGlobal = 8;
inline constexpr uint8_t kFusedStoreGlobal = 16;
// The shape of a LoadGlobalLeft statement, `x = l op1 (y op2 k) op3 m`: op2 (0 Add, 1 Sub,
// 2 Mul) in bits 0-1, op1 in bits 2-3 and op3 in bits 4-5, whose kLeftNoStore says that no
// AddStoreGlobal..MulStoreGlobal ends the statement.
inline constexpr unsigned kLeftInner = 0;
inline constexpr unsigned kLeftOuter = 2;
inline constexpr unsigned kLeftStore = 4;
inline constexpr unsigned kLeftNoStore = 3;
// The statement stores its result back to l.
inline constexpr uint8_t kLeftStoresBack = 1;

struct Instr {
  Op op = Op::Nop;
  uint8_t flags = 0;
  uint16_t n = 0;
  int32_t a = 0;
  int32_t b = 0;
};

}  // namespace qv::vbs
