// The bytecode compiler. Each procedure is compiled on its own: a first walk finds its
// declared and implicitly created locals, a second emits code. Loops, With and Select keep
// their state in hidden locals, so the value stack is empty between statements and an error
// under On Error Resume Next can simply continue at the next statement.
#include "vbscript/compiler.h"

#include <unordered_map>
#include <unordered_set>

#include "vbscript/errors.h"
#include "vbscript/fuse.h"
#include "vbscript/operators.h"

namespace qv::vbs {
namespace {

using NameSet = std::unordered_set<String, NoCaseHash, NoCaseEqual>;

enum class NameKind { Local, Ref, Field, Method, Global, Constant, Result };

struct Resolved {
  NameKind kind;
  int32_t index = 0;
  Variant value;
};

uint8_t VarKindOf(NameKind k) {
  switch (k) {
    case NameKind::Local:
    case NameKind::Result:
      return kVarLocal;
    case NameKind::Ref:
      return kVarRef;
    case NameKind::Field:
      return kVarField;
    default:
      return kVarGlobal;
  }
}

bool IsVariable(NameKind k) {
  return k == NameKind::Local || k == NameKind::Ref || k == NameKind::Field ||
         k == NameKind::Global || k == NameKind::Result;
}

[[noreturn]] void Fail(int32_t number, int32_t line, int32_t column) {
  throw CompileError(number, line, column);
}

// Folds a constant's value (a literal, possibly negated).
Variant ConstantValue(const Expr& e) {
  if (e.kind == ExprKind::Literal) return e.value;
  if (e.kind == ExprKind::Unary && e.un == UnOp::Neg && e.object) {
    return OpNeg(ConstantValue(*e.object));
  }
  if (e.kind == ExprKind::Paren && e.object) return ConstantValue(*e.object);
  Fail(kCeExpectedLiteral, e.line, e.column);
}

// Only a literal as written counts for the comparison rules: `-5` is the negation of one, an
// expression like any other, so "abc" = -5 compares as text instead of converting "abc".
bool IsLiteral(const Expr& e) {
  return e.kind == ExprKind::Literal;
}

// Names the module-level code of this unit declares or assigns.
struct UnitNames {
  NameSet globals;
  NameSet arrays;  // declared with Dim name(...): no plain assignment replaces them
};

class ProcCompiler {
 public:
  ProcCompiler(Module& module, Proc& proc, const UnitNames& unit, ClassInfo* cls, const Proc* outer,
               const std::vector<String>* scope_names = nullptr)
      : module_(module), proc_(proc), unit_(unit), cls_(cls) {
    if (!outer) return;
    // The caller's locals, and the names earlier snippets created in its scope, all reached
    // through references.
    for (size_t i = 0; i < outer->local_names.size(); ++i)
      AddRefParam(outer->local_names[i]);
    if (scope_names) {
      for (const auto& name : *scope_names)
        AddRefParam(name);
    }
    proc_.nparams = static_cast<uint16_t>(proc_.local_names.size());
    keeps_created_names_ = outer->scope_slot >= 0;
  }

  void CompileProcedure(const ProcDecl& decl) {
    proc_.name = decl.name;
    proc_.kind = decl.kind;
    proc_.is_public = decl.is_public;
    for (const auto& p : decl.params) {
      if (FindLocal(p.name) >= 0) Fail(kCeNameRedefined, p.line, p.column);
      AddLocal(p.name);
      proc_.byref.push_back(p.by_val ? 0 : 1);
      ref_.push_back(!p.by_val);
    }
    proc_.nparams = static_cast<uint16_t>(decl.params.size());
    if (proc_.has_return_value()) {
      proc_.result_slot = AddLocal(String());
      own_name_ = decl.name;
    }
    Prescan(decl.body, false);
    DeclareImplicit();
    cur_line_ = decl.line;
    cur_col_ = decl.column;
    EmitArrays();
    Block(decl.body);
    Finish();
  }

  void CompileTop(const vbs::Block& body) {
    proc_.is_top_level = true;
    Prescan(body, true);
    if (keeps_created_names_ && !module_option_explicit()) {
      // Run by Execute inside a procedure: a name nothing declared belongs to that procedure.
      for (const auto& name : candidates_) {
        if (FindLocal(name) >= 0 || ExistsInModule(name)) continue;
        if (cls_ && cls_->Find(name) >= 0) continue;
        proc_.created_names.emplace_back(name, AddLocal(name));
      }
    }
    if (keeps_created_names_) {
      // What it declares is the procedure's, whatever the script's level holds.
      for (const auto& name : top_dims_) {
        if (FindLocal(name) >= 0) continue;
        proc_.created_names.emplace_back(name, AddLocal(name));
      }
    }
    Block(body);
    Finish();
  }

  void CompileExpr(const Expr& e) {
    proc_.kind = ProcKind::Function;
    proc_.result_slot = AddLocal(String());
    cur_line_ = e.line;
    cur_col_ = e.column;
    MarkStatement(e.line, e.column);
    Expression(e);
    Emit(Op::StoreLocal, -1, proc_.result_slot, 0, kRawStore);
    Finish();
  }

  std::vector<std::pair<String, Variant>> module_constants;
  std::vector<String> module_variables;

 private:
  // --- locals -------------------------------------------------------------------------------
  int32_t AddLocal(const String& name) {
    proc_.local_names.push_back(name);
    if (!name.empty()) locals_.emplace(name, static_cast<int32_t>(proc_.local_names.size() - 1));
    if (proc_.local_names.size() > 60000) Fail(kCeOutOfMemory, cur_line_, cur_col_);
    return static_cast<int32_t>(proc_.local_names.size() - 1);
  }
  int32_t Hidden() { return AddLocal(String()); }
  void AddRefParam(const String& name) {
    AddLocal(name);
    proc_.byref.push_back(1);
    ref_.push_back(true);
  }
  int32_t FindLocal(StringView name) const {
    const auto it = locals_.find(name);
    return it == locals_.end() ? -1 : it->second;
  }

  bool IsKnownGlobal(StringView name) const {
    if (unit_.globals.count(name)) return true;
    if (const GlobalSlot* s = module_.FindSlot(name); s && s->kind != SlotKind::Undefined)
      return true;
    if (Module* g = module_.global()) {
      if (const GlobalSlot* s = g->FindSlot(name); s && s->kind != SlotKind::Undefined) return true;
    }
    return false;
  }

  void Prescan(const vbs::Block& body, bool top) {
    for (const auto& s : body)
      PrescanStmt(*s, top);
  }

  void Candidate(const Expr* target) {
    if (target && target->kind == ExprKind::Name && !target->has_args)
      candidates_.push_back(target->name);
  }

