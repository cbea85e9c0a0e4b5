// TyxStatus: progress and status for long operations, and the place where a run hears that the
// user cancelled. The window of the original product is a console surface on stderr here: a
// status line, a bar for the third form, stage titles when stderr is no terminal; Ctrl-C sets
// the cancel flag. Visible to scripts under the same member names.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>

#include "automation/dispatch.h"
#include "automation/string.h"
#include "automation/variant.h"

namespace qv {

class ConsoleSurface;

// How the surface shows itself. Auto picks Terminal when the output is a terminal, else Titles:
// a log gets the title of each stage and never a line per table or field, so that an error
// does not drown in progress. Plain writes every line as a line of its own.
enum class StatusMode : uint8_t { kAuto, kQuiet, kPlain, kTerminal, kTitles };

class TyxStatus : public DispatchObject<TyxStatus> {
 public:
  static const DispatchTable<TyxStatus>& Table();

  // `out` receives the surface's text; stderr unless a test or host says otherwise.
  explicit TyxStatus(StatusMode mode = StatusMode::kAuto, std::FILE* out = stderr);
  ~TyxStatus() override;

  // Open the window in its first, second (text only) or third (with a bar) form. `msg` is the
  // title with its length mark in front (LengthMarked). A window that is still open is
  // forgotten, as the original did.
  void ShowStatus(const Variant& owner, const Variant& msg);
  void ShowStatus2(const Variant& owner, const Variant& msg);
  void ShowStatus3(const Variant& owner, const Variant& msg);
  // Sets the line of text of the open window; does nothing else without one.
  void DispStatus(const Variant& msg);
  // Sets the bar, 0 to 100 (callers use PercentOf), of the open window.
  void SetStatus(const Variant& value);
  // True once the user asked to cancel (Ctrl-C), until ClearCancel.
  bool StatusIsCancelled() const;
  // Closes the open window; without one it does nothing.
  void CloseStatus();
  // Fills mj1, mj2, mn1, mn2 with the version of the library (the build's version; the file
  // argument names the library and has no other use here).
  void GetVer(const Variant& file);
  // The system script text for a language code, cut to two characters padded with blanks;
  // the text ends at its first NUL. "" until a provider is installed in Vars().GetCode.
  String GetSysCode(const Variant& language);

  int16_t mj1 = 0;
  int16_t mj2 = 0;
  int16_t mn1 = 0;
  int16_t mn2 = 0;

  // The handle of the open window, 0 when none is open.
  int32_t handle() const { return handle_; }
  void SetMode(StatusMode mode);
  StatusMode mode() const;
  // Forgets a cancel request that has been acted upon.
  void ClearCancel();
  // Takes the status line off the terminal, so that a question can be asked below it; the
  // next update draws it again.
  void SuspendLine();

 private:
  void Open(int form, const Variant& msg);

  int32_t handle_ = 0;
  int32_t next_handle_ = 0;
  std::unique_ptr<ConsoleSurface> surface_;
};

// The one status object of the process (Vars().Status), created on first use.
TyxStatus& SharedStatus();

// The form in which titles and lines reach the window: one character whose code is the text's
// length, then the text. The mark is one byte wide: a text over 255 characters is cut to its
// length modulo 256 when shown.
String LengthMarked(StringView text);

// Ends a run that the user cancelled: closes the status window, sets ProjErr to "Generation
// cancelled by user!" and raises error -1 with those words.
[[noreturn]] void RaiseCancelled();

}  // namespace qv
