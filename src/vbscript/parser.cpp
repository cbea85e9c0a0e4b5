// A recursive-descent parser for VBScript. Statements are parsed line by line; the ambiguity
// of `Foo (a), b` (a call without parentheses whose first argument is parenthesised) is
// resolved by re-reading the argument list when the statement goes on after `(...)`.
#include "vbscript/parser.h"

#include <algorithm>

#include "vbscript/errors.h"
#include "vbscript/lexer.h"

namespace qv::vbs {
namespace {

// Deep nesting of expressions or blocks is refused before it can exhaust the C++ stack.
constexpr int kMaxNesting = 200;

class Parser {
 public:
  explicit Parser(StringView source) : toks_(Tokenize(source)) {}

  Program Program_() {
    Program prog;
    program_ = &prog;
    SkipNewLines();
    if (At(Tok::Option)) {
      Advance();
      if (!AtWord(u"Explicit")) Fail(kCeSyntax);
      Advance();
      prog.option_explicit = true;
      EndOfStatement();
    }
    while (!At(Tok::End)) {
      SkipNewLines();
      if (At(Tok::End)) break;
      ParseTopLevel(prog);
    }
    return prog;
  }

  ExprPtr ExpressionOnly() {
    SkipNewLines();
    ExprPtr e = Expression();
    SkipNewLines();
    if (!At(Tok::End)) Fail(kCeExpectedEndOfStatement);
    return e;
  }

 private:
  // --- token access -------------------------------------------------------------------------
  const Token& Cur() const { return toks_[pos_]; }
  const Token& Peek(size_t n = 1) const { return toks_[std::min(pos_ + n, toks_.size() - 1)]; }
  bool At(Tok k) const { return Cur().kind == k; }
  bool AtWord(StringView w) const { return At(Tok::Ident) && EqualsNoCase(Cur().text, w); }
  bool AtLineEnd() const { return At(Tok::NewLine) || At(Tok::End); }
  bool AtRealLineEnd() const { return At(Tok::End) || (At(Tok::NewLine) && Cur().text.empty()); }
  void Advance() {
    if (pos_ + 1 < toks_.size()) ++pos_;
  }
  bool Accept(Tok k) {
    if (!At(k)) return false;
    Advance();
    return true;
  }
  void Expect(Tok k, int32_t error) {
    if (!Accept(k)) Fail(error);
  }
  [[noreturn]] void Fail(int32_t number) const {
    throw CompileError(number, Cur().line, Cur().column);
  }
  void SkipNewLines() {
    while (At(Tok::NewLine))
      Advance();
  }
  void EndOfStatement() {
    if (At(Tok::End)) return;
    if (!At(Tok::NewLine)) Fail(kCeExpectedEndOfStatement);
    Advance();
  }
  // The End that closes a procedure or a class may follow a statement on its line.
  bool AtClosingEnd() const {
    if (!At(Tok::End_)) return false;
    const Token& next = Peek();
    if (next.kind == Tok::Class) return true;
    // In the Else or ElseIf part of a block If, End If may follow a statement on its line
    // (`Else x = 3 End If`); in the Then part it may not.
    if (next.kind == Tok::If) return in_else_part_;
    if (!in_proc_) return false;
    return next.kind == Tok::Sub || next.kind == Tok::Function ||
           (next.kind == Tok::Ident && EqualsNoCase(next.text, u"Property"));
  }
  void EndOfStatementOrClosingEnd() {
    if (!AtClosingEnd()) EndOfStatement();
  }
  // Names may be any identifier; after a dot even reserved words are member names.
  String Identifier() {
    if (!At(Tok::Ident)) Fail(kCeExpectedIdentifier);
    String name = Cur().text;
    Advance();
    return name;
  }
  String MemberName() {
    if (At(Tok::Ident) || (Cur().kind >= Tok::And && !Cur().text.empty())) {
      String name = Cur().text;
      Advance();
      return name;
    }
    Fail(kCeExpectedIdentifier);
  }

  struct Depth {
    explicit Depth(Parser& p) : p(p) {
      if (++p.depth_ > kMaxNesting) p.Fail(kCeOutOfMemory);
    }
    ~Depth() { --p.depth_; }
    Parser& p;
  };

  ExprPtr Make(ExprKind k, const Token& at) {
    auto e = std::make_unique<Expr>();
    e->kind = k;
    e->line = at.line;
    e->column = at.column;
    return e;
  }

  // --- expressions --------------------------------------------------------------------------
  ExprPtr Expression() {
    Depth d(*this);
    return Imp();
  }

  template <class Next>
  ExprPtr LeftAssoc(Next next, std::initializer_list<std::pair<Tok, BinOp>> ops) {
    ExprPtr left = (this->*next)();
    for (;;) {
      const Token& t = Cur();
      const auto* op =
          std::find_if(ops.begin(), ops.end(), [&](const auto& p) { return p.first == t.kind; });
      if (op == ops.end()) return left;
      auto e = Make(ExprKind::Binary, t);
      Advance();
      e->bin = op->second;
      e->object = std::move(left);
      e->right = (this->*next)();
      left = std::move(e);
    }
  }