  void PrescanStmt(const Stmt& s, bool top) {
    switch (s.kind) {
      case StmtKind::Dim:
        for (const auto& v : s.vars) {
          if (top) {
            if (keeps_created_names_) top_dims_.push_back(v.name);
            continue;
          }
          if (FindLocal(v.name) >= 0 && FindLocal(v.name) >= proc_.nparams)
            Fail(kCeNameRedefined, v.line, v.column);
          if (FindLocal(v.name) < 0) AddLocal(v.name);
          if (v.is_array) {
            arrays_.push_back(&v);
            array_locals_.insert(v.name);
          }
        }
        break;
      case StmtKind::ReDim:
        for (const auto& t : s.redim_targets) {
          Candidate(t.get());
          if (t->kind == ExprKind::Name) redim_names_.push_back(t->name);
        }
        break;
      case StmtKind::Assign:
        Candidate(s.target.get());
        break;
      case StmtKind::For:
      case StmtKind::ForEach:
        Candidate(s.target.get());
        break;
      default:
        break;
    }
    for (const auto& b : s.blocks)
      Prescan(b, top);
    for (const auto& c : s.cases)
      Prescan(c.body, top);
  }

  // Names assigned without a declaration become locals, unless Option Explicit asks for
  // declarations; ReDim declares its name even then.
  void DeclareImplicit() {
    auto declare = [&](const String& name) {
      if (FindLocal(name) >= 0) return;
      if (!own_name_.empty() && EqualsNoCase(name, own_name_)) return;
      if (cls_ && cls_->Find(name) >= 0) return;
      if (IsKnownGlobal(name)) return;
      AddLocal(name);
    };
    for (const auto& name : redim_names_)
      declare(name);
    if (module_option_explicit()) return;
    for (const auto& name : candidates_)
      declare(name);
  }
  // At the script's own level, a ReDim of a name nothing declared declares it.
  bool ExistsInModule(StringView name) const {
    if (const GlobalSlot* s = module_.FindSlot(name); s && s->kind != SlotKind::Undefined)
      return true;
    if (Module* g = module_.global()) {
      if (const GlobalSlot* s = g->FindSlot(name); s && s->kind != SlotKind::Undefined) return true;
    }
    return false;
  }
  bool module_option_explicit() const { return proc_.option_explicit; }

  Resolved Resolve(StringView name) {
    const int32_t local = FindLocal(name);
    if (local >= 0) {
      const bool is_ref = static_cast<size_t>(local) < ref_.size() && ref_[local];
      return {is_ref ? NameKind::Ref : NameKind::Local, local, {}};
    }
    if (!proc_.is_top_level && proc_.scope_slot < 0 && EqualsNoCase(name, u"Execute"))
      proc_.scope_slot = Hidden();
    if (const auto it = local_consts_.find(name); it != local_consts_.end())
      return {NameKind::Constant, 0, it->second};
    if (cls_) {
      const int32_t m = cls_->Find(name);
      if (m >= 0) {
        const ClassMember& member = cls_->members[m];
        if (member.field >= 0) return {NameKind::Field, member.field, {}};
        return {NameKind::Method, m, {}};
      }
    }
    return {NameKind::Global, LinkSlot(name), {}};
  }

  int32_t LinkSlot(StringView name) {
    const auto it = links_.find(name);
    if (it != links_.end()) return it->second;
    proc_.globals.push_back(module_.Slot(name));
    const auto index = static_cast<int32_t>(proc_.globals.size() - 1);
    links_.emplace(String(name), index);
    return index;
  }

  int32_t Constant(Variant v) {
    proc_.consts.push_back(std::move(v));
    return static_cast<int32_t>(proc_.consts.size() - 1);
  }

  int32_t Site(StringView name, const Expr* object = nullptr) {
    MemberSite site;
    site.name = String(name);
    if (object && object->kind == ExprKind::Name && !object->has_args) site.subject = object->name;
    proc_.sites.push_back(std::move(site));
    return static_cast<int32_t>(proc_.sites.size() - 1);
  }

  // --- emission -----------------------------------------------------------------------------
  size_t Emit(Op op, int delta, int32_t a = 0, uint32_t n = 0, uint8_t flags = 0, int32_t b = 0) {
    Instr in;
    in.op = op;
    in.a = a;
    in.n = static_cast<uint16_t>(n);
    in.flags = flags;
    in.b = b;
    proc_.code.push_back(in);
    proc_.lines.push_back(cur_line_);
    proc_.columns.push_back(cur_col_);
    proc_.stmt_start.push_back(pending_start_ ? 1 : 0);
    pending_start_ = false;
    depth_ += delta;
    if (depth_ > static_cast<int>(proc_.max_stack)) proc_.max_stack = depth_;
    return proc_.code.size() - 1;
  }
  size_t Here() const { return proc_.code.size(); }
  void Patch(size_t at, size_t target) { proc_.code[at].a = static_cast<int32_t>(target); }
  void PatchB(size_t at, size_t target) { proc_.code[at].b = static_cast<int32_t>(target); }

  void MarkStatement(int32_t line, int32_t column) {
    cur_line_ = line;
    cur_col_ = column;
    pending_start_ = true;
  }
  // The jump that leaves a block is where On Error Resume Next goes on after an error in the
  // block's last statement: it counts as a statement of its own.
  void MarkResumePoint() { pending_start_ = true; }
  void SetPosition(int32_t line, int32_t column) {
    cur_line_ = line;
    cur_col_ = column;
  }

  void Finish() {
    MarkStatement(cur_line_, cur_col_);
    Emit(Op::Return, 0);
    proc_.nlocals = static_cast<uint16_t>(proc_.local_names.size());
    proc_.max_stack += 2;
    FuseInstructions(proc_);
  }

  void EmitArrays() {
    for (const VarDecl* v : arrays_) {
      const Resolved r = Resolve(v->name);
      for (const auto& b : v->bounds)
        Emit(Op::PushConst, 1, Constant(ConstantValue(*b)));
      Emit(Op::DimArray, -static_cast<int>(v->bounds.size()), r.index,
           static_cast<uint32_t>(v->bounds.size()), VarKindOf(r.kind));
    }
  }

  // --- expressions --------------------------------------------------------------------------
  void Expression(const Expr& e) {
    switch (e.kind) {
      case ExprKind::Literal:
        Emit(Op::PushConst, 1, Constant(e.value));
        return;
      case ExprKind::Paren:
        Expression(*e.object);
        return;
      case ExprKind::Me:
        if (!cls_) Fail(kCeInvalidMe, e.line, e.column);
        Emit(Op::PushMe, 1);
        return;
      case ExprKind::New:
        Emit(Op::New, 1, LinkSlot(e.name));
        return;
      case ExprKind::Unary:
        if (e.un == UnOp::Neg && e.object->kind == ExprKind::Literal &&
            e.object->value.is_numeric_type()) {
          Emit(Op::PushConst, 1, Constant(OpNeg(e.object->value)));
          return;
        }
        Expression(*e.object);
        Emit(e.un == UnOp::Neg ? Op::Neg : Op::Not, 0);
        return;
      case ExprKind::Binary:
        Binary(e);
        return;
      case ExprKind::Name:
        NameValue(e, true);
        return;
      case ExprKind::Member:
        MemberValue(e, true);
        return;
      case ExprKind::Index: {
        Expression(*e.object);
        uint32_t mask = 0;
        Arguments(e.args, mask);
        Emit(Op::IndexValue, -static_cast<int>(e.args.size()), 0,
             static_cast<uint32_t>(e.args.size()), kWantResult, static_cast<int32_t>(mask));
        return;
      }
    }
  }

