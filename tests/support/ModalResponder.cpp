#include "support/ModalResponder.h"

#include "platform/ResourceLib.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace qvtest {
namespace {

thread_local ModalResponder* t_active = nullptr;

bool IsMessageBox(HWND h)
{
    HWND text = GetDlgItem(h, 0xFFFF);
    return ClassOf(h) == "#32770" && text && ClassOf(text) == "Static";
}

// The messages the module added carry English texts of its own.
const std::pair<UINT, const char*> kModuleTexts[] = {
    {45570, "This list cannot be saved: a scene list file holds at most %d scenes.\n\nDelete or merge scenes, then save again."},
    {45571, "The capture folder is too long: it may have at most %d characters. Nothing was changed."},
    {45572, "The capture file name is too long: it may have at most %d characters. Nothing was changed."},
    {45573, "The library folder is too long: it may have at most %d characters. Nothing was changed."},
    {45574, "The scene list could not be saved to %s.\n\nThe file that was there before has been left as it was."},
};

// The letters of a format's conversions ("%s at %d%%" gives "sd").
std::string ConversionsOf(const std::string& format)
{
    std::string letters;
    for (size_t i = format.find('%'); i != std::string::npos && i + 1 < format.size(); i = format.find('%', i + 2))
        if (format[i + 1] != '%') letters += format[i + 1];
    return letters;
}

// Presses the button a user would to get rid of a window.
void Dismiss(HWND h)
{
    int id = GetDlgItem(h, IDCANCEL) ? IDCANCEL : GetDlgItem(h, IDNO) ? IDNO : GetDlgItem(h, IDOK) ? IDOK : IDCANCEL;
    PostMessageA(h, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0);
}

} // namespace

std::string ClassOf(HWND h)
{
    char name[64] = "";
    GetClassNameA(h, name, sizeof name);
    return name;
}

std::string MessageBoxTextOf(HWND hBox)
{
    char text[2048] = "";
    GetWindowTextA(GetDlgItem(hBox, 0xFFFF), text, sizeof text);
    return text;
}

ModalResponder::ModalResponder(DWORD watchdogMs)
    : m_hook(SetWindowsHookExA(WH_CBT, &CbtProc, nullptr, GetCurrentThreadId())),
      m_hLibrary(qvCaptureGetNewRCInstanceHandle()), m_watchdogMs(watchdogMs)
{
    t_active = this;
}

ModalResponder::~ModalResponder()
{
    UnhookWindowsHookEx(m_hook);
    for (UINT_PTR timer : {m_answerTimer, m_watchdog})
        if (timer) KillTimer(nullptr, timer);
    if (t_active == this) t_active = nullptr;
}

std::string ModalResponder::ResText(UINT id, const char* conversions) const
{
    char text[2048] = "";
    LoadStringA(m_hLibrary, id, text, sizeof text);
    if (text[0] && ConversionsOf(text) == conversions) return text;
    for (const auto& [moduleId, moduleText] : kModuleTexts)
        if (moduleId == id) return moduleText;
    return text;
}

void ModalResponder::Verify() const
{
    for (size_t i = m_next; i < m_expected.size(); ++i) ADD_FAILURE() << "never shown: " << m_expected[i].text;
}

LRESULT CALLBACK ModalResponder::CbtProc(int code, WPARAM wp, LPARAM lp)
{
    ModalResponder* self = t_active;
    HWND h = reinterpret_cast<HWND>(wp);
    DWORD pid = 0;
    if (self && h) GetWindowThreadProcessId(h, &pid);
    if (pid == GetCurrentProcessId() && code == HCBT_DESTROYWND) {
        // Window handles are reused: a new window may get a closed one's handle.
        auto& done = self->m_handled;
        done.erase(std::remove(done.begin(), done.end(), h), done.end());
    } else if (pid == GetCurrentProcessId() && code == HCBT_ACTIVATE && !self->m_answerTimer &&
               std::find(self->m_handled.begin(), self->m_handled.end(), h) == self->m_handled.end()) {
        // Message boxes, and modal dialogs a test asked for, are answered; the
        // module's modeless dialog (reactivated whenever a modal one closes,
        // its owner not disabled) is left alone.
        HWND owner = GetWindow(h, GW_OWNER);
        bool windowNext = self->m_next < self->m_expected.size() && !self->m_expected[self->m_next].box;
        if (IsMessageBox(h) || (windowNext && owner && !IsWindowEnabled(owner) && ClassOf(h) == "#32770")) {
            self->m_handled.push_back(h);
            self->m_answerWnd = h;
            // Answer once the window has initialised and its modal loop runs.
            self->m_answerTimer = SetTimer(nullptr, 0, 30, &OnTimer);
        }
    }
    return CallNextHookEx(nullptr, code, wp, lp);
}

VOID CALLBACK ModalResponder::OnTimer(HWND, UINT, UINT_PTR id, DWORD)
{
    KillTimer(nullptr, id);
    ModalResponder* self = t_active;
    if (self && id == self->m_answerTimer) {
        self->m_answerTimer = 0;
        if (IsWindow(self->m_answerWnd)) self->Answer(self->m_answerWnd);
    } else if (self && id == self->m_watchdog) {
        self->m_watchdog = 0;
        if (!IsWindow(self->m_watchWnd)) return;
        ADD_FAILURE() << "window still open after the watchdog's deadline";
        Dismiss(self->m_watchWnd);
        PostMessageA(self->m_watchWnd, WM_CLOSE, 0, 0);
    }
}

void ModalResponder::Answer(HWND hWnd)
{
    bool box = IsMessageBox(hWnd);
    std::string shown = box ? MessageBoxTextOf(hWnd) : ClassOf(hWnd);
    if (m_next >= m_expected.size()) {
        ADD_FAILURE() << "unexpected window: \"" << shown << "\"";
        return Dismiss(hWnd);
    }
    const Expectation& e = m_expected[m_next++];
    if (e.box && (!box || shown != e.text)) {
        ADD_FAILURE() << "expected message box \"" << e.text << "\", got \"" << shown << "\"";
        return Dismiss(hWnd);
    }
    if (e.box)
        PostMessageA(hWnd, WM_COMMAND, MAKEWPARAM(e.button, BN_CLICKED), 0);
    else if (!e.handler(hWnd))
        ADD_FAILURE() << "handler refused " << e.text;
    // The watchdog closes the window if the answer did not.
    if (m_watchdog) KillTimer(nullptr, m_watchdog);
    m_watchWnd = hWnd;
    m_watchdog = SetTimer(nullptr, 0, m_watchdogMs, &OnTimer);
}

} // namespace qvtest