  ExprPtr Imp() { return LeftAssoc(&Parser::Eqv, {{Tok::Imp, BinOp::Imp}}); }
  ExprPtr Eqv() { return LeftAssoc(&Parser::Xor, {{Tok::Eqv, BinOp::Eqv}}); }
  ExprPtr Xor() { return LeftAssoc(&Parser::Or, {{Tok::Xor, BinOp::Xor}}); }
  ExprPtr Or() { return LeftAssoc(&Parser::And, {{Tok::Or, BinOp::Or}}); }
  ExprPtr And() { return LeftAssoc(&Parser::Not, {{Tok::And, BinOp::And}}); }
  ExprPtr Not() {
    if (!At(Tok::Not)) return Compare();
    Depth d(*this);
    auto e = Make(ExprKind::Unary, Cur());
    Advance();
    e->un = UnOp::Not;
    e->object = Not();
    return e;
  }
  ExprPtr Compare() {
    return LeftAssoc(&Parser::Concat, {{Tok::Eq, BinOp::Eq},
                                       {Tok::Ne, BinOp::Ne},
                                       {Tok::Lt, BinOp::Lt},
                                       {Tok::Le, BinOp::Le},
                                       {Tok::Gt, BinOp::Gt},
                                       {Tok::Ge, BinOp::Ge},
                                       {Tok::Is, BinOp::Is}});
  }
  ExprPtr Concat() { return LeftAssoc(&Parser::Additive, {{Tok::Amp, BinOp::Concat}}); }
  ExprPtr Additive() {
    return LeftAssoc(&Parser::Modulo, {{Tok::Plus, BinOp::Add}, {Tok::Minus, BinOp::Sub}});
  }
  ExprPtr Modulo() { return LeftAssoc(&Parser::IntDiv, {{Tok::Mod, BinOp::Mod}}); }
  ExprPtr IntDiv() { return LeftAssoc(&Parser::Multiplicative, {{Tok::Backslash, BinOp::IntDiv}}); }
  ExprPtr Multiplicative() {
    return LeftAssoc(&Parser::Unary, {{Tok::Star, BinOp::Mul}, {Tok::Slash, BinOp::Div}});
  }
  ExprPtr Unary() {
    Depth d(*this);
    if (At(Tok::Not)) return Not();
    return Power();
  }
  // A sign binds tighter than ^ in VBScript: -2 ^ 2 is 4.
  ExprPtr Power() {
    ExprPtr left = PowerOperand();
    while (At(Tok::Caret)) {
      auto e = Make(ExprKind::Binary, Cur());
      Advance();
      e->bin = BinOp::Pow;
      e->object = std::move(left);
      e->right = PowerOperand();
      left = std::move(e);
    }
    return left;
  }
  ExprPtr PowerOperand() {
    Depth d(*this);
    if (At(Tok::Minus)) {
      auto e = Make(ExprKind::Unary, Cur());
      Advance();
      e->un = UnOp::Neg;
      e->object = PowerOperand();
      return e;
    }
    if (Accept(Tok::Plus)) return PowerOperand();
    if (At(Tok::Not)) return Not();
    return Postfix();
  }

  ExprPtr Literal(Variant v) {
    auto e = Make(ExprKind::Literal, Cur());
    Advance();
    e->value = std::move(v);
    return e;
  }

  ExprPtr Primary() {
    const Token& t = Cur();
    switch (t.kind) {
      case Tok::Number:
      case Tok::DateLit:
        return Literal(t.value);
      case Tok::Text:
        return Literal(Variant(t.text));
      case Tok::True:
        return Literal(Variant(true));
      case Tok::False:
        return Literal(Variant(false));
      case Tok::Empty:
        return Literal(Variant());
      case Tok::Null:
        return Literal(Variant::Null());
      case Tok::Nothing:
        return Literal(Variant::Nothing());
      case Tok::Me: {
        auto e = Make(ExprKind::Me, t);
        Advance();
        return e;
      }
      case Tok::New: {
        auto e = Make(ExprKind::New, t);
        Advance();
        e->name = Identifier();
        return e;
      }
      case Tok::LParen: {
        Depth d(*this);
        auto e = Make(ExprKind::Paren, t);
        Advance();
        e->object = Expression();
        Expect(Tok::RParen, kCeExpectedRParen);
        return e;
      }
      case Tok::Ident: {
        auto e = Make(ExprKind::Name, t);
        e->name = t.text;
        Advance();
        return e;
      }
      case Tok::Dot: {
        auto e = Make(ExprKind::Member, t);
        Advance();
        e->name = MemberName();
        return e;
      }
      default:
        Fail(kCeExpectedExpression);
    }
  }