  // Left-leaning chains are compiled from their leftmost operand up, without recursion.
  void Binary(const Expr& top) {
    std::vector<const Expr*> spine;
    const Expr* cur = &top;
    while (cur->kind == ExprKind::Binary) {
      spine.push_back(cur);
      cur = cur->object.get();
    }
    auto it = spine.rbegin();
    if (LocalLeftStep(*cur, **it)) {
      ++it;
    } else {
      Expression(*cur);
    }
    for (; it != spine.rend(); ++it)
      BinaryStep(**it);
  }

  // Whether evaluating e can neither run script code nor change a local: constants, locals
  // and operators on them (an object operand's default value runs code that cannot reach
  // this procedure's locals).
  bool Pure(const Expr& e, int depth = 0) const {
    if (depth > 8) return false;
    switch (e.kind) {
      case ExprKind::Literal:
        return true;
      case ExprKind::Name:
        if (e.has_args) return false;
        if (!own_name_.empty() && EqualsNoCase(e.name, own_name_)) return true;
        return FindLocal(e.name) >= 0 || local_consts_.count(e.name) > 0;
      case ExprKind::Paren:
      case ExprKind::Unary:
        return e.object && Pure(*e.object, depth + 1);
      case ExprKind::Binary:
        return e.object && e.right && Pure(*e.object, depth + 1) && Pure(*e.right, depth + 1);
      default:
        return false;
    }
  }

  // `local op expression` with a pure expression: the expression first, then an operator
  // that takes its left operand from the local, saving the push of the local.
  bool LocalLeftStep(const Expr& left, const Expr& e) {
    Op op;
    switch (e.bin) {
      case BinOp::Add:
        op = Op::AddLeft;
        break;
      case BinOp::Sub:
        op = Op::SubLeft;
        break;
      case BinOp::Mul:
        op = Op::MulLeft;
        break;
      default:
        return false;
    }
    if (left.kind != ExprKind::Name || left.has_args) return false;
    if (!own_name_.empty() && EqualsNoCase(left.name, own_name_)) return false;
    const int32_t local = FindLocal(left.name);
    if (local < 0 || (static_cast<size_t>(local) < ref_.size() && ref_[local])) return false;
    const Expr& right = *e.right;
    if (right.kind == ExprKind::Literal || (right.kind == ExprKind::Name && !right.has_args))
      return false;  // the K and L forms cover these
    if (!Pure(right)) return false;
    Expression(right);
    Emit(op, 0, local);
    return true;
  }

  // The fused form of an operator whose right operand is a constant or a local, or Nop.
  Op FusedOp(BinOp op, bool constant) const {
    static constexpr Op kConst[] = {Op::AddK, Op::SubK, Op::MulK, Op::EqK, Op::NeK,
                                    Op::LtK,  Op::LeK,  Op::GtK,  Op::GeK};
    static constexpr Op kLocal[] = {Op::AddL, Op::SubL, Op::MulL, Op::EqL, Op::NeL,
                                    Op::LtL,  Op::LeL,  Op::GtL,  Op::GeL};
    int i;
    switch (op) {
      case BinOp::Add:
        i = 0;
        break;
      case BinOp::Sub:
        i = 1;
        break;
      case BinOp::Mul:
        i = 2;
        break;
      case BinOp::Eq:
        i = 3;
        break;
      case BinOp::Ne:
        i = 4;
        break;
      case BinOp::Lt:
        i = 5;
        break;
      case BinOp::Le:
        i = 6;
        break;
      case BinOp::Gt:
        i = 7;
        break;
      case BinOp::Ge:
        i = 8;
        break;
      default:
        return Op::Nop;
    }
    return constant ? kConst[i] : kLocal[i];
  }

  // Comparison hints: a literal number against text converts the text, literal text against a
  // number converts the number. True and False are no such numbers: "" = True is simply False.
  static bool HintLiteral(const Expr& e) {
    return IsLiteral(e) && !(e.kind == ExprKind::Literal && e.value.type() == VarType::Boolean);
  }
  static uint8_t LiteralHints(bool left, bool right) {
    return (left ? kLeftIsLiteral : 0) | (right ? kRightIsLiteral : 0);
  }

  void BinaryStep(const Expr& e) {
    const bool left_literal = HintLiteral(*e.object);
    const uint8_t fused_hints = LiteralHints(left_literal, false);
    if (e.right->kind == ExprKind::Literal && e.right->value.type() != VarType::Error) {
      const Op op = FusedOp(e.bin, true);
      if (op != Op::Nop) {
        Emit(op, 0, Constant(e.right->value), 0, LiteralHints(left_literal, HintLiteral(*e.right)));
        return;
      }
    }
    if (e.right->kind == ExprKind::Name && !e.right->has_args) {
      const Op op = FusedOp(e.bin, false);
      const Resolved r = Resolve(e.right->name);
      if (op != Op::Nop && r.kind == NameKind::Local &&
          !(!own_name_.empty() && EqualsNoCase(e.right->name, own_name_))) {
        Emit(op, 0, r.index, 0, fused_hints);
        return;
      }
    }
    Expression(*e.right);
    static constexpr Op kOps[] = {Op::Add, Op::Sub, Op::Mul,    Op::Div, Op::IntDiv,
                                  Op::Mod, Op::Pow, Op::Concat, Op::Eq,  Op::Ne,
                                  Op::Lt,  Op::Le,  Op::Gt,     Op::Ge,  Op::Is,
                                  Op::And, Op::Or,  Op::Xor,    Op::Eqv, Op::Imp};
    Emit(kOps[static_cast<int>(e.bin)], -1, 0, 0,
         LiteralHints(left_literal, HintLiteral(*e.right)));
  }

  // An element of an array variable, `name(i, ...)`, pushed with a reference to it (ArgElem);
  // false, with nothing emitted, for any other expression.
  bool PushElementRef(const Expr& e) {
    if (e.kind == ExprKind::Index && e.object && !e.args.empty()) {
      // A deeper level, `name(i)(j)`: the element of the element, still by reference.
      if (!PushElementRef(*e.object)) return false;
      for (const auto& index : e.args)
        Expression(*index);
      const auto n = static_cast<uint32_t>(e.args.size());
      Emit(Op::ArgElemOf, -static_cast<int>(n), 0, n);
      return true;
    }
    if (e.kind != ExprKind::Name || !e.has_args || e.args.empty()) return false;
    if (!own_name_.empty() && EqualsNoCase(e.name, own_name_)) return false;
    const Resolved r = Resolve(e.name);
    if (!IsVariable(r.kind) || r.kind == NameKind::Result) return false;
    uint32_t inner_mask = 0;
    if (r.kind == NameKind::Global) {
      Arguments(e.args, inner_mask);
    } else {
      for (const auto& index : e.args)
        Expression(*index);
    }
    const auto n = static_cast<uint32_t>(e.args.size());
    Emit(Op::ArgElem, 1 - static_cast<int>(n), r.index, n, VarKindOf(r.kind),
         static_cast<int32_t>(inner_mask));
    return true;
  }

