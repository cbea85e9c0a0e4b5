// TyxStatus: the status window's operations over the console surface, the Ctrl-C flag, the
// version numbers and the system script text.
#include "support/status.h"

#include <signal.h>
#include <unistd.h>

#include "automation/convert.h"
#include "automation/error.h"
#include "support/console_surface.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

// Set by Ctrl-C; read by StatusIsCancelled. A second Ctrl-C before the run reacts ends the
// process the ordinary way, so a step that never looks at the flag can still be stopped.
volatile sig_atomic_t g_cancel_requested = 0;
volatile sig_atomic_t g_quiet = 0;
bool g_handler_installed = false;

void OnInterrupt(int signal_number) {
  if (g_cancel_requested) {
    ::signal(signal_number, SIG_DFL);
    ::raise(signal_number);
    return;
  }
  g_cancel_requested = 1;
  if (!g_quiet) {
    static const char kText[] = "\nQuorvex: cancelling... (Ctrl-C again to stop at once)\n";
    const ssize_t ignored = ::write(STDERR_FILENO, kText, sizeof kText - 1);
    (void)ignored;
  }
}

void InstallInterruptHandler() {
  if (g_handler_installed) return;
  g_handler_installed = true;
  struct sigaction action {};
  action.sa_handler = OnInterrupt;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  ::sigaction(SIGINT, &action, nullptr);
}

// What the window shows of a text that may carry the length mark: a first character whose code
// is the length of the rest (modulo 256, the mark being one byte) is the mark, and the text is
// cut to that length. Text without a mark is shown as it is.
String ShownText(const Variant& msg) {
  const String text = ToString(msg);
  if (text.empty()) return text;
  const StringView rest = text.view().substr(1);
  const size_t mark = text[0];
  if (mark != (rest.size() & 0xFF)) return text;
  return String(rest.substr(0, mark));
}

}  // namespace

String LengthMarked(StringView text) {
  String out(1, static_cast<Char>(text.size() & 0xFF));
  out.Append(text);
  return out;
}

const DispatchTable<TyxStatus>& TyxStatus::Table() {
  using S = TyxStatus;
  static const auto table = DispatchTable<S>(u"TyxStatus")
                                .Method<&S::ShowStatus>(u"ShowStatus")
                                .Method<&S::ShowStatus2>(u"ShowStatus2")
                                .Method<&S::ShowStatus3>(u"ShowStatus3")
                                .Method<&S::DispStatus>(u"DispStatus")
                                .Method<&S::SetStatus>(u"SetStatus")
                                .Method<&S::StatusIsCancelled>(u"StatusIsCancelled")
                                .Method<&S::CloseStatus>(u"CloseStatus")
                                .Method<&S::GetVer>(u"GetVer")
                                .Method<&S::GetSysCode>(u"GetSysCode")
                                .Field<&S::mj1>(u"mj1")
                                .Field<&S::mj2>(u"mj2")
                                .Field<&S::mn1>(u"mn1")
                                .Field<&S::mn2>(u"mn2");
  return table;
}

TyxStatus::TyxStatus(StatusMode mode, std::FILE* out)
    : surface_(std::make_unique<ConsoleSurface>(mode, out)) {
  g_quiet = mode == StatusMode::kQuiet;
}

TyxStatus::~TyxStatus() = default;

void TyxStatus::Open(int form, const Variant& msg) {
  InstallInterruptHandler();
  handle_ = ++next_handle_;
  if (handle_ <= 0) handle_ = next_handle_ = 1;
  surface_->Open(form, ShownText(msg));
}

void TyxStatus::ShowStatus(const Variant& /*owner*/, const Variant& msg) {
  Open(1, msg);
}

void TyxStatus::ShowStatus2(const Variant& /*owner*/, const Variant& msg) {
  Open(2, msg);
}

void TyxStatus::ShowStatus3(const Variant& /*owner*/, const Variant& msg) {
  Open(3, msg);
}

void TyxStatus::DispStatus(const Variant& msg) {
  if (handle_ == 0) return;
  surface_->SetInfo(ShownText(Variant(LengthMarked(ToString(msg)))));
}

void TyxStatus::SetStatus(const Variant& value) {
  if (handle_ == 0) return;
  surface_->SetProgress(ToInteger(value));
}

bool TyxStatus::StatusIsCancelled() const {
  return g_cancel_requested != 0;
}

void TyxStatus::CloseStatus() {
  if (handle_ == 0) return;
  surface_->Close();
  handle_ = 0;
}

void TyxStatus::GetVer(const Variant& /*file*/) {
  mj1 = QV_VERSION_MAJOR;
  mj2 = QV_VERSION_MINOR;
  mn1 = QV_VERSION_PATCH;
  mn2 = QV_VERSION_BUILD;
}

String TyxStatus::GetSysCode(const Variant& language) {
  // The library filled a buffer of this many characters; a longer text was cut there.
  constexpr size_t kBufferSize = 1000000;
  String code = ToString(language);
  code.Append(u"  ");
  const SysCodeProvider& provider = Vars().GetCode;
  if (!provider) return String();
  const String text = provider(code.view().substr(0, 2));
  StringView shown = text.view().substr(0, kBufferSize);
  const size_t nul = shown.find(Char{0});
  if (nul != StringView::npos) shown = shown.substr(0, nul);
  return String(shown);
}

void TyxStatus::SetMode(StatusMode mode) {
  surface_->SetMode(mode);
  g_quiet = mode == StatusMode::kQuiet;
}

StatusMode TyxStatus::mode() const {
  return surface_->mode();
}

void TyxStatus::ClearCancel() {
  g_cancel_requested = 0;
}

void TyxStatus::SuspendLine() {
  surface_->Suspend();
}

TyxStatus& SharedStatus() {
  Ref<Object>& slot = Vars().Status;
  if (auto* status = dynamic_cast<TyxStatus*>(slot.get())) return *status;
  Ref<TyxStatus> created = MakeRef<TyxStatus>();
  slot = created;
  return *created;
}

void RaiseCancelled() {
  TyxStatus& status = SharedStatus();
  status.CloseStatus();
  status.ClearCancel();
  String words = u"Generation cancelled by user!";
  Vars().ProjErr = words;
  throw Error::Failure(words);
}

}  // namespace qv