  // Parenthesised arguments; left-out ones (`f(1,,3)`) become the missing-argument value.
  void ArgList(Expr& e) {
    Expect(Tok::LParen, kCeExpectedLParen);
    e.has_args = true;
    if (Accept(Tok::RParen)) return;
    for (;;) {
      if (At(Tok::Comma) || At(Tok::RParen)) {
        auto m = Make(ExprKind::Literal, Cur());
        m->value = Variant::Missing();
        e.args.push_back(std::move(m));
      } else {
        e.args.push_back(Expression());
      }
      if (Accept(Tok::RParen)) return;
      Expect(Tok::Comma, kCeExpectedRParen);
    }
  }

  ExprPtr Postfix() {
    Depth d(*this);
    ExprPtr e = Primary();
    return PostfixTail(std::move(e), nullptr);
  }

  // The chain of `.name` and `(args)` after a primary. When `last_paren` is given it receives
  // the token position of the last argument list, for the call-statement re-read.
  // With `stop_at_paren` the chain ends before the first argument list.
  ExprPtr PostfixTail(ExprPtr e, size_t* last_paren, bool statement_head = false,
                      bool stop_at_paren = false) {
    const bool callable = e->kind == ExprKind::Name || e->kind == ExprKind::Member ||
                          e->kind == ExprKind::Me || e->kind == ExprKind::Paren;
    if (!callable) return e;
    for (;;) {
      // `(f)(x)` calls f with x, `((a))(0)` indexes a: arguments after a parenthesised name go
      // to the name.
      if (At(Tok::LParen) && e->kind == ExprKind::Paren && !stop_at_paren) {
        Expr* inner = e->object.get();
        while (inner->kind == ExprKind::Paren)
          inner = inner->object.get();
        if ((inner->kind == ExprKind::Name || inner->kind == ExprKind::Member) &&
            !inner->has_args) {
          ExprPtr name = std::move(e);
          while (name->kind == ExprKind::Paren)
            name = std::move(name->object);
          e = std::move(name);
        } else {
          auto idx = Make(ExprKind::Index, Cur());
          idx->object = std::move(e);
          e = std::move(idx);
        }
        if (last_paren) *last_paren = pos_;
        ArgList(*e);
        continue;
      }
      if (At(Tok::LParen) && e->kind != ExprKind::Paren) {
        if (stop_at_paren) return e;
        if (statement_head && head_paren_ == 0) head_paren_ = pos_;
        if (last_paren) *last_paren = pos_;
        if ((e->kind == ExprKind::Name || e->kind == ExprKind::Member) && !e->has_args) {
          ArgList(*e);
        } else {
          auto idx = Make(ExprKind::Index, Cur());
          idx->object = std::move(e);
          ArgList(*idx);
          e = std::move(idx);
        }
        continue;
      }
      // At the head of a call statement `Foo .Name` passes a With member as the argument.
      const bool spaced = Cur().space_before;
      if (At(Tok::Dot) && !(spaced && (statement_head || e->kind == ExprKind::Paren))) {
        auto m = Make(ExprKind::Member, Cur());
        Advance();
        m->name = MemberName();
        m->object = std::move(e);
        e = std::move(m);
        if (last_paren) *last_paren = 0;
        continue;
      }
      return e;
    }
  }

  // --- statements ---------------------------------------------------------------------------
  enum class Scope : uint8_t { Module, Procedure, Class };

  void ParseTopLevel(Program& prog) {
    if (At(Tok::Class)) {
      prog.classes.push_back(ClassDeclaration());
      return;
    }
    if (auto proc = TryProcedure(false)) {
      prog.procs.push_back(std::move(proc));
      return;
    }
    Statement(prog.body, Scope::Module);
  }

  // Public/Private/Default before Sub, Function or Property; returns null for a plain
  // Public/Private variable declaration (the caller parses it).
  std::unique_ptr<ProcDecl> TryProcedure(bool in_class) {
    const size_t start = pos_;
    bool is_public = true;
    bool is_default = false;
    bool had_access = false;
    if (At(Tok::Public) || At(Tok::Private)) {
      is_public = At(Tok::Public);
      had_access = true;
      Advance();
      if (AtWord(u"Default")) {
        if (!is_public) Fail(kCeDefaultPublic);
        is_default = true;
        Advance();
        if (!At(Tok::Sub) && !At(Tok::Function) && !AtWord(u"Property")) Fail(kCeDefaultPlacement);
      }
    } else if (AtWord(u"Default") && in_class) {
      Fail(kCeDefaultPublic);
    }
    if (!At(Tok::Sub) && !At(Tok::Function) && !AtWord(u"Property")) {
      pos_ = start;
      return nullptr;
    }
    if (AtWord(u"Property") && !in_class) Fail(kCeInsideClass);
    (void)had_access;
    auto proc = Procedure();
    proc->is_public = is_public;
    proc->is_default = is_default;
    if (is_default && (proc->kind == ProcKind::PropertyLet || proc->kind == ProcKind::PropertySet))
      Fail(kCeDefaultGetOnly);
    return proc;
  }

