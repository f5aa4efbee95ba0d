#include "support/ModalResponder.h"

#include "platform/ResourceLib.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

namespace qvtest {

std::string ClassOf(HWND h)
{
    char name[64] = "";
    GetClassNameA(h, name, sizeof name);
    return name;
}

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

// The button a user would press to get rid of an unexpected box.
int EscapeButton(HWND h)
{
    for (int id : {IDCANCEL, IDNO, IDOK})
        if (GetDlgItem(h, id)) return id;
    return IDCANCEL;
}

} // namespace

std::string MessageBoxTextOf(HWND hBox)
{
    char text[2048] = "";
    GetWindowTextA(GetDlgItem(hBox, 0xFFFF), text, sizeof text);
    return text;
}

ModalResponder::ModalResponder(DWORD watchdogMs)
    : m_watchdogMs(watchdogMs), m_hLibrary(qvCaptureGetNewRCInstanceHandle())
{
    t_active = this;
    m_hook = SetWindowsHookExA(WH_CBT, &ModalResponder::CbtProc, nullptr, GetCurrentThreadId());
}

ModalResponder::~ModalResponder()
{
    if (m_hook) UnhookWindowsHookEx(m_hook);
    if (m_answerTimer) KillTimer(nullptr, m_answerTimer);
    if (m_watchdog) KillTimer(nullptr, m_watchdog);
    if (t_active == this) t_active = nullptr;
}

ModalResponder& ModalResponder::ExpectMessage(const std::string& text, int button)
{
    Expectation e;
    e.what = "message box \"" + text + "\"";
    e.isMessage = true;
    e.text = text;
    e.button = button;
    m_expected.push_back(e);
    return *this;
}

ModalResponder& ModalResponder::UseLibrary(HINSTANCE hLibrary)
{
    m_hLibrary = hLibrary;
    return *this;
}

std::string ModalResponder::ResText(UINT id, const char* kind) const
{
    char text[2048] = "";
    LoadStringA(m_hLibrary, id, text, sizeof text);
    if (text[0] && ConversionsOf(text) == kind) return text;
    for (const auto& [moduleId, moduleText] : kModuleTexts)
        if (moduleId == id) return moduleText;
    return text;
}

ModalResponder& ModalResponder::ExpectMessageRes(UINT id, int button)
{
    return ExpectMessage(ResText(id, ""), button);
}

ModalResponder& ModalResponder::ExpectWindow(const std::string& what, std::function<bool(HWND)> handler)
{
    Expectation e;
    e.what = what;
    e.handler = std::move(handler);
    m_expected.push_back(e);
    return *this;
}

void ModalResponder::Verify() const
{
    for (const auto& f : m_failures) ADD_FAILURE() << f;
    for (size_t i = m_next; i < m_expected.size(); ++i) ADD_FAILURE() << "never shown: " << m_expected[i].what;
}

LRESULT CALLBACK ModalResponder::CbtProc(int code, WPARAM wp, LPARAM lp)
{
    ModalResponder* self = t_active;
    if (self && code == HCBT_ACTIVATE && wp) self->OnActivate(reinterpret_cast<HWND>(wp));
    if (self && code == HCBT_DESTROYWND && wp) {
        // Window handles are reused: a new window may get a closed one's handle.
        auto& handled = self->m_handled;
        handled.erase(std::remove(handled.begin(), handled.end(), reinterpret_cast<HWND>(wp)), handled.end());
    }
    return CallNextHookEx(self ? self->m_hook : nullptr, code, wp, lp);
}

void ModalResponder::OnActivate(HWND hWnd)
{
    DWORD pid = 0;
    GetWindowThreadProcessId(hWnd, &pid);
    if (pid != GetCurrentProcessId()) return;
    if (std::find(m_handled.begin(), m_handled.end(), hWnd) != m_handled.end()) return;
    bool isBox = IsMessageBox(hWnd);
    bool windowExpected = m_next < m_expected.size() && !m_expected[m_next].isMessage;
    // Only message boxes and the dialogs a test asked for are answered; the
    // module's own modeless dialog gets activated too and is left alone.
    // A modal window disables its owner; the module's modeless dialog, which
    // is reactivated whenever a modal one closes, does not.
    HWND owner = GetWindow(hWnd, GW_OWNER);
    bool modal = owner && !IsWindowEnabled(owner);
    if (!isBox && !(windowExpected && modal && ClassOf(hWnd) == "#32770")) return;
    if (m_answerTimer) return;  // one window at a time; a nested one is seen when it activates again
    m_handled.push_back(hWnd);
    m_answerWnd = hWnd;
    // Answer once the window has finished initialising and its modal loop runs.
    m_answerTimer = SetTimer(nullptr, 0, 30, &ModalResponder::OnAnswerTimer);
}

VOID CALLBACK ModalResponder::OnAnswerTimer(HWND, UINT, UINT_PTR id, DWORD)
{
    KillTimer(nullptr, id);
    ModalResponder* self = t_active;
    if (!self || self->m_answerTimer != id) return;
    self->m_answerTimer = 0;
    HWND hWnd = self->m_answerWnd;
    self->m_answerWnd = nullptr;
    if (IsWindow(hWnd)) self->Answer(hWnd);
}

void ModalResponder::Answer(HWND hWnd)
{
    bool isBox = IsMessageBox(hWnd);
    std::string shown = isBox ? MessageBoxTextOf(hWnd) : ClassOf(hWnd);
    m_seen.push_back(shown);
    if (m_next >= m_expected.size()) {
        m_failures.push_back("unexpected window: \"" + shown + "\"");
        PostMessageA(hWnd, WM_COMMAND, MAKEWPARAM(EscapeButton(hWnd), BN_CLICKED), 0);
        return;
    }
    const Expectation& e = m_expected[m_next++];
    if (e.isMessage) {
        if (!isBox || shown != e.text) {
            m_failures.push_back("expected " + e.what + ", got \"" + shown + "\"");
            PostMessageA(hWnd, WM_COMMAND, MAKEWPARAM(EscapeButton(hWnd), BN_CLICKED), 0);
            return;
        }
        PostMessageA(hWnd, WM_COMMAND, MAKEWPARAM(e.button, BN_CLICKED), 0);
    } else if (!e.handler(hWnd)) {
        m_failures.push_back("handler refused " + e.what);
    }
    // The watchdog closes the window if the answer did not.
    if (m_watchdog) KillTimer(nullptr, m_watchdog);
    m_watchWnd = hWnd;
    m_watchdog = SetTimer(nullptr, 0, m_watchdogMs, &ModalResponder::OnWatchdog);
}

VOID CALLBACK ModalResponder::OnWatchdog(HWND, UINT, UINT_PTR id, DWORD)
{
    KillTimer(nullptr, id);
    ModalResponder* self = t_active;
    if (!self || self->m_watchdog != id) return;
    self->m_watchdog = 0;
    if (IsWindow(self->m_watchWnd)) {
        self->m_failures.push_back("window still open after the watchdog's deadline");
        PostMessageA(self->m_watchWnd, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
        PostMessageA(self->m_watchWnd, WM_CLOSE, 0, 0);
    }
}

} // namespace qvtest
