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
    // The next file dialog gets this name typed in and OK pressed.
    void ChooseFile(const std::string& path, const std::string& shot = "")
    {
        s_file = path;
        s_shot = shot;
    }

private:
    static LRESULT CALLBACK CbtProc(int code, WPARAM wp, LPARAM lp);
    static VOID CALLBACK AnswerLater(HWND, UINT, UINT_PTR id, DWORD);
    static HHOOK s_hook;
    static int s_button;
    static HWND s_pending;
    static std::string s_file;
    static std::string s_shot;  // a screenshot of the file dialog, its preview shown
public:
    // The next other dialog (the scan options) is photographed, then cancelled.
    void PhotographNextDialog(const std::string& path) { s_dialogShot = path; }

private:
    static std::string s_dialogShot;
};

// Saves what the screen shows of a window as a 24-bit BMP file.
bool SaveWindowBitmap(HWND hWnd, const std::string& path);

// Dispatches messages for `ms` milliseconds.
void Pump(DWORD ms);

// What a user does with the mouse and keys in the pre-scan dialog's scene list.
namespace ui {
// The list-client rectangle of a cell (column 0 ends where column 1 begins).
RECT Cell(HWND list, int row, int column);
// Clicks a cell's centre (with Shift held when asked).
void ClickCell(HWND list, int row, int column, bool shift = false);
void DoubleClickCell(HWND list, int row, int column);
// Types text into the window that has the focus, as key presses would.
void Type(HWND target, const char* text);
// Presses a button of a dialog, the picture buttons included.
void Press(HWND dialog, int id);
}