  std::unique_ptr<ProcDecl> Procedure() {
    auto proc = std::make_unique<ProcDecl>();
    proc->line = Cur().line;
    proc->column = Cur().column;
    Tok end_word = Cur().kind;
    int32_t end_error = kCeExpectedSub;
    if (At(Tok::Sub)) {
      proc->kind = ProcKind::Sub;
    } else if (At(Tok::Function)) {
      proc->kind = ProcKind::Function;
      end_error = kCeExpectedFunction;
    } else {
      Advance();
      end_word = Tok::Ident;
      end_error = kCeExpectedProperty;
      if (At(Tok::Let)) {
        proc->kind = ProcKind::PropertyLet;
      } else if (At(Tok::Set)) {
        proc->kind = ProcKind::PropertySet;
      } else if (AtWord(u"Get")) {
        proc->kind = ProcKind::PropertyGet;
      } else {
        Fail(kCeExpectedLetSetGet);
      }
    }
    Advance();
    proc->name = Identifier();
    if (Accept(Tok::LParen)) {
      if (!Accept(Tok::RParen)) {
        for (;;) {
          ParamDecl p;
          p.line = Cur().line;
          p.column = Cur().column;
          if (Accept(Tok::ByVal)) {
            p.by_val = true;
          } else {
            Accept(Tok::ByRef);
          }
          p.name = Identifier();
          if (Accept(Tok::LParen)) {
            Expect(Tok::RParen, kCeExpectedRParen);
            p.is_array = true;
          }
          proc->params.push_back(std::move(p));
          if (Accept(Tok::RParen)) break;
          Expect(Tok::Comma, kCeExpectedRParen);
        }
      }
    }
    if ((proc->kind == ProcKind::PropertyLet || proc->kind == ProcKind::PropertySet) &&
        proc->params.empty())
      Fail(kCeLetSetArgs);
    // The body may start on the header's line (`Sub S() x = 1 End Sub`).
    if (At(Tok::NewLine)) Advance();
    proc_kind_ = proc->kind;
    in_proc_ = true;
    loops_.clear();
    BlockUntil(proc->body, Scope::Procedure);
    in_proc_ = false;
    if (!At(Tok::End_)) Fail(kCeExpectedEnd);
    Advance();
    const bool ok = end_word == Tok::Ident ? AtWord(u"Property") : At(end_word);
    if (!ok) Fail(end_error);
    Advance();
    if (!(At(Tok::End_) && Peek().kind == Tok::Class)) EndOfStatement();
    return proc;
  }

  std::unique_ptr<ClassDecl> ClassDeclaration() {
    auto cls = std::make_unique<ClassDecl>();
    cls->line = Cur().line;
    cls->column = Cur().column;
    Advance();
    cls->name = Identifier();
    EndOfStatement();
    for (;;) {
      SkipNewLines();
      if (At(Tok::End_)) break;
      if (At(Tok::End)) Fail(kCeExpectedEnd);
      if (auto proc = TryProcedure(true)) {
        cls->procs.push_back(std::move(proc));
        continue;
      }
      bool is_public = true;
      if (At(Tok::Public) || At(Tok::Private)) {
        is_public = At(Tok::Public);
        Advance();
      } else if (!At(Tok::Dim)) {
        Fail(kCeExpectedStatement);
      } else {
        Advance();
      }
      std::vector<VarDecl> vars;
      VarList(vars);
      for (auto& v : vars)
        cls->fields.push_back(FieldDecl{std::move(v), is_public});
      EndOfStatementOrClosingEnd();
    }
    Advance();
    if (!At(Tok::Class)) Fail(kCeExpectedClass);
    Advance();
    EndOfStatement();
    return cls;
  }

  bool AtBlockEnd() const {
    switch (Cur().kind) {
      case Tok::End:
      case Tok::End_:
      case Tok::Else:
      case Tok::ElseIf:
      case Tok::Loop:
      case Tok::Next:
      case Tok::Wend:
      case Tok::Case:
        return true;
      default:
        return false;
    }
  }

  // Statements up to a word that ends the block (End, Else, Loop, Next, Wend, Case).
  void BlockUntil(Block& block, Scope scope) {
    Depth d(*this);
    for (;;) {
      SkipNewLines();
      if (AtBlockEnd()) return;
      Statement(block, scope);
    }
  }

  std::unique_ptr<Stmt> MakeStmt(StmtKind k) {
    auto s = std::make_unique<Stmt>();
    s->kind = k;
    s->line = Cur().line;
    s->column = Cur().column;
    return s;
  }

  void Statement(Block& block, Scope scope) {
    block.push_back(SimpleOrCompound(scope, false));
    EndOfStatementOrClosingEnd();
  }

