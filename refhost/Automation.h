// What the headless run does in place of a user: it answers the module's
// message boxes and takes screenshots.
#pragma once

#include <windows.h>

#include <string>

// While alive, every message box of this thread is answered with `button`
// (the question before closing a changed list, for one) and its text is
// printed.
class MessageBoxAnswerer {
public:
    explicit MessageBoxAnswerer(int button);
    ~MessageBoxAnswerer();
    void SetButton(int button) { s_button = button; }

private:
    static LRESULT CALLBACK CbtProc(int code, WPARAM wp, LPARAM lp);
    static VOID CALLBACK AnswerLater(HWND, UINT, UINT_PTR id, DWORD);
    static HHOOK s_hook;
    static int s_button;
    static HWND s_pending;
};

// Saves what the screen shows of a window as a 24-bit BMP file.
bool SaveWindowBitmap(HWND hWnd, const std::string& path);

// Dispatches messages for `ms` milliseconds.
void Pump(DWORD ms);