  void Arguments(const std::vector<ExprPtr>& args, uint32_t& mask) {
    if (args.size() > 0xFFFF) Fail(kCeOutOfMemory, cur_line_, cur_col_);
    for (size_t i = 0; i < args.size(); ++i) {
      const Expr& a = *args[i];
      if (a.kind == ExprKind::Name && !a.has_args && i < 32 && !own_name_.empty() &&
          EqualsNoCase(a.name, own_name_)) {
        // A function's own name, bare, is the value it will return, not a call of itself.
        Emit(Op::ArgLocal, 1, proc_.result_slot);
        mask |= 1u << i;
        continue;
      }
      if (a.kind == ExprKind::Name && !a.has_args && i < 32) {
        const Resolved r = Resolve(a.name);
        if (IsVariable(r.kind)) {
          static constexpr Op kArgOps[] = {Op::ArgLocal, Op::ArgRef, Op::ArgGlobal, Op::ArgField};
          Emit(kArgOps[VarKindOf(r.kind)], 1,
               r.kind == NameKind::Result ? proc_.result_slot : r.index);
          mask |= 1u << i;
          continue;
        }
      }
      if (a.kind == ExprKind::Name && a.has_args && !a.args.empty() && i < 32) {
        const Resolved r = Resolve(a.name);
        if (IsVariable(r.kind)) {
          // A global name may turn out to be a function, whose parameters are ByRef like any
          // call's: its arguments go on the stack as references too (in b), in case.
          uint32_t inner_mask = 0;
          if (r.kind == NameKind::Global) {
            Arguments(a.args, inner_mask);
          } else {
            for (const auto& index : a.args)
              Expression(*index);
          }
          const auto n = static_cast<uint32_t>(a.args.size());
          Emit(Op::ArgElem, 1 - static_cast<int>(n),
               r.kind == NameKind::Result ? proc_.result_slot : r.index, n, VarKindOf(r.kind),
               static_cast<int32_t>(inner_mask));
          mask |= 1u << i;
          continue;
        }
      }
      Expression(a);
    }
  }

  // A name as a value (want) or as a call statement (!want).
  void NameValue(const Expr& e, bool want) {
    const uint8_t want_flag = want ? kWantResult : 0;
    if (!own_name_.empty() && EqualsNoCase(e.name, own_name_) && !e.has_args) {
      if (want) Emit(Op::LoadLocal, 1, proc_.result_slot);
      return;
    }
    Resolved r = Resolve(e.name);
    if (!own_name_.empty() && EqualsNoCase(e.name, own_name_) && cls_ &&
        r.kind != NameKind::Method) {
      r = {NameKind::Global, LinkSlot(e.name), {}};
    }
    const auto argc = static_cast<uint32_t>(e.args.size());
    switch (r.kind) {
      case NameKind::Constant:
        if (e.has_args) Fail(kCeExpectedEndOfStatement, e.line, e.column);
        if (want) Emit(Op::PushConst, 1, Constant(r.value));
        return;
      case NameKind::Method: {
        uint32_t mask = 0;
        Arguments(e.args, mask);
        Emit(Op::CallMethod, -static_cast<int>(argc) + (want ? 1 : 0), r.index, argc, want_flag,
             static_cast<int32_t>(mask));
        return;
      }
      case NameKind::Global:
        if (!e.has_args && want) {
          Emit(Op::LoadGlobal, 1, r.index);
          return;
        }
        {
          uint32_t mask = 0;
          Arguments(e.args, mask);
          Emit(Op::CallGlobal, -static_cast<int>(argc) + (want ? 1 : 0), r.index, argc, want_flag,
               static_cast<int32_t>(mask));
        }
        return;
      default:
        break;
    }
    const uint8_t kind = VarKindOf(r.kind);
    const int32_t slot = r.kind == NameKind::Result ? proc_.result_slot : r.index;
    if (!e.has_args && want) {
      static constexpr Op kLoads[] = {Op::LoadLocal, Op::LoadRef, Op::LoadGlobal, Op::LoadField};
      Emit(kLoads[kind], 1, slot);
      return;
    }
    uint32_t mask = 0;
    Arguments(e.args, mask);
    Emit(Op::Index, -static_cast<int>(argc) + (want ? 1 : 0), slot, argc,
         static_cast<uint8_t>(kind | want_flag), static_cast<int32_t>(mask));
  }

  // Outside any With a leading dot still compiles: the statement fails only when it runs.
  void WithObject(const Expr&) {
    if (with_slots_.empty()) {
      Emit(Op::Raise, 0, kErrUnqualifiedReference);
      Emit(Op::PushEmpty, 1);
      return;
    }
    Emit(Op::LoadLocal, 1, with_slots_.back());
  }

  void MemberValue(const Expr& e, bool want) {
    // Me.x inside the class reaches private members and fields directly.
    if (e.object && e.object->kind == ExprKind::Me && cls_) {
      const int32_t m = cls_->Find(e.name);
      if (m >= 0) {
        Expr inner;
        inner.kind = ExprKind::Name;
        inner.line = e.line;
        inner.column = e.column;
        inner.name = e.name;
        inner.has_args = e.has_args;
        // Borrow the arguments for the duration of the call.
        auto& args = const_cast<std::vector<ExprPtr>&>(e.args);
        inner.args = std::move(args);
        const String saved = own_name_;
        own_name_ = String();
        NameValue(inner, want);
        own_name_ = saved;
        args = std::move(inner.args);
        return;
      }
    }
    if (e.object) {
      Expression(*e.object);
    } else {
      WithObject(e);
    }
    uint32_t mask = 0;
    Arguments(e.args, mask);
    const auto argc = static_cast<uint32_t>(e.args.size());
    const uint8_t flags =
        (want ? kWantResult : 0) | (e.has_args && e.args.empty() ? kEmptyParens : 0);
    Emit(Op::CallMember, -static_cast<int>(argc) - 1 + (want ? 1 : 0), Site(e.name, e.object.get()),
         argc, flags, static_cast<int32_t>(mask));
  }

  // --- statements ---------------------------------------------------------------------------
  void Block(const vbs::Block& body) {
    for (const auto& s : body)
      Statement(*s);
  }

  void Statement(const Stmt& s) {
    MarkStatement(s.line, s.column);
    depth_ = 0;
    switch (s.kind) {
      case StmtKind::Assign:
        Assign(s);
        break;
      case StmtKind::Call:
        CallStatement(*s.target);
        break;
      case StmtKind::Dim:
        Dim(s);
        break;
      case StmtKind::ReDim:
        ReDim(s);
        break;
      case StmtKind::Const:
        Const(s);
        break;
      case StmtKind::Erase:
        Erase(s);
        break;
      case StmtKind::If:
        If(s);
        break;
      case StmtKind::Select:
        Select(s);
        break;
      case StmtKind::For:
        For(s);
        break;
      case StmtKind::ForEach:
        ForEach(s);
        break;
      case StmtKind::Do:
        Do(s);
        break;
      case StmtKind::While:
        While(s);
        break;
      case StmtKind::Exit:
        Exit(s);
        break;
      case StmtKind::With:
        With(s);
        break;
      case StmtKind::OnErrorResumeNext:
        Emit(Op::OnError, 0, 1);
        break;
      case StmtKind::OnErrorGoto0:
        Emit(Op::OnError, 0, 0);
        break;
      case StmtKind::Nop:
        Emit(Op::Nop, 0);
        break;
    }
  }

