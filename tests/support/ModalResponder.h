// Answers the module's modal windows as a user would, from a per-thread CBT
// hook: message boxes by their text and a button, other modal dialogs by a
// handler. Expectations are met in order; an unexpected window, a wrong text
// or a window still open after the watchdog's deadline fails the test.
#pragma once

#include <windows.h>

#include <cstdio>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

namespace qvtest {

class ModalResponder {
public:
    explicit ModalResponder(DWORD watchdogMs = 5000);
    ~ModalResponder();

    // A message box whose text equals `text`, answered with `button` (IDYES ...).
    ModalResponder& ExpectMessage(const std::string& text, int button) { return Expect(true, text, button, {}); }
    // A message box showing string `id` (formatted with `arg`) as the module
    // shows it: the resource library's text, or the module's own English one
    // when the library lacks it or its text reads other arguments.
    ModalResponder& ExpectMessageRes(UINT id, int button) { return ExpectMessage(ResText(id, ""), button); }
    template <class T> ModalResponder& ExpectMessageRes(UINT id, T arg, int button)
    {
        char text[4096];
        std::snprintf(text, sizeof text, ResText(id, std::is_integral_v<T> ? "d" : "s").c_str(), arg);
        return ExpectMessage(text, button);
    }
    // The resource library the module uses (the host's, unless a test swaps it).
    ModalResponder& UseLibrary(HINSTANCE hLibrary) { m_hLibrary = hLibrary; return *this; }
    // A modal dialog: `handler` does what the user would and must end it
    // (e.g. by posting a button click); it returns false on a mismatch.
    ModalResponder& ExpectWindow(const std::string& what, std::function<bool(HWND)> h) { return Expect(false, what, IDOK, h); }
    // Fails the test for every expectation never met.
    void Verify() const;

private:
    // text: a box's text, or what the window is
    struct Expectation { bool box; std::string text; int button; std::function<bool(HWND)> handler; };
    ModalResponder& Expect(bool box, const std::string& text, int button, std::function<bool(HWND)> handler)
    {
        return m_expected.push_back({box, text, button, std::move(handler)}), *this;
    }
    std::string ResText(UINT id, const char* conversions) const;
    static LRESULT CALLBACK CbtProc(int code, WPARAM wp, LPARAM lp);
    static VOID CALLBACK OnTimer(HWND, UINT, UINT_PTR id, DWORD);
    void Answer(HWND hWnd);

    HHOOK m_hook;
    HINSTANCE m_hLibrary;
    DWORD m_watchdogMs;
    std::vector<Expectation> m_expected;
    size_t m_next = 0;
    std::vector<HWND> m_handled;        // answered and still open
    UINT_PTR m_answerTimer = 0, m_watchdog = 0;
    HWND m_answerWnd = nullptr, m_watchWnd = nullptr;
};

// A window's class name ("#32770", "Button" ...).
std::string ClassOf(HWND h);
// The text of a message box window (its static control 0xFFFF).
std::string MessageBoxTextOf(HWND hBox);

} // namespace qvtest
