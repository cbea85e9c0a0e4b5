// VBScript's Err object and what the machine does with an error: the site an uncaught error
// reports (line, column, source text, the name it could not use), and On Error Resume Next,
// which records the error in Err and goes on with the next statement.
#include <chrono>

#include "automation/dispatch.h"
#include "vbscript/errors.h"
#include "vbscript/hresult_map.h"
#include "vbscript/values.h"
#include "vbscript/vm.h"

namespace qv::vbs {
namespace {

// What Err.Description shows of an error: the engine names the variable, member or ProgID it
// could not use in its report of an uncaught error ("Type mismatch: 'x'"), but a script that
// handles the error reads the plain text, as on Windows.
String HandledDescription(const Error& e) {
  const String& text = e.description();
  const String plain = StandardErrorText(e.number());
  if (plain.empty() || text.size() <= plain.size() + 3) return text;
  if (!text.view().starts_with(plain.view())) return text;
  if (text.view().substr(plain.size(), 3) != u": '") return text;
  if (text[text.size() - 1] != u'\'') return text;
  return plain;
}

class ErrObject : public DispatchObject<ErrObject> {
 public:
  explicit ErrObject(Vm* vm) : vm_(vm) {}
  static const DispatchTable<ErrObject>& Table() {
    static const auto table =
        DispatchTable<ErrObject>(u"ErrObject")
            .Property(
                u"Number", [](ErrObject& e, Args) { return Variant(e.vm_->err().number); },
                [](ErrObject& e, Args, const Variant& v) { e.vm_->err().number = ToLong(v); })
            .Property(
                u"Description",
                [](ErrObject& e, Args) { return Variant(e.vm_->err().description); },
                [](ErrObject& e, Args, const Variant& v) {
                  e.vm_->err().description = ToString(v);
                })
            .Property(
                u"Source", [](ErrObject& e, Args) { return Variant(e.vm_->err().source); },
                [](ErrObject& e, Args, const Variant& v) { e.vm_->err().source = ToString(v); })
            .Property(
                u"HelpFile", [](ErrObject& e, Args) { return Variant(e.vm_->err().help_file); },
                [](ErrObject& e, Args, const Variant& v) { e.vm_->err().help_file = ToString(v); })
            .Property(
                u"HelpContext",
                [](ErrObject& e, Args) { return Variant(e.vm_->err().help_context); },
                [](ErrObject& e, Args, const Variant& v) { e.vm_->err().help_context = ToLong(v); })
            .Method<[](ErrObject& e) { e.vm_->err().Clear(); }>(u"Clear")
            .Method(u"Raise", &ErrObject::RaiseError)
            .Default(u"Number");
    return table;
  }

 private:
  static Variant RaiseError(ErrObject& e, Args args) {
    CheckArgCount(args, 1, 5);
    // VBScript's own numbers end at 65535; above that only failure codes (negative as a Long)
    // may be raised, and those it knows come back under its own numbers.
    const int32_t number = ErrorNumberOfHresult(ToLong(args[0]));
    if (number == 0 || number > 0xFFFF) Raise(kErrInvalidCall);
    // What the call leaves out comes from what Err still holds; only what it lacks too gets
    // the standard source and text.
    ErrState& now = e.vm_->err();
    String source = HasArg(args, 1) ? ToString(args[1]) : now.source;
    if (source.empty()) source = String(kRuntimeErrorSource);
    String description = HasArg(args, 2) ? ToString(args[2]) : now.description;
    if (description.empty()) description = StandardErrorText(number);
    if (description.empty()) description = u"Unknown runtime error";
    Error error(number, std::move(description), std::move(source));
    if (HasArg(args, 3)) now.help_file = ToString(args[3]);
    if (HasArg(args, 4)) now.help_context = ToLong(args[4]);
    e.vm_->MarkRaisedHelp();
    throw error;
  }
  Vm* vm_;
};

}  // namespace

Object* Vm::err_object() {
  if (!err_object_) err_object_ = MakeRef<ErrObject>(this);
  return err_object_.get();
}

void Vm::RecordSite(const Frame& f, size_t pc, int32_t number) {
  if (site_.set) return;
  const Proc& p = *f.proc;
  if (pc >= p.lines.size()) pc = p.lines.empty() ? 0 : p.lines.size() - 1;
  site_.set = true;
  if (number == kErrObjectRequired && pc < p.code.size()) {
    const Instr& in = p.code[pc];
    if (in.op == Op::CallMember || in.op == Op::StoreMember) site_.subject = p.sites[in.a].subject;
  }
  // An error of a library function names the function: "Type mismatch: 'CInt'".
  if (pc < p.code.size() && p.code[pc].op == Op::CallGlobal) {
    const GlobalSlot* slot = p.globals[p.code[pc].a];
    if (slot->kind == SlotKind::Alias && slot->alias) slot = slot->alias;
    if (slot->kind == SlotKind::Builtin) site_.subject = String(slot->builtin->name);
  }
  site_.line = p.lines.empty() ? 0 : p.lines[pc];
  site_.column = p.columns.empty() ? 0 : p.columns[pc];
  // The text of that line of the source.
  site_.code = p.source;
  const StringView src = p.source.view();
  int32_t line = 1;
  size_t start = 0;
  for (size_t i = 0; i < src.size() && line < site_.line; ++i) {
    if (src[i] == '\r' || src[i] == '\n') {
      if (src[i] == '\r' && i + 1 < src.size() && src[i + 1] == '\n') ++i;
      ++line;
      start = i + 1;
    }
  }
  size_t end = start;
  while (end < src.size() && src[end] != '\r' && src[end] != '\n')
    ++end;
  site_.text = String(src.substr(std::min(start, src.size()), end - std::min(start, src.size())));
}

size_t Vm::HandleError(Frame& f, size_t pc, const Error& e) {
  // This engine's own time limit can't be resumed past; the time-out of an engine the script
  // drives (a script control it made) is an error like any other.
  const bool own_timeout =
      e.number() == kErrTimeout && has_deadline_ && std::chrono::steady_clock::now() > deadline_;
  if (!f.resume_next || own_timeout) {
    RecordSite(f, pc, e.number());
    throw;
  }
  err_.number = e.number();
  err_.description = help_from_raise_ ? e.description() : HandledDescription(e);
  err_.source = e.source().empty() ? String(kRuntimeErrorSource) : e.source();
  if (!help_from_raise_) {
    err_.help_file = String();
    err_.help_context = 0;
  }
  help_from_raise_ = false;
  site_ = ErrorSite();
  // Everything above the locals goes: the stack is empty between statements. So do the locks
  // of array elements that were on their way into the failed call.
  Variant* const floor = f.locals + f.proc->nlocals;
  ReleaseLocks(floor, floor + f.proc->max_stack);
  for (Variant* p = floor; p < floor + f.proc->max_stack; ++p)
    Drop(*p);
  const auto& starts = f.proc->stmt_start;
  size_t next = pc + 1;
  while (next < starts.size() && !starts[next])
    ++next;
  if (next >= starts.size()) next = starts.size() - 1;
  return next;
}

}  // namespace qv::vbs