  // The leftmost operand of a chain of `&`, when it is the plain name `name`.
  static bool StartsWithName(const Expr& e, StringView name, std::vector<const Expr*>& rest) {
    const Expr* cur = &e;
    while (cur->kind == ExprKind::Binary && cur->bin == BinOp::Concat) {
      rest.push_back(cur->right.get());
      cur = cur->object.get();
    }
    if (rest.empty()) return false;
    return cur->kind == ExprKind::Name && !cur->has_args && EqualsNoCase(cur->name, name);
  }

  void Assign(const Stmt& s) {
    const Expr& t = *s.target;
    const uint8_t set = s.flag ? kSetFlag : 0;
    if (t.kind == ExprKind::Name && !t.has_args) {
      Resolved r = Resolve(t.name);
      if (!own_name_.empty() && EqualsNoCase(t.name, own_name_)) {
        r = {NameKind::Result, proc_.result_slot, {}};
      }
      if (r.kind == NameKind::Constant) Fail(kCeSyntax, t.line, t.column);
      if (IsArrayVariable(t.name, r)) {
        // A variable declared as an array keeps its array: assigning to it is a type mismatch.
        Expression(*s.value);
        Emit(Op::Pop, -1);
        Emit(Op::Raise, 0, kErrTypeMismatch);
        return;
      }
      if (r.kind == NameKind::Method) {
        // A property of Me assigned from inside the class.
        Emit(Op::PushMe, 1);
        Expression(*s.value);
        Emit(Op::StoreMember, -2, Site(t.name), 0, set);
        return;
      }
      const uint8_t kind = VarKindOf(r.kind);
      const int32_t slot = r.kind == NameKind::Result ? proc_.result_slot : r.index;
      std::vector<const Expr*> rest;
      if (!s.flag && StartsWithName(*s.value, t.name, rest)) {
        for (auto it = rest.rbegin(); it != rest.rend(); ++it) {
          Expression(**it);
          Emit(Op::Append, -1, slot, 0, kind);
        }
        return;
      }
      Expression(*s.value);
      static constexpr Op kStores[] = {Op::StoreLocal, Op::StoreRef, Op::StoreGlobal,
                                       Op::StoreField};
      Emit(kStores[kind], -1, slot, 0, set);
      return;
    }
    const auto argc = static_cast<uint32_t>(t.args.size());
    if (t.kind == ExprKind::Name) {
      Resolved r = Resolve(t.name);
      if (!own_name_.empty() && EqualsNoCase(t.name, own_name_))
        r = {NameKind::Result, proc_.result_slot, {}};
      if (r.kind == NameKind::Constant) Fail(kCeSyntax, t.line, t.column);
      if (r.kind == NameKind::Method) {
        Emit(Op::PushMe, 1);
        for (const auto& a : t.args)
          Expression(*a);
        Expression(*s.value);
        Emit(Op::StoreMember, -static_cast<int>(argc) - 2, Site(t.name), argc, set);
        return;
      }
      for (const auto& a : t.args)
        Expression(*a);
      Expression(*s.value);
      const int32_t slot = r.kind == NameKind::Result ? proc_.result_slot : r.index;
      Emit(Op::StoreIndex, -static_cast<int>(argc) - 1, slot, argc,
           static_cast<uint8_t>(VarKindOf(r.kind) | set));
      return;
    }
    if (t.kind == ExprKind::Member) {
      if (t.object && t.object->kind == ExprKind::Me && cls_ && cls_->Find(t.name) >= 0 &&
          cls_->members[cls_->Find(t.name)].field >= 0) {
        const int32_t field = cls_->members[cls_->Find(t.name)].field;
        for (const auto& a : t.args)
          Expression(*a);
        Expression(*s.value);
        if (t.has_args) {
          Emit(Op::StoreIndex, -static_cast<int>(argc) - 1, field, argc,
               static_cast<uint8_t>(kVarField | set));
        } else {
          Emit(Op::StoreField, -1, field, 0, set);
        }
        return;
      }
      if (t.object) {
        Expression(*t.object);
      } else {
        WithObject(t);
      }
      for (const auto& a : t.args)
        Expression(*a);
      Expression(*s.value);
      Emit(Op::StoreMember, -static_cast<int>(argc) - 2, Site(t.name, t.object.get()), argc, set);
      return;
    }
    if (t.kind == ExprKind::Index) {
      // `x(0)(1) = v`: when x(0) is an element of an array variable, it is reached by reference
      // (b = 1), so an array held in the element is changed where it lives.
      const bool by_ref = PushElementRef(*t.object);
      if (!by_ref) Expression(*t.object);
      for (const auto& a : t.args)
        Expression(*a);
      Expression(*s.value);
      Emit(Op::StoreIndexValue, -static_cast<int>(argc) - 2, 0, argc, set, by_ref ? 1 : 0);
      return;
    }
    Fail(kCeExpectedStatement, t.line, t.column);
  }

  void CallStatement(const Expr& e) {
    switch (e.kind) {
      case ExprKind::Name:
        NameValue(e, false);
        return;
      case ExprKind::Member:
        MemberValue(e, false);
        return;
      case ExprKind::Index:
        Expression(e);
        Emit(Op::Pop, -1);
        return;
      default:
        Fail(kCeExpectedStatement, e.line, e.column);
    }
  }

  void Dim(const Stmt& s) {
    for (const auto& v : s.vars) {
      if (!proc_.is_top_level) continue;  // locals were declared by the first walk
      if (keeps_created_names_ && FindLocal(v.name) >= 0) {
        if (v.is_array) {
          const Resolved r = Resolve(v.name);
          for (const auto& b : v.bounds)
            Emit(Op::PushConst, 1, Constant(ConstantValue(*b)));
          Emit(Op::DimArray, -static_cast<int>(v.bounds.size()), r.index,
               static_cast<uint32_t>(v.bounds.size()), VarKindOf(r.kind));
        }
        continue;
      }
      // A name that an earlier piece of code already declared (a later ExecuteGlobal) may not
      // be declared as an array over the array it holds.
      const int32_t again = v.is_array && ExistsInModule(v.name) ? 1 : 0;
      module_variables.push_back(v.name);
      if (!v.is_array) continue;
      for (const auto& b : v.bounds)
        Emit(Op::PushConst, 1, Constant(ConstantValue(*b)));
      Emit(Op::DimArray, -static_cast<int>(v.bounds.size()), LinkSlot(v.name),
           static_cast<uint32_t>(v.bounds.size()), kVarGlobal, again);
    }
    if (!proc_.is_top_level) {
      // Dynamic arrays of a procedure (`Dim a()`) start as empty arrays.
      for (const auto& v : s.vars) {
        if (v.is_array && v.bounds.empty()) {
          const Resolved r = Resolve(v.name);
          Emit(Op::DimArray, 0, r.index, 0, VarKindOf(r.kind));
        }
      }
    }
  }