  std::unique_ptr<Stmt> SimpleOrCompound(Scope scope, bool single_line) {
    switch (Cur().kind) {
      case Tok::Dim:
        return Declaration(scope);
      case Tok::Public:
      case Tok::Private:
        if (scope != Scope::Module) Fail(kCeExpectedStatement);
        if (Peek().kind == Tok::Sub || Peek().kind == Tok::Function) {
          if (CanNestDefinition(scope, single_line)) return NestedDefinition();
          Fail(kCeExpectedStatement);
        }
        if (Peek().kind == Tok::Const) {
          Advance();
          return ConstStatement(scope);
        }
        return Declaration(scope);
      case Tok::ReDim:
        return ReDimStatement();
      case Tok::Const:
        return ConstStatement(scope);
      case Tok::Erase:
        return EraseStatement();
      case Tok::If:
        return IfStatement(scope);
      case Tok::Select:
        return SelectStatement(scope);
      case Tok::For:
        return ForStatement(scope);
      case Tok::Do:
        return DoStatement(scope);
      case Tok::While:
        return WhileStatement(scope);
      case Tok::Exit:
        return ExitStatement();
      case Tok::With:
        return WithStatement(scope);
      case Tok::On:
        return OnErrorStatement();
      case Tok::Set: {
        auto s = MakeStmt(StmtKind::Assign);
        Advance();
        s->flag = true;
        s->target = Postfix();
        Expect(Tok::Eq, kCeExpectedEqual);
        s->value = Expression();
        return s;
      }
      case Tok::Let:
        Advance();
        return AssignOrCall(false);
      case Tok::Call: {
        auto s = MakeStmt(StmtKind::Call);
        Advance();
        s->flag = true;
        s->target = Postfix();
        if (s->target->kind != ExprKind::Name && s->target->kind != ExprKind::Member &&
            s->target->kind != ExprKind::Index)
          Fail(kCeExpectedIdentifier);
        return s;
      }
      case Tok::Ident:
        if (AtWord(u"Stop") && (Peek().kind == Tok::NewLine || Peek().kind == Tok::End)) {
          auto s = MakeStmt(StmtKind::Nop);
          Advance();
          return s;
        }
        return AssignOrCall(single_line);
      case Tok::Dot:
      case Tok::Me:
        return AssignOrCall(single_line);
      case Tok::Sub:
      case Tok::Function:
      case Tok::Class:
        if (CanNestDefinition(scope, single_line)) return NestedDefinition();
        Fail(kCeSyntax);
      case Tok::Option:
        Fail(kCeMustBeFirst);
      case Tok::Next:
        Fail(kCeUnexpectedNext);
      case Tok::Loop:
        Fail(kCeLoopWithoutDo);
      default:
        Fail(kCeExpectedStatement);
    }
  }

  // Procedures and classes written inside a block of the script's own level (`If False Then`
  // ... `Sub S` ... `End If`) are defined all the same, as if written outside it.
  bool CanNestDefinition(Scope scope, bool single_line) const {
    return scope == Scope::Module && !single_line && !in_proc_ && program_ != nullptr;
  }
  std::unique_ptr<Stmt> NestedDefinition() {
    auto s = MakeStmt(StmtKind::Nop);
    const std::vector<ExitKind> loops = loops_;  // a procedure starts with no loops of its own
    const bool in_else_part = in_else_part_;     // nor any If to close
    in_else_part_ = false;
    if (At(Tok::Class)) {
      program_->classes.push_back(ClassDeclaration());
    } else {
      program_->procs.push_back(TryProcedure(false));
    }
    loops_ = loops;
    in_else_part_ = in_else_part;
    // The definition took its line end; the enclosing block reads it again.
    if (pos_ > 0 && toks_[pos_ - 1].kind == Tok::NewLine) --pos_;
    return s;
  }

