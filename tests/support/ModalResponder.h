// Answers the module's modal windows (message boxes, file and option
// dialogs) from a per-thread CBT hook, as a user would, and fails the test
// when an unexpected one appears or an expected one never closes.
//
// Each expectation is consumed in order.  When a window of this process is
// activated, the next expectation is checked against it and answered:
// message boxes by their text (static control 0xFFFF) and a button; other
// dialogs by a handler that fills controls and presses a button.  A watchdog
// timer closes anything still open after its deadline and records a failure.
#pragma once

#include <windows.h>

#include <cstdio>
#include <functional>
#include <type_traits>
#include <string>
#include <vector>

namespace qvtest {

class ModalResponder {
public:
    explicit ModalResponder(DWORD watchdogMs = 5000);
    ~ModalResponder();

    // A message box whose text equals `text`, answered with `button` (IDYES ...).
    ModalResponder& ExpectMessage(const std::string& text, int button);
    // A message box showing the text the module shows for string `id`,
    // formatted with `arg` when given: the resource library's text, or the
    // module's own English one when the library lacks it or its text reads
    // other arguments than the one passed.
    ModalResponder& ExpectMessageRes(UINT id, int button);
    template <class T> ModalResponder& ExpectMessageRes(UINT id, T arg, int button)
    {
        char text[4096];
        std::snprintf(text, sizeof text, ResText(id, std::is_integral_v<T> ? "d" : "s").c_str(), arg);
        return ExpectMessage(text, button);
    }
    // The resource library the module uses (the host's, unless a test swaps it).
    ModalResponder& UseLibrary(HINSTANCE hLibrary);
    // Any other window: `handler` gets it once it is shown and does what the
    // user would (it must end the window, e.g. by posting a button click).
    // Return false from the handler to report a mismatch.
    ModalResponder& ExpectWindow(const std::string& what, std::function<bool(HWND)> handler);

    // Message box flags of the boxes seen (MB_YESNO | MB_ICONEXCLAMATION ...)
    // cannot be read back; the texts and the order can.
    const std::vector<std::string>& Seen() const { return m_seen; }
    int Pending() const { return static_cast<int>(m_expected.size() - m_next); }
    // Failures so far: unexpected windows, mismatched texts, watchdog closes.
    const std::vector<std::string>& Failures() const { return m_failures; }
    // Checks (with GoogleTest) that every expectation was met and nothing failed.
    void Verify() const;

private:
    struct Expectation {
        std::string what;
        bool isMessage = false;
        std::string text;
        int button = IDOK;
        std::function<bool(HWND)> handler;
    };
    static LRESULT CALLBACK CbtProc(int code, WPARAM wp, LPARAM lp);
    static VOID CALLBACK OnAnswerTimer(HWND, UINT, UINT_PTR id, DWORD);
    static VOID CALLBACK OnWatchdog(HWND, UINT, UINT_PTR id, DWORD);
    void OnActivate(HWND hWnd);
    void Answer(HWND hWnd);

    std::string ResText(UINT id, const char* kind) const;

    HHOOK m_hook = nullptr;
    HINSTANCE m_hLibrary;
    DWORD m_watchdogMs;
    std::vector<Expectation> m_expected;
    size_t m_next = 0;
    std::vector<std::string> m_seen;
    std::vector<std::string> m_failures;
    std::vector<HWND> m_handled;
    UINT_PTR m_answerTimer = 0;
    HWND m_answerWnd = nullptr;
    UINT_PTR m_watchdog = 0;
    HWND m_watchWnd = nullptr;
};

// A window's class name ("#32770", "Button" ...).
std::string ClassOf(HWND h);
// The text of a message box window (its static control 0xFFFF).
std::string MessageBoxTextOf(HWND hBox);

} // namespace qvtest