  void ReDim(const Stmt& s) {
    for (size_t i = 0; i < s.redim_targets.size(); ++i) {
      const Expr& t = *s.redim_targets[i];
      const auto& bounds = s.vars[i].bounds;
      const auto n = static_cast<uint32_t>(bounds.size());
      if (t.kind == ExprKind::Member) {
        if (t.object) {
          Expression(*t.object);
        } else {
          WithObject(t);
        }
        for (const auto& b : bounds)
          Expression(*b);
        Emit(Op::ReDimMember, -static_cast<int>(n) - 1, Site(t.name), n, 0, s.flag ? 1 : 0);
        continue;
      }
      if (proc_.is_top_level && FindLocal(t.name) < 0 && !ExistsInModule(t.name))
        module_variables.push_back(t.name);
      Resolved r = Resolve(t.name);
      // Inside a function its name is the variable of its result.
      if (!own_name_.empty() && EqualsNoCase(t.name, own_name_))
        r = {NameKind::Result, proc_.result_slot, {}};
      if (!IsVariable(r.kind)) Fail(kCeSyntax, t.line, t.column);
      for (const auto& b : bounds)
        Expression(*b);
      Emit(Op::ReDim, -static_cast<int>(n),
           r.kind == NameKind::Result ? proc_.result_slot : r.index, n, VarKindOf(r.kind),
           s.flag ? 1 : 0);
    }
  }

  void Const(const Stmt& s) {
    for (const auto& v : s.vars) {
      Variant value = ConstantValue(*v.value);
      if (proc_.is_top_level) {
        module_constants.emplace_back(v.name, value);
      }
      local_consts_[v.name] = std::move(value);
    }
  }

  void Erase(const Stmt& s) {
    const Expr& t = *s.target;
    if (t.kind != ExprKind::Name) Fail(kCeSyntax, t.line, t.column);
    const Resolved r = Resolve(t.name);
    if (!IsVariable(r.kind)) Fail(kCeSyntax, t.line, t.column);
    Emit(Op::Erase, 0, r.index, 0, VarKindOf(r.kind));
  }

  // An error in a condition under On Error Resume Next goes on in the block it guards.
  void If(const Stmt& s) {
    std::vector<size_t> ends;
    for (size_t i = 0; i < s.conditions.size(); ++i) {
      if (i > 0) MarkStatement(s.clause_pos[i - 1].first, s.clause_pos[i - 1].second);
      Expression(*s.conditions[i]);
      const size_t skip = Emit(Op::JmpFalse, -1);
      Block(s.blocks[i]);
      if (i + 1 < s.blocks.size()) {
        MarkResumePoint();
        ends.push_back(Emit(Op::Jmp, 0));
      }
      Patch(skip, Here());
    }
    if (s.has_else) Block(s.blocks.back());
    for (size_t e : ends)
      Patch(e, Here());
  }

  // Each Case's tests sit right before its body, so an error in a Case value resumes in that
  // Case; an error in the tested value resumes at a jump past the whole statement.
  void Select(const Stmt& s) {
    const int32_t hidden = Hidden();
    Expression(*s.value);
    Emit(Op::StoreLocal, -1, hidden);
    const size_t to_tests = Emit(Op::Jmp, 0);
    std::vector<size_t> ends;
    MarkResumePoint();
    ends.push_back(Emit(Op::Jmp, 0));
    Patch(to_tests, Here());
    for (const auto& clause : s.cases) {
      SetPosition(s.line, s.column);
      std::vector<size_t> to_body;
      for (const auto& v : clause.values) {
        Emit(Op::LoadLocal, 1, hidden);
        Expression(*v);
        Emit(Op::Eq, -1, 0, 0, HintLiteral(*v) ? kRightIsLiteral : 0);
        to_body.push_back(Emit(Op::JmpTrue, -1));
      }
      const size_t to_next = clause.values.empty() ? SIZE_MAX : Emit(Op::Jmp, 0);
      for (size_t j : to_body)
        Patch(j, Here());
      MarkResumePoint();
      Emit(Op::Nop, 0);
      Block(clause.body);
      MarkResumePoint();
      ends.push_back(Emit(Op::Jmp, 0));
      if (to_next != SIZE_MAX) Patch(to_next, Here());
    }
    for (size_t e : ends)
      Patch(e, Here());
    SetPosition(s.line, s.column);
    Emit(Op::PushEmpty, 1);
    Emit(Op::StoreLocal, -1, hidden);
  }

  struct LoopScope {
    ExitKind kind;
    std::vector<size_t> exits;
  };

  bool IsArrayVariable(StringView name, const Resolved& r) const {
    switch (r.kind) {
      case NameKind::Local:
        return array_locals_.count(name) != 0;
      case NameKind::Global:
        return unit_.arrays.count(name) != 0;
      case NameKind::Field:
        return cls_ && cls_->fields[r.index].is_array;
      default:
        return false;
    }
  }

  Resolved LoopVariable(const Expr& var) {
    Resolved r = Resolve(var.name);
    if (!own_name_.empty() && EqualsNoCase(var.name, own_name_))
      r = {NameKind::Result, proc_.result_slot, {}};
    if (!IsVariable(r.kind)) Fail(kCeInvalidForVariable, var.line, var.column);
    if (r.kind == NameKind::Result) r.index = proc_.result_slot;
    return r;
  }

  // The hidden end and step start out Empty: a header that failed under On Error Resume Next
  // enters the body once and its Next then finds no loop to count.
  void For(const Stmt& s) {
    const Resolved r = LoopVariable(*s.target);
    const int32_t hidden = Hidden();
    Hidden();
    Emit(Op::PushEmpty, 1);
    Emit(Op::StoreLocal, -1, hidden + 1);
    Expression(*s.value);
    Expression(*s.to);
    if (s.step) {
      Expression(*s.step);
    } else {
      Emit(Op::PushConst, 1, Constant(Variant(int16_t{1})));
    }
    const size_t init =
        Emit(Op::ForInit, -3, r.index, static_cast<uint32_t>(hidden), VarKindOf(r.kind));
    const size_t body = Here();
    loops_.push_back({ExitKind::For, {}});
    Block(s.blocks[0]);
    MarkStatement(s.line, s.column);
    const uint8_t kind = VarKindOf(r.kind);
    Emit(kind == kVarGlobal ? Op::ForNextGlobal : Op::ForNext, 0, r.index,
         static_cast<uint32_t>(hidden), kind, static_cast<int32_t>(body));
    PatchB(init, Here());
    EndLoop();
  }