  std::unique_ptr<Stmt> AssignOrCall(bool single_line) {
    (void)single_line;
    auto s = MakeStmt(StmtKind::Call);
    const size_t start = pos_;
    size_t last_paren = 0;
    head_paren_ = 0;
    ExprPtr primary = Primary();
    ExprPtr target = PostfixTail(std::move(primary), &last_paren, true);
    const size_t head_paren = head_paren_;
    if (Accept(Tok::Eq)) {
      s->kind = StmtKind::Assign;
      s->target = std::move(target);
      s->value = Expression();
      return s;
    }
    const bool ends = AtLineEnd() || At(Tok::Else);
    if (ends) {
      // `Foo (x)` passes x by value; `Foo(a, b)` without Call is VBScript's error 1044.
      Expr* call = target.get();
      if ((call->kind == ExprKind::Name || call->kind == ExprKind::Member) && call->has_args &&
          last_paren != 0) {
        if (call->args.size() > 1) Fail(kCeParensCallingSub);
        if (call->args.size() == 1 && call->args[0]->kind != ExprKind::Paren) {
          auto p = Make(ExprKind::Paren, toks_[last_paren]);
          p->object = std::move(call->args[0]);
          call->args[0] = std::move(p);
        }
      }
      s->target = std::move(target);
      return s;
    }
    // The statement goes on: the arguments start here, or at the last '(' that was read as
    // an argument list. `F (a).b, c` passes `(a).b` and c: when a member name ends the chain and
    // a comma follows, the arguments start at the first '(' after the called name.
    if (At(Tok::Comma) && head_paren != 0 && last_paren == 0) {
      pos_ = start;
      target = PostfixTail(Primary(), nullptr, true, true);
      if (pos_ != head_paren) Fail(kCeExpectedEndOfStatement);
    } else if (last_paren != 0 &&
               (target->kind == ExprKind::Name || target->kind == ExprKind::Member) &&
               target->has_args) {
      pos_ = last_paren;
      target->args.clear();
      target->has_args = false;
    } else if (target->kind != ExprKind::Name && target->kind != ExprKind::Member) {
      Fail(kCeExpectedEndOfStatement);
    } else if (target->has_args) {
      Fail(kCeExpectedEndOfStatement);
    }
    target->has_args = true;
    for (;;) {
      if (At(Tok::Comma)) {
        auto m = Make(ExprKind::Literal, Cur());
        m->value = Variant::Missing();
        target->args.push_back(std::move(m));
      } else {
        target->args.push_back(Expression());
      }
      if (!Accept(Tok::Comma)) break;
      if (AtLineEnd()) Fail(kCeExpectedExpression);
    }
    if (!AtLineEnd() && !At(Tok::Else)) Fail(kCeExpectedEndOfStatement);
    s->target = std::move(target);
    s->flag = false;
    return s;
  }

  void VarList(std::vector<VarDecl>& vars) {
    for (;;) {
      VarDecl v;
      v.line = Cur().line;
      v.column = Cur().column;
      v.name = Identifier();
      if (Accept(Tok::LParen)) {
        v.is_array = true;
        if (!Accept(Tok::RParen)) {
          for (;;) {
            if (!At(Tok::Number)) Fail(kCeExpectedInteger);
            v.bounds.push_back(Literal(Cur().value));
            if (Accept(Tok::RParen)) break;
            Expect(Tok::Comma, kCeExpectedRParen);
          }
        }
      }
      vars.push_back(std::move(v));
      if (!Accept(Tok::Comma)) return;
    }
  }

  std::unique_ptr<Stmt> Declaration(Scope scope) {
    auto s = MakeStmt(StmtKind::Dim);
    s->flag = At(Tok::Public);
    Advance();
    (void)scope;
    VarList(s->vars);
    return s;
  }

  std::unique_ptr<Stmt> ReDimStatement() {
    auto s = MakeStmt(StmtKind::ReDim);
    Advance();
    if (AtWord(u"Preserve")) {
      s->flag = true;
      Advance();
    }
    for (;;) {
      VarDecl v;
      v.line = Cur().line;
      v.column = Cur().column;
      ExprPtr target = Postfix();
      if (!target->has_args || (target->kind != ExprKind::Name && target->kind != ExprKind::Member))
        Fail(kCeExpectedLParen);
      v.bounds = std::move(target->args);
      target->args.clear();
      target->has_args = false;
      v.is_array = true;
      s->redim_targets.push_back(std::move(target));
      s->vars.push_back(std::move(v));
      if (!Accept(Tok::Comma)) break;
    }
    return s;
  }

  std::unique_ptr<Stmt> ConstStatement(Scope scope) {
    (void)scope;
    auto s = MakeStmt(StmtKind::Const);
    Advance();
    for (;;) {
      VarDecl v;
      v.line = Cur().line;
      v.column = Cur().column;
      v.name = Identifier();
      Expect(Tok::Eq, kCeExpectedEqual);
      v.value = ConstValue();
      s->vars.push_back(std::move(v));
      if (!Accept(Tok::Comma)) break;
    }
    return s;
  }

  // A constant's value: a literal, a signed number, or a parenthesised one.
  ExprPtr ConstValue() {
    Depth d(*this);
    if (At(Tok::LParen)) {
      Advance();
      ExprPtr e = ConstValue();
      Expect(Tok::RParen, kCeExpectedRParen);
      return e;
    }
    if (At(Tok::Minus) || At(Tok::Plus)) {
      const bool neg = At(Tok::Minus);
      auto e = Make(ExprKind::Unary, Cur());
      Advance();
      ExprPtr inner = ConstValue();
      if (!neg) return inner;
      e->un = UnOp::Neg;
      e->object = std::move(inner);
      return e;
    }
    switch (Cur().kind) {
      case Tok::Number:
      case Tok::DateLit:
      case Tok::Text:
      case Tok::True:
      case Tok::False:
      case Tok::Empty:
      case Tok::Null:
      case Tok::Nothing:
        return Primary();
      default:
        Fail(kCeExpectedLiteral);
    }
  }

