#include "ui/mailbox.h"

#include <commctrl.h>

#include <utility>

#include "core/window_messages.h"
#include "ui/kept_view.h"

Mailbox& pageNotes = *new Mailbox;

namespace {

// Between two looks into the mailbox the window has so long for its user. Nobody reads faster.
constexpr uint64_t kRestMs = 50;

void AppendToLog(HWND log, const std::wstring& lines) {
  const KeptView view(log);
  const LRESULT end = SendMessageW(log, WM_GETTEXTLENGTH, 0, 0);
  SendMessageW(log, EM_SETSEL, static_cast<WPARAM>(end), end);
  SendMessageW(log, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(lines.c_str()));
}

}  // namespace

template <typename Write>
void Mailbox::Leave(HWND control, Write write) {
  const bool onItsThread = GetWindowThreadProcessId(control, nullptr) == GetCurrentThreadId();
  {
    const std::lock_guard guard(lock_);
    write(notes_);
    if (!onItsThread) Wake(control);
  }
  if (onItsThread) Show();
}

// A window that went without looking is told no more, and what lies here for it alone is thrown away.
void Mailbox::Wake(HWND control) {
  if (IsWindow(woken_)) return;
  woken_ = GetAncestor(control, GA_ROOT);
  if (!woken_) {
    notes_ = {};
  } else if (!PostMessageW(woken_, kShowNotesMessage, FALSE, 0)) {
    woken_ = nullptr;
  }
}

void Mailbox::LeaveText(HWND control, const std::wstring& text) {
  Leave(control, [&](Notes& notes) { notes.texts[control] = text; });
}

void Mailbox::LeavePosition(HWND bar, int position) {
  Leave(bar, [&](Notes& notes) { notes.positions[bar] = position; });
}

void Mailbox::LeaveLine(HWND log, const std::wstring& line) {
  Leave(log, [&](Notes& notes) { notes.lines[log].append(line).append(L"\r\n"); });
}

void Mailbox::Settle(HWND window) { SendMessageW(window, kShowNotesMessage, TRUE, 0); }

void Mailbox::OnMessage(HWND window, WPARAM atOnce) {
  const uint64_t rested = GetTickCount64() - lastShown_;
  const bool rests =
      !atOnce && rested < kRestMs &&
      SetTimer(window, reinterpret_cast<UINT_PTR>(this), static_cast<UINT>(kRestMs - rested), ShowAfterRest) != 0;
  if (!rests) Show();
}

void CALLBACK Mailbox::ShowAfterRest(HWND window, UINT, UINT_PTR id, DWORD) {
  KillTimer(window, id);
  reinterpret_cast<Mailbox*>(id)->Show();
}

void Mailbox::Show() {
  Notes notes;
  {
    const std::lock_guard guard(lock_);
    std::swap(notes, notes_);
    woken_ = nullptr;
  }
  for (const auto& [control, text] : notes.texts) SetWindowTextW(control, text.c_str());
  for (const auto& [bar, position] : notes.positions) {
    SendMessageW(bar, PBM_SETPOS, static_cast<WPARAM>(position), 0);
  }
  for (const auto& [log, lines] : notes.lines) AppendToLog(log, lines);
  lastShown_ = GetTickCount64();
}