  void ForEach(const Stmt& s) {
    const Resolved r = LoopVariable(*s.target);
    const int32_t hidden = Hidden();
    Hidden();
    // The group passes through the loop's own slot, where the loop starts as a statement of
    // its own: when the expression fails under On Error Resume Next the loop still starts, on
    // Empty, and reports that it has no collection.
    Expression(*s.value);
    Emit(Op::StoreLocal, -1, hidden, 0, kRawStore);
    MarkResumePoint();
    Emit(Op::LoadLocal, 1, hidden);
    Emit(Op::ForEachInit, -1, 0, static_cast<uint32_t>(hidden));
    const size_t next =
        Emit(Op::ForEachNext, 0, r.index, static_cast<uint32_t>(hidden), VarKindOf(r.kind));
    loops_.push_back({ExitKind::For, {}});
    Block(s.blocks[0]);
    MarkResumePoint();
    Emit(Op::Jmp, 0, static_cast<int32_t>(next));
    PatchB(next, Here());
    EndLoop();
    Emit(Op::PushEmpty, 1);
    Emit(Op::StoreLocal, -1, hidden);
  }

  void EndLoop() {
    for (size_t e : loops_.back().exits)
      Patch(e, Here());
    loops_.pop_back();
  }

  void Do(const Stmt& s) {
    const size_t top = Here();
    loops_.push_back({ExitKind::Do, {}});
    size_t exit_jump = SIZE_MAX;
    if (s.test == LoopTest::WhileBefore || s.test == LoopTest::UntilBefore) {
      Expression(*s.value);
      exit_jump = Emit(s.test == LoopTest::WhileBefore ? Op::JmpFalse : Op::JmpTrue, -1);
    }
    Block(s.blocks[0]);
    MarkStatement(s.clause_pos[0].first, s.clause_pos[0].second);
    if (s.test == LoopTest::WhileAfter || s.test == LoopTest::UntilAfter) {
      Expression(*s.value);
      Emit(s.test == LoopTest::WhileAfter ? Op::JmpTrue : Op::JmpFalse, -1,
           static_cast<int32_t>(top));
    } else {
      Emit(Op::Jmp, 0, static_cast<int32_t>(top));
    }
    if (exit_jump != SIZE_MAX) Patch(exit_jump, Here());
    EndLoop();
  }

  void While(const Stmt& s) {
    const size_t top = Here();
    Expression(*s.value);
    const size_t exit_jump = Emit(Op::JmpFalse, -1);
    Block(s.blocks[0]);
    MarkResumePoint();
    Emit(Op::Jmp, 0, static_cast<int32_t>(top));
    Patch(exit_jump, Here());
  }

  void Exit(const Stmt& s) {
    if (s.exit == ExitKind::Do || s.exit == ExitKind::For) {
      for (auto it = loops_.rbegin(); it != loops_.rend(); ++it) {
        if (it->kind == s.exit) {
          it->exits.push_back(Emit(Op::Jmp, 0));
          return;
        }
      }
      Fail(kCeInvalidExit, s.line, s.column);
    }
    if (proc_.is_top_level) Fail(kCeInvalidExit, s.line, s.column);
    Emit(Op::Return, 0);
  }

  void With(const Stmt& s) {
    const int32_t hidden = Hidden();
    Expression(*s.target);
    Emit(Op::StoreLocal, -1, hidden, 0, kSetFlag);
    with_slots_.push_back(hidden);
    Block(s.blocks[0]);
    with_slots_.pop_back();
    Emit(Op::PushEmpty, 1);
    Emit(Op::StoreLocal, -1, hidden);
  }