  std::unique_ptr<Stmt> EraseStatement() {
    auto s = MakeStmt(StmtKind::Erase);
    Advance();
    s->target = Postfix();
    if (s->target->kind != ExprKind::Name && s->target->kind != ExprKind::Member)
      Fail(kCeExpectedIdentifier);
    return s;
  }

  // Statements of a single-line If, separated by ':', up to the line end or Else.
  void InlineStatements(Block& block, Scope scope) {
    for (;;) {
      if (AtRealLineEnd() || At(Tok::Else)) return;
      if (At(Tok::NewLine)) {
        Advance();
        continue;
      }
      block.push_back(SimpleOrCompound(scope, true));
      if (At(Tok::End_) && Peek().kind == Tok::If) return;
      if (!AtLineEnd() && !At(Tok::Else)) Fail(kCeExpectedEndOfStatement);
    }
  }

  std::unique_ptr<Stmt> IfStatement(Scope scope) {
    auto s = MakeStmt(StmtKind::If);
    Advance();
    s->conditions.push_back(Expression());
    Expect(Tok::Then, kCeExpectedThen);
    if (!AtRealLineEnd()) {
      // Single-line form.
      s->blocks.emplace_back();
      InlineStatements(s->blocks.back(), scope);
      if (Accept(Tok::Else)) {
        s->has_else = true;
        s->blocks.emplace_back();
        InlineStatements(s->blocks.back(), scope);
      }
      if (At(Tok::End_) && Peek().kind == Tok::If) {
        Advance();
        Advance();
      }
      return s;
    }
    const bool outer_else_part = in_else_part_;
    in_else_part_ = false;
    s->blocks.emplace_back();
    BlockUntil(s->blocks.back(), scope);
    in_else_part_ = true;
    for (;;) {
      if (At(Tok::ElseIf)) {
        s->clause_pos.emplace_back(Cur().line, Cur().column);
        Advance();
        s->conditions.push_back(Expression());
        Expect(Tok::Then, kCeExpectedThen);
        // Only a statement on the ElseIf line itself may run into End If; once the block
        // starts on the next line it reads like a Then part.
        in_else_part_ = !AtRealLineEnd();
        s->blocks.emplace_back();
        BlockUntil(s->blocks.back(), scope);
        in_else_part_ = true;
        continue;
      }
      if (At(Tok::Else)) {
        Advance();
        // End If may follow a statement on the Else line, but not the Else itself.
        if (At(Tok::End_) && Peek().kind == Tok::If) Fail(kCeExpectedStatement);
        s->has_else = true;
        s->blocks.emplace_back();
        BlockUntil(s->blocks.back(), scope);
      }
      break;
    }
    in_else_part_ = outer_else_part;
    if (!At(Tok::End_)) Fail(kCeExpectedEnd);
    Advance();
    Expect(Tok::If, kCeExpectedIf);
    return s;
  }

  std::unique_ptr<Stmt> SelectStatement(Scope scope) {
    auto s = MakeStmt(StmtKind::Select);
    Advance();
    Expect(Tok::Case, kCeExpectedCase);
    s->value = Expression();
    EndOfStatement();
    SkipNewLines();
    while (At(Tok::Case)) {
      Advance();
      CaseClause clause;
      if (Accept(Tok::Else)) {
        s->has_else = true;
      } else {
        for (;;) {
          clause.values.push_back(Expression());
          if (!Accept(Tok::Comma)) break;
        }
      }
      if (At(Tok::NewLine)) Advance();
      BlockUntil(clause.body, scope);
      const bool was_else = clause.values.empty();
      s->cases.push_back(std::move(clause));
      if (was_else) break;
    }
    if (!At(Tok::End_)) Fail(At(Tok::Case) ? kCeSyntax : kCeExpectedEnd);
    Advance();
    Expect(Tok::Select, kCeExpectedSelect);
    return s;
  }

  std::unique_ptr<Stmt> ForStatement(Scope scope) {
    Advance();
    if (Accept(Tok::Each)) {
      auto s = MakeStmt(StmtKind::ForEach);
      auto var = Make(ExprKind::Name, Cur());
      var->name = Identifier();
      s->target = std::move(var);
      Expect(Tok::In, kCeExpectedIn);
      s->value = Expression();
      EndOfStatement();
      LoopBody(*s, scope, ExitKind::For);
      if (!Accept(Tok::Next)) Fail(kCeExpectedNext);
      return s;
    }
    auto s = MakeStmt(StmtKind::For);
    auto var = Make(ExprKind::Name, Cur());
    if (!At(Tok::Ident)) Fail(kCeExpectedIdentifier);
    var->name = Identifier();
    s->target = std::move(var);
    Expect(Tok::Eq, kCeExpectedEqual);
    s->value = Expression();
    Expect(Tok::To, kCeExpectedTo);
    s->to = Expression();
    if (AtWord(u"Step")) {
      Advance();
      s->step = Expression();
    }
    EndOfStatement();
    LoopBody(*s, scope, ExitKind::For);
    if (!Accept(Tok::Next)) Fail(kCeExpectedNext);
    return s;
  }

