// The syntax tree the parser builds and the compiler walks: expressions, statements,
// procedures and classes of one piece of source.
#pragma once

#include <memory>
#include <vector>

#include "automation/string.h"
#include "automation/variant.h"

namespace qv::vbs {

enum class BinOp : uint8_t {
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
  Is,
  And,
  Or,
  Xor,
  Eqv,
  Imp,
};
enum class UnOp : uint8_t { Neg, Not };

enum class ExprKind : uint8_t {
  Literal,  // value
  Name,     // name [ (args) ]
  Member,   // object.name [ (args) ]; object null inside With
  Index,    // object(args), applied to the result of a call or index
  Unary,
  Binary,
  New,  // New name
  Me,
  Paren,  // (expr): passes by value
};

struct Expr;
using ExprPtr = std::unique_ptr<Expr>;

struct Expr {
  Expr() = default;
  Expr(const Expr&) = delete;
  Expr& operator=(const Expr&) = delete;
  // Long operator chains (`a & b & c ...`) lean left; they are taken apart iteratively so that
  // their depth never becomes C++ recursion.
  ~Expr() {
    while (object && object->object && object->kind == ExprKind::Binary) {
      ExprPtr next = std::move(object->object);
      object = std::move(next);
    }
  }

  ExprKind kind;
  int32_t line = 0;
  int32_t column = 0;
  Variant value;
  String name;
  ExprPtr object;  // Member / Index target, Unary operand, Binary left, Paren inner
  ExprPtr right;   // Binary right
  std::vector<ExprPtr> args;
  bool has_args = false;  // parentheses followed the name
  BinOp bin = BinOp::Add;
  UnOp un = UnOp::Neg;
};

enum class StmtKind : uint8_t {
  Assign,  // target = value, Set target = value
  Call,    // a call as a statement
  Dim,     // also Public/Private at module level
  ReDim,
  Const,
  Erase,
  If,
  Select,
  For,
  ForEach,
  Do,
  While,
  Exit,
  With,
  OnErrorResumeNext,
  OnErrorGoto0,
  Nop,
};

enum class ExitKind : uint8_t { Do, For, Function, Sub, Property };
enum class LoopTest : uint8_t { None, WhileBefore, UntilBefore, WhileAfter, UntilAfter };

struct Stmt;
using Block = std::vector<std::unique_ptr<Stmt>>;

struct VarDecl {
  String name;
  int32_t line = 0;
  int32_t column = 0;
  bool is_array = false;        // Dim a() or Dim a(3)
  std::vector<ExprPtr> bounds;  // upper bounds; empty for a dynamic array
  ExprPtr value;                // Const value
};

struct CaseClause {
  std::vector<ExprPtr> values;  // empty for Case Else
  Block body;
};

struct Stmt {
  StmtKind kind;
  int32_t line = 0;
  int32_t column = 0;
  bool flag = false;  // Set for Assign, Preserve for ReDim, explicit Call, Public for Dim
  ExprPtr target;     // Assign target, Call expression, For variable, With object
  ExprPtr value;      // Assign value, Select value, For start, ForEach group, loop condition
  ExprPtr to;         // For end
  ExprPtr step;       // For step
  std::vector<VarDecl> vars;           // Dim, ReDim (bounds), Const, Erase (name)
  std::vector<ExprPtr> redim_targets;  // ReDim targets
  std::vector<ExprPtr> conditions;     // If / ElseIf conditions
  std::vector<Block> blocks;           // If branches (+ Else last), loop body first
  // Where each ElseIf word stands (If), or the Loop word (Do): run-time errors of their
  // conditions are reported there.
  std::vector<std::pair<int32_t, int32_t>> clause_pos;
  bool has_else = false;
  std::vector<CaseClause> cases;
  LoopTest test = LoopTest::None;
  ExitKind exit = ExitKind::Do;
};

enum class ProcKind : uint8_t { Sub, Function, PropertyGet, PropertyLet, PropertySet };

struct ParamDecl {
  String name;
  int32_t line = 0;
  int32_t column = 0;
  bool by_val = false;
  bool is_array = false;
};

struct ProcDecl {
  ProcKind kind = ProcKind::Sub;
  String name;
  int32_t line = 0;
  int32_t column = 0;
  bool is_public = true;
  bool is_default = false;
  std::vector<ParamDecl> params;
  Block body;
};

struct FieldDecl {
  VarDecl var;
  bool is_public = true;
};

struct ClassDecl {
  String name;
  int32_t line = 0;
  int32_t column = 0;
  std::vector<FieldDecl> fields;
  std::vector<std::unique_ptr<ProcDecl>> procs;
};

struct Program {
  bool option_explicit = false;
  Block body;  // module-level statements, in order (global Dim/Const among them)
  std::vector<std::unique_ptr<ProcDecl>> procs;
  std::vector<std::unique_ptr<ClassDecl>> classes;
};

}  // namespace qv::vbs
