// Chooses the fused forms. A fused instruction never spans a statement boundary, so an error
// it raises reports the same statement, and Resume Next continues where it would have.
#include "vbscript/fuse.h"

namespace qv::vbs {
namespace {

enum class Kind { None, Arith, Compare };

struct OperatorInfo {
  Kind kind = Kind::None;
  int index = 0;  // Add, Sub, Mul or Eq, Ne, Lt, Le, Gt, Ge
  bool local = false;
};

OperatorInfo Classify(Op op) {
  switch (op) {
    case Op::AddK:
      return {Kind::Arith, 0, false};
    case Op::SubK:
      return {Kind::Arith, 1, false};
    case Op::MulK:
      return {Kind::Arith, 2, false};
    case Op::AddL:
      return {Kind::Arith, 0, true};
    case Op::SubL:
      return {Kind::Arith, 1, true};
    case Op::MulL:
      return {Kind::Arith, 2, true};
    case Op::EqK:
      return {Kind::Compare, 0, false};
    case Op::NeK:
      return {Kind::Compare, 1, false};
    case Op::LtK:
      return {Kind::Compare, 2, false};
    case Op::LeK:
      return {Kind::Compare, 3, false};
    case Op::GtK:
      return {Kind::Compare, 4, false};
    case Op::GeK:
      return {Kind::Compare, 5, false};
    case Op::EqL:
      return {Kind::Compare, 0, true};
    case Op::NeL:
      return {Kind::Compare, 1, true};
    case Op::LtL:
      return {Kind::Compare, 2, true};
    case Op::LeL:
      return {Kind::Compare, 3, true};
    case Op::GtL:
      return {Kind::Compare, 4, true};
    case Op::GeL:
      return {Kind::Compare, 5, true};
    default:
      return {};
  }
}

// Add..Ge taking both operands from the stack, as they follow a LoadGlobal of the right one.
OperatorInfo ClassifyPlain(Op op) {
  switch (op) {
    case Op::Add:
      return {Kind::Arith, 0, false};
    case Op::Sub:
      return {Kind::Arith, 1, false};
    case Op::Mul:
      return {Kind::Arith, 2, false};
    case Op::Eq:
      return {Kind::Compare, 0, false};
    case Op::Ne:
      return {Kind::Compare, 1, false};
    case Op::Lt:
      return {Kind::Compare, 2, false};
    case Op::Le:
      return {Kind::Compare, 3, false};
    case Op::Gt:
      return {Kind::Compare, 4, false};
    case Op::Ge:
      return {Kind::Compare, 5, false};
    default:
      return {};
  }
}

Op Offset(Op first, int index) {
  return static_cast<Op>(static_cast<int>(first) + index);
}

bool IsPlainStore(const Instr& in) {
  return in.op == Op::StoreLocal && !(in.flags & (kSetFlag | kRawStore)) && in.a >= 0 &&
         in.a <= 0xFFFF;
}
bool IsPlainGlobalStore(const Instr& in) {
  return in.op == Op::StoreGlobal && !(in.flags & (kSetFlag | kRawStore)) && in.a >= 0 &&
         in.a <= 0xFFFF;
}
// The flags of a fused instruction that stores to this plain store.
uint8_t StoreFlags(const Instr& store) {
  return store.op == Op::StoreGlobal ? kFusedStoreGlobal : 0;
}

// The b and flags of a fused instruction for the operator's operand: a small Integer
// constant travels in the instruction itself.
struct Operand {
  int32_t b;
  uint8_t flags;
};
Operand OperandOf(const Proc& proc, const Instr& op, bool local) {
  if (local) return {op.a, kFusedLocal};
  const Variant& k = proc.consts[static_cast<size_t>(op.a)];
  if (k.type() == VarType::Integer) return {k.as_integer(), kFusedImmediate};
  return {op.a, 0};
}

// The fused form of a sequence that starts with LoadGlobal at i, or 0 when there is none; else
// writes it over code[i] and returns how many instructions it covers.
template <class Inside>
size_t FuseGlobalLoad(Proc& proc, size_t i, const Inside& inside) {
  auto& code = proc.code;
  Instr& in = code[i];
  if (!inside(i + 1)) return 0;
  // The operator and its operand: a K or L form, or a LoadGlobal of the operand then the
  // plain operator.
  size_t op_at = i + 1;
  OperatorInfo o = Classify(code[op_at].op);
  Operand y{0, 0};
  if (o.kind != Kind::None) {
    y = OperandOf(proc, code[op_at], o.local);
  } else if (code[op_at].op == Op::LoadGlobal && inside(i + 2)) {
    o = ClassifyPlain(code[i + 2].op);
    if (o.kind != Kind::None) {
      y = Operand{code[op_at].a, kFusedGlobal};
      op_at = i + 2;
    }
  }
  if (o.kind != Kind::None) {
    const bool third = inside(op_at + 1);
    const Instr* next = third ? &code[op_at + 1] : nullptr;
    if (o.kind == Kind::Arith && next && (IsPlainStore(*next) || IsPlainGlobalStore(*next))) {
      in = Instr{Offset(Op::LoadGlobalAddStore, o.index),
                 static_cast<uint8_t>(y.flags | StoreFlags(*next)), static_cast<uint16_t>(next->a),
                 in.a, y.b};
      return op_at + 2 - i;
    }
    if (o.kind == Kind::Compare && next && next->op == Op::JmpFalse) {
      in = Instr{Offset(Op::LoadGlobalEqJmp, o.index), y.flags, 0, in.a, y.b};
      return op_at + 2 - i;
    }
    // s + i * 2 at module level: the product joins the sum, whose left operand is already on
    // the stack, without a push of its own.
    if (o.kind == Kind::Arith && next && ClassifyPlain(next->op).kind == Kind::Arith) {
      in = Instr{Offset(Op::LoadGlobalAddOp, o.index), y.flags,
                 static_cast<uint16_t>(ClassifyPlain(next->op).index), in.a, y.b};
      return op_at + 2 - i;
    }
    if (o.kind == Kind::Arith) {
      in = Instr{Offset(Op::LoadGlobalAdd, o.index), y.flags, 0, in.a, y.b};
      return op_at + 1 - i;
    }
    return 0;
  }
  const Instr& next = code[i + 1];
  if (IsPlainStore(next) || IsPlainGlobalStore(next)) {
    in = Instr{Op::LoadGlobalStore, StoreFlags(next), static_cast<uint16_t>(next.a), in.a, 0};
    return 2;
  }
  return 0;
}

// Tells each LoadGlobalLeft the operators of its statement and where it ends, once the
// instructions after it have their fused forms, so that it need not decode them as it runs.
template <class Inside>
void ShapeLeftSequences(Proc& proc, const Inside& inside) {
  auto& code = proc.code;
  for (size_t i = 0; i + 1 < code.size(); ++i) {
    Instr& in = code[i];
    if (in.op != Op::LoadGlobalLeft) continue;
    const Instr& right = code[i + 1];
    const unsigned inner =
        static_cast<unsigned>(right.op) - static_cast<unsigned>(Op::LoadGlobalAddOp);
    const int32_t covered = 3 + ((right.flags & kFusedGlobal) ? 1 : 0);
    const size_t at = i + 1 + static_cast<size_t>(covered);
    unsigned store = kLeftNoStore;
    uint8_t flags = 0;
    if (inside(at)) {
      const unsigned op =
          static_cast<unsigned>(code[at].op) - static_cast<unsigned>(Op::AddStoreGlobal);
      if (op <= 2) {
        store = op;
        if (code[at].n == in.a) flags = kLeftStoresBack;
      }
    }
    in.n = static_cast<uint16_t>(inner << kLeftInner | unsigned{right.n} << kLeftOuter |
                                 store << kLeftStore);
    in.b = covered;
    in.flags = flags;
  }
}

}  // namespace

void FuseInstructions(Proc& proc) {
  auto& code = proc.code;
  const auto& starts = proc.stmt_start;
  const size_t size = code.size();
  // Whether instruction i continues the statement of the one before it.
  const auto inside = [&](size_t i) { return i < size && i < starts.size() && !starts[i]; };
  size_t i = 0;
  while (i < size) {
    Instr& in = code[i];
    const bool load = in.op == Op::LoadLocal || in.op == Op::LoadRef;
    if (load && inside(i + 1)) {
      const Instr& next = code[i + 1];
      const OperatorInfo o = Classify(next.op);
      if (o.kind != Kind::None) {
        const Operand y = OperandOf(proc, next, o.local);
        const uint8_t flags =
            static_cast<uint8_t>((in.op == Op::LoadRef ? kFusedRef : 0) | y.flags);
        const bool third = inside(i + 2);
        if (o.kind == Kind::Arith && third && IsPlainStore(code[i + 2])) {
          in = Instr{Offset(Op::LoadAddStore, o.index), flags, static_cast<uint16_t>(code[i + 2].a),
                     in.a, y.b};
          i += 3;
          continue;
        }
        if (o.kind == Kind::Compare && third && code[i + 2].op == Op::JmpFalse) {
          in = Instr{Offset(Op::LoadEqJmp, o.index), flags, 0, in.a, y.b};
          i += 3;
          continue;
        }
        if (o.kind == Kind::Arith) {
          in = Instr{Offset(Op::LoadAdd, o.index), flags, 0, in.a, y.b};
          i += 2;
          continue;
        }
      }
      if (IsPlainStore(next) || IsPlainGlobalStore(next)) {
        in = Instr{Op::LoadStore,
                   static_cast<uint8_t>((in.op == Op::LoadRef ? kFusedRef : 0) | StoreFlags(next)),
                   static_cast<uint16_t>(next.a), in.a, 0};
        i += 2;
        continue;
      }
    }
    if (in.op == Op::LoadGlobal && in.a >= 0) {
      // s = s + i * 2: the left operand is read where it stands, after the right one is fused.
      if (inside(i + 1) && code[i + 1].op == Op::LoadGlobal) {
        if (const size_t covered = FuseGlobalLoad(proc, i + 1, inside)) {
          const Op right = code[i + 1].op;
          if (right == Op::LoadGlobalAddOp || right == Op::LoadGlobalSubOp ||
              right == Op::LoadGlobalMulOp) {
            in.op = Op::LoadGlobalLeft;
          }
          i += 1 + covered;
          continue;
        }
      }
      if (const size_t covered = FuseGlobalLoad(proc, i, inside)) {
        i += covered;
        continue;
      }
    }
    if (in.op == Op::Add && inside(i + 1) && IsPlainGlobalStore(code[i + 1])) {
      in = Instr{Op::AddPopStoreGlobal, 0, static_cast<uint16_t>(code[i + 1].a), 0, 0};
      i += 2;
      continue;
    }
    if (in.op == Op::Add && inside(i + 1) && IsPlainStore(code[i + 1])) {
      in = Instr{Op::AddPopStore, 0, static_cast<uint16_t>(code[i + 1].a), 0, 0};
      i += 2;
      continue;
    }
    // A jump to a Return returns at once.
    if (in.op == Op::Jmp && in.a >= 0 && static_cast<size_t>(in.a) < size &&
        code[static_cast<size_t>(in.a)].op == Op::Return) {
      in = Instr{Op::Return, 0, 0, 0, 0};
      ++i;
      continue;
    }
    const OperatorInfo o = Classify(in.op);
    if (o.kind == Kind::Arith && inside(i + 1) && IsPlainStore(code[i + 1])) {
      const Operand y = OperandOf(proc, in, o.local);
      in = Instr{Offset(Op::AddStore, o.index), y.flags, static_cast<uint16_t>(code[i + 1].a), in.a,
                 y.b};
      i += 2;
      continue;
    }
    if (o.kind == Kind::Arith && inside(i + 1) && IsPlainGlobalStore(code[i + 1])) {
      const Operand y = OperandOf(proc, in, o.local);
      in = Instr{Offset(Op::AddStoreGlobal, o.index), y.flags, static_cast<uint16_t>(code[i + 1].a),
                 in.a, y.b};
      i += 2;
      continue;
    }
    ++i;
  }
  ShapeLeftSequences(proc, inside);
}

}  // namespace qv::vbs