  void LoopBody(Stmt& s, Scope scope, ExitKind kind) {
    loops_.push_back(kind);
    s.blocks.emplace_back();
    BlockUntil(s.blocks.back(), scope);
    loops_.pop_back();
  }

  std::unique_ptr<Stmt> DoStatement(Scope scope) {
    auto s = MakeStmt(StmtKind::Do);
    Advance();
    if (At(Tok::While) || At(Tok::Until)) {
      s->test = At(Tok::While) ? LoopTest::WhileBefore : LoopTest::UntilBefore;
      Advance();
      s->value = Expression();
    } else if (!AtLineEnd()) {
      Fail(kCeExpectedWhileUntilEnd);
    }
    EndOfStatement();
    LoopBody(*s, scope, ExitKind::Do);
    s->clause_pos.emplace_back(Cur().line, Cur().column);
    if (!Accept(Tok::Loop)) Fail(kCeExpectedLoop);
    if (At(Tok::While) || At(Tok::Until)) {
      if (s->test != LoopTest::None) Fail(kCeExpectedEndOfStatement);
      s->test = At(Tok::While) ? LoopTest::WhileAfter : LoopTest::UntilAfter;
      Advance();
      s->value = Expression();
    }
    return s;
  }

  std::unique_ptr<Stmt> WhileStatement(Scope scope) {
    auto s = MakeStmt(StmtKind::While);
    Advance();
    s->value = Expression();
    EndOfStatement();
    loops_.push_back(ExitKind::Property);  // While loops take no Exit of their own
    s->blocks.emplace_back();
    BlockUntil(s->blocks.back(), scope);
    loops_.pop_back();
    if (!Accept(Tok::Wend)) Fail(kCeExpectedWend);
    return s;
  }

  std::unique_ptr<Stmt> ExitStatement() {
    auto s = MakeStmt(StmtKind::Exit);
    Advance();
    auto has_loop = [&](ExitKind k) {
      return std::find(loops_.begin(), loops_.end(), k) != loops_.end();
    };
    switch (Cur().kind) {
      case Tok::Do:
        if (!has_loop(ExitKind::Do)) Fail(kCeInvalidExit);
        s->exit = ExitKind::Do;
        break;
      case Tok::For:
        if (!has_loop(ExitKind::For)) Fail(kCeInvalidExit);
        s->exit = ExitKind::For;
        break;
      case Tok::Function:
        if (!in_proc_ || proc_kind_ != ProcKind::Function) Fail(kCeInvalidExit);
        s->exit = ExitKind::Function;
        break;
      case Tok::Sub:
        if (!in_proc_ || proc_kind_ != ProcKind::Sub) Fail(kCeInvalidExit);
        s->exit = ExitKind::Sub;
        break;
      default:
        if (!AtWord(u"Property")) Fail(kCeSyntax);
        if (!in_proc_ || proc_kind_ == ProcKind::Sub || proc_kind_ == ProcKind::Function)
          Fail(kCeInvalidExit);
        s->exit = ExitKind::Property;
        break;
    }
    Advance();
    return s;
  }

  std::unique_ptr<Stmt> WithStatement(Scope scope) {
    auto s = MakeStmt(StmtKind::With);
    Advance();
    s->target = Expression();
    EndOfStatement();
    s->blocks.emplace_back();
    BlockUntil(s->blocks.back(), scope);
    if (!At(Tok::End_)) Fail(kCeExpectedEnd);
    Advance();
    Expect(Tok::With, kCeExpectedWith);
    return s;
  }

  std::unique_ptr<Stmt> OnErrorStatement() {
    auto s = MakeStmt(StmtKind::OnErrorResumeNext);
    Advance();
    if (!AtWord(u"Error")) Fail(kCeSyntax);
    Advance();
    if (Accept(Tok::Resume)) {
      Expect(Tok::Next, kCeSyntax);
      return s;
    }
    Expect(Tok::GoTo, kCeSyntax);
    if (!At(Tok::Number) || Cur().value.type() != VarType::Integer || Cur().value.as_integer() != 0)
      Fail(kCeSyntax);
    Advance();
    s->kind = StmtKind::OnErrorGoto0;
    return s;
  }

  std::vector<Token> toks_;
  size_t pos_ = 0;
  size_t head_paren_ = 0;       // the first '(' after the name a statement starts with
  Program* program_ = nullptr;  // the program being read, which nested definitions join
  int depth_ = 0;
  bool in_proc_ = false;
  bool in_else_part_ = false;  // reading the Else or ElseIf part of a block If
  ProcKind proc_kind_ = ProcKind::Sub;
  std::vector<ExitKind> loops_;
};

}  // namespace

Program ParseProgram(StringView source) {
  return Parser(source).Program_();
}

ExprPtr ParseExpression(StringView source) {
  return Parser(source).ExpressionOnly();
}

}  // namespace qv::vbs