  Module& module_;
  Proc& proc_;
  const UnitNames& unit_;
  ClassInfo* cls_;
  std::unordered_map<String, int32_t, NoCaseHash, NoCaseEqual> locals_;
  std::unordered_map<String, Variant, NoCaseHash, NoCaseEqual> local_consts_;
  std::unordered_map<String, int32_t, NoCaseHash, NoCaseEqual> links_;
  std::vector<bool> ref_;
  std::vector<String> candidates_;
  bool keeps_created_names_ = false;
  std::vector<String> top_dims_;
  std::vector<String> redim_names_;
  std::vector<const VarDecl*> arrays_;
  NameSet array_locals_;
  std::vector<int32_t> with_slots_;
  std::vector<LoopScope> loops_;
  String own_name_;
  int32_t cur_line_ = 1;
  int32_t cur_col_ = 1;
  bool pending_start_ = false;
  int depth_ = 0;
};

void CollectTopNames(const Block& body, UnitNames& unit) {
  NameSet& names = unit.globals;
  for (const auto& s : body) {
    switch (s->kind) {
      case StmtKind::Dim:
        for (const auto& v : s->vars) {
          names.insert(v.name);
          if (v.is_array) unit.arrays.insert(v.name);
        }
        break;
      case StmtKind::Const:
        for (const auto& v : s->vars)
          names.insert(v.name);
        break;
      case StmtKind::Assign:
      case StmtKind::For:
      case StmtKind::ForEach:
        if (s->target->kind == ExprKind::Name && !s->target->has_args)
          names.insert(s->target->name);
        break;
      case StmtKind::ReDim:
        for (const auto& t : s->redim_targets)
          if (t->kind == ExprKind::Name) names.insert(t->name);
        break;
      default:
        break;
    }
    for (const auto& b : s->blocks)
      CollectTopNames(b, unit);
    for (const auto& c : s->cases)
      CollectTopNames(c.body, unit);
  }
}

// The Dim and Const names of a script's own level, wherever their statements are nested.
void CheckTopDeclarations(const Block& body, NameSet& seen) {
  for (const auto& s : body) {
    if (s->kind == StmtKind::Dim || s->kind == StmtKind::Const) {
      for (const auto& v : s->vars) {
        if (!seen.insert(v.name).second) Fail(kCeNameRedefined, v.line, v.column);
      }
    }
    for (const auto& b : s->blocks)
      CheckTopDeclarations(b, seen);
    for (const auto& c : s->cases)
      CheckTopDeclarations(c.body, seen);
  }
}

// One piece of code declares each variable and constant of its own level once. Procedures are
// left out on purpose: a later definition replaces an earlier one, even within one piece.
void CheckUniqueNames(const Program& program) {
  NameSet seen;
  CheckTopDeclarations(program.body, seen);
}

std::unique_ptr<Proc> NewProc(Module& module, const String& source, bool explicit_) {
  auto p = std::make_unique<Proc>();
  p->module = &module;
  p->source = source;
  p->option_explicit = explicit_;
  return p;
}

Ref<ClassInfo> BuildClass(const ClassDecl& decl, Module& module) {
  auto cls = MakeRef<ClassInfo>();
  cls->name = decl.name;
  cls->module = Ref<Module>(&module);
  auto add = [&](const String& name, int32_t line, int32_t column) -> ClassMember& {
    const int32_t existing = cls->Find(name);
    if (existing >= 0) return cls->members[existing];
    (void)line;
    (void)column;
    cls->members.push_back(ClassMember{name});
    cls->index.emplace(name, static_cast<int32_t>(cls->members.size() - 1));
    return cls->members.back();
  };
  for (const auto& f : decl.fields) {
    if (cls->Find(f.var.name) >= 0) Fail(kCeNameRedefined, f.var.line, f.var.column);
    ClassMember& m = add(f.var.name, f.var.line, f.var.column);
    m.is_public = f.is_public;
    m.field = static_cast<int32_t>(cls->fields.size());
    FieldInit init;
    init.is_array = f.var.is_array;
    for (const auto& b : f.var.bounds)
      init.uppers.push_back(ToLong(ConstantValue(*b)));
    cls->fields.push_back(std::move(init));
  }
  // A property's Get takes the same indexes as its Let and Set, which take the value as well.
  std::unordered_map<String, size_t, NoCaseHash, NoCaseEqual> property_indexes;
  for (const auto& p : decl.procs) {
    const int32_t existing = cls->Find(p->name);
    const bool property = p->kind >= ProcKind::PropertyGet;
    if (existing >= 0) {
      const ClassMember& m = cls->members[existing];
      if (m.field >= 0 || m.method || !property) Fail(kCeNameRedefined, p->line, p->column);
    }
    if (property) {
      const size_t indexes =
          p->params.size() - (p->kind == ProcKind::PropertyGet || p->params.empty() ? 0 : 1);
      const auto [it, first] = property_indexes.emplace(p->name, indexes);
      if (!first && it->second != indexes) Fail(kCeInconsistentArgs, p->line, p->column);
    }
    ClassMember& m = add(p->name, p->line, p->column);
    m.is_public = p->is_public;
    if (p->is_default) {
      if (cls->default_member >= 0 && cls->default_member != cls->Find(p->name))
        Fail(kCeMultipleDefault, p->line, p->column);
      cls->default_member = cls->Find(p->name);
    }
  }
  return cls;
}

}  // namespace

CompiledUnit CompileProgram(const Program& program, Module& module, const String& source,
                            const Proc* outer, const std::vector<String>* scope_names) {
  CheckUniqueNames(program);
  CompiledUnit unit;
  UnitNames names;
  CollectTopNames(program.body, names);
  for (const auto& p : program.procs)
    names.globals.insert(p->name);
  for (const auto& c : program.classes)
    names.globals.insert(c->name);

  // Procedures of the same name: the last one wins, as in VBScript.
  for (const auto& decl : program.procs) {
    auto proc = NewProc(module, source, program.option_explicit);
    ProcCompiler pc(module, *proc, names, nullptr, nullptr);
    pc.CompileProcedure(*decl);
    unit.procs.push_back(std::move(proc));
  }
  for (const auto& cdecl : program.classes) {
    Ref<ClassInfo> cls = BuildClass(*cdecl, module);
    for (const auto& decl : cdecl->procs) {
      auto proc = NewProc(module, source, program.option_explicit);
      proc->cls = cls.get();
      ProcCompiler pc(module, *proc, names, cls.get(), nullptr);
      pc.CompileProcedure(*decl);
      ClassMember& m = cls->members[cls->Find(decl->name)];
      const Proc* p = proc.get();
      switch (decl->kind) {
        case ProcKind::Sub:
        case ProcKind::Function:
          if (decl->kind == ProcKind::Sub && EqualsNoCase(decl->name, u"Class_Initialize")) {
            if (!decl->params.empty()) Fail(kCeInitTermArgs, decl->line, decl->column);
            cls->initialize = p;
          }
          if (decl->kind == ProcKind::Sub && EqualsNoCase(decl->name, u"Class_Terminate")) {
            if (!decl->params.empty()) Fail(kCeInitTermArgs, decl->line, decl->column);
            cls->terminate = p;
          }
          m.method = p;
          break;
        case ProcKind::PropertyGet:
          m.get = p;
          break;
        case ProcKind::PropertyLet:
          m.let = p;
          break;
        case ProcKind::PropertySet:
          m.set = p;
          break;
      }
      unit.class_procs.push_back(std::move(proc));
    }
    unit.classes.push_back(std::move(cls));
  }
  unit.top = NewProc(module, source, program.option_explicit);
  ClassInfo* outer_cls = outer ? outer->cls : nullptr;
  unit.top->cls = outer_cls;
  ProcCompiler top(module, *unit.top, names, outer_cls, outer, scope_names);
  top.CompileTop(program.body);
  unit.constants = std::move(top.module_constants);
  unit.variables = std::move(top.module_variables);
  return unit;
}

std::unique_ptr<Proc> CompileExpression(const Expr& expr, Module& module, const String& source,
                                        const Proc* outer, const std::vector<String>* scope_names) {
  auto proc = NewProc(module, source, false);
  UnitNames names;
  ClassInfo* outer_cls = outer ? outer->cls : nullptr;
  proc->cls = outer_cls;
  ProcCompiler pc(module, *proc, names, outer_cls, outer, scope_names);
  pc.CompileExpr(expr);
  return proc;
}

std::unique_ptr<Proc> Link(CompiledUnit& unit, Module& module) {
  for (const auto& name : unit.variables) {
    const Variant gone = module.Redefine(*module.Slot(name), SlotKind::Variable);
  }
  for (auto& [name, value] : unit.constants) {
    GlobalSlot* slot = module.Slot(name);
    const Variant gone = module.Redefine(*slot, SlotKind::Constant);
    slot->fixed = value;
  }
  for (auto& proc : unit.procs)
    module.Define(module.AddProc(std::move(proc)));
  for (auto& proc : unit.class_procs)
    module.AddProc(std::move(proc));
  for (auto& cls : unit.classes) {
    GlobalSlot* slot = module.Slot(cls->name);
    const Variant gone = module.Redefine(*slot, SlotKind::Class);
    slot->cls = cls.get();
    module.AddClass(cls);
  }
  unit.procs.clear();
  unit.class_procs.clear();
  unit.classes.clear();
  return std::move(unit.top);
}

LinkedUnit LinkKeeping(CompiledUnit& unit, Module& module) {
  LinkedUnit linked;
  for (const auto& proc : unit.procs)
    linked.procs.push_back(proc.get());
  for (const auto& cls : unit.classes)
    linked.classes.push_back(cls.get());
  linked.variables = unit.variables;
  linked.constants = unit.constants;
  linked.top = Link(unit, module);
  return linked;
}

void Relink(const LinkedUnit& linked, Module& module) {
  // The same steps as Link, in the same order, over definitions the module already owns.
  for (const auto& name : linked.variables) {
    const Variant gone = module.Redefine(*module.Slot(name), SlotKind::Variable);
  }
  for (const auto& [name, value] : linked.constants) {
    GlobalSlot* slot = module.Slot(name);
    const Variant gone = module.Redefine(*slot, SlotKind::Constant);
    slot->fixed = value;
  }
  for (const Proc* proc : linked.procs)
    module.Define(proc);
  for (ClassInfo* cls : linked.classes) {
    GlobalSlot* slot = module.Slot(cls->name);
    const Variant gone = module.Redefine(*slot, SlotKind::Class);
    slot->cls = cls;
  }
}

}  // namespace qv::vbs
