#include "Automation.h"

#include <commctrl.h>
#include <commdlg.h>
#include <cstdio>
#include <vector>

HHOOK MessageBoxAnswerer::s_hook;
int MessageBoxAnswerer::s_button;
HWND MessageBoxAnswerer::s_pending;
std::string MessageBoxAnswerer::s_file;
std::string MessageBoxAnswerer::s_shot;
std::string MessageBoxAnswerer::s_dialogShot;

MessageBoxAnswerer::MessageBoxAnswerer(int button)
{
    s_button = button;
    s_hook = SetWindowsHookExA(WH_CBT, &MessageBoxAnswerer::CbtProc, nullptr, GetCurrentThreadId());
}

MessageBoxAnswerer::~MessageBoxAnswerer()
{
    UnhookWindowsHookEx(s_hook);
    s_hook = nullptr;
}

LRESULT CALLBACK MessageBoxAnswerer::CbtProc(int code, WPARAM wp, LPARAM lp)
{
    if (code == HCBT_ACTIVATE && wp) {
        HWND h = reinterpret_cast<HWND>(wp);
        char cls[16] = "";
        GetClassNameA(h, cls, sizeof cls);
        bool fileDialog = !s_file.empty() && (GetDlgItem(h, 1148) || GetDlgItem(h, 1152));
        HWND owner = GetWindow(h, GW_OWNER);
        bool otherModal = !s_dialogShot.empty() && owner && !IsWindowEnabled(owner);
        if (std::string(cls) == "#32770" && (GetDlgItem(h, 0xFFFF) || fileDialog || otherModal) && !s_pending) {
            s_pending = h;
            SetTimer(nullptr, 0, 50, &MessageBoxAnswerer::AnswerLater);
        }
    }
    return CallNextHookEx(s_hook, code, wp, lp);
}

VOID CALLBACK MessageBoxAnswerer::AnswerLater(HWND, UINT, UINT_PTR id, DWORD)
{
    KillTimer(nullptr, id);
    HWND box = s_pending;
    s_pending = nullptr;
    if (!IsWindow(box)) return;
    if (!GetDlgItem(box, 0xFFFF) && !GetDlgItem(box, 1148) && !GetDlgItem(box, 1152)) {
        RedrawWindow(box, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        std::printf("screenshot: %s\n", s_dialogShot.c_str());
        SaveWindowBitmap(box, s_dialogShot);
        s_dialogShot.clear();
        PostMessageA(box, WM_COMMAND, IDCANCEL, 0);
        return;
    }
    if (!GetDlgItem(box, 0xFFFF)) {  // a file dialog: type the name, press OK
        HWND name = GetDlgItem(box, 1152) ? GetDlgItem(box, 1152) : GetDlgItem(box, 1148);
        SetWindowTextA(name, s_file.c_str());
        if (!s_shot.empty()) {
            // Show the tape preview of the chosen file as a selection would, then take the picture.
            for (HWND area = GetWindow(box, GW_CHILD); area; area = GetWindow(area, GW_HWNDNEXT)) {
                if (!GetDlgItem(area, 12345)) continue;
                OFNOTIFYA note = {};
                note.hdr.hwndFrom = box;
                note.hdr.code = CDN_SELCHANGE;
                SendMessageA(area, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&note));
            }
            RedrawWindow(box, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
            std::printf("screenshot: %s\n", s_shot.c_str());
            SaveWindowBitmap(box, s_shot);
            s_shot.clear();
        }
        char title[128] = "";
        GetWindowTextA(box, title, sizeof title);
        std::printf("%s: %s\n", title, s_file.c_str());
        s_file.clear();
        PostMessageA(box, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(box, IDOK)));
        return;
    }
    char text[1024] = "";
    GetWindowTextA(GetDlgItem(box, 0xFFFF), text, sizeof text);
    std::printf("message: %s\n  answered: %s\n", text, s_button == IDYES ? "Yes" : s_button == IDNO ? "No" : "OK");
    int button = GetDlgItem(box, s_button) ? s_button : IDOK;
    PostMessageA(box, WM_COMMAND, button, 0);
}

bool SaveWindowBitmap(HWND hWnd, const std::string& path)
{
    RECT rc;
    if (!GetWindowRect(hWnd, &rc)) return false;
    int w = rc.right - rc.left, h = rc.bottom - rc.top;
    HDC screen = GetDC(nullptr);
    HDC mem = CreateCompatibleDC(screen);
    BITMAPINFO bi = {};
    bi.bmiHeader.biSize = sizeof bi.bmiHeader;
    bi.bmiHeader.biWidth = w;
    bi.bmiHeader.biHeight = h;
    bi.bmiHeader.biPlanes = 1;
    bi.bmiHeader.biBitCount = 24;
    void* bits = nullptr;
    HBITMAP dib = CreateDIBSection(screen, &bi, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ old = SelectObject(mem, dib);
    BitBlt(mem, 0, 0, w, h, screen, rc.left, rc.top, SRCCOPY);
    GdiFlush();
    int stride = (w * 3 + 3) & ~3;
    BITMAPFILEHEADER fh = {};
    fh.bfType = 0x4D42;
    fh.bfOffBits = sizeof fh + sizeof bi.bmiHeader;
    fh.bfSize = fh.bfOffBits + static_cast<DWORD>(stride * h);
    bool ok = false;
    if (FILE* f = std::fopen(path.c_str(), "wb")) {
        ok = std::fwrite(&fh, sizeof fh, 1, f) == 1 && std::fwrite(&bi.bmiHeader, sizeof bi.bmiHeader, 1, f) == 1 &&
             std::fwrite(bits, static_cast<size_t>(stride * h), 1, f) == 1;
        std::fclose(f);
    }
    SelectObject(mem, old);
    DeleteObject(dib);
    DeleteDC(mem);
    ReleaseDC(nullptr, screen);
    return ok;
}

void Pump(DWORD ms)
{
    DWORD start = GetTickCount();
    do {
        MSG msg;
        while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&msg);
            DispatchMessageA(&msg);
        }
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    } while (GetTickCount() - start < ms);
}

namespace ui {

RECT Cell(HWND list, int row, int column)
{
    SendMessageA(list, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
    RECT rc = {};
    if (column > 0) {
        rc.top = column;
        rc.left = LVIR_BOUNDS;
        SendMessageA(list, LVM_GETSUBITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&rc));
        return rc;
    }
    rc.left = LVIR_BOUNDS;
    SendMessageA(list, LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&rc));
    RECT next = {};
    next.top = 1;
    next.left = LVIR_BOUNDS;
    SendMessageA(list, LVM_GETSUBITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&next));
    rc.right = next.left;
    return rc;
}

void ClickCell(HWND list, int row, int column, bool shift)
{
    RECT rc = Cell(list, row, column);
    LPARAM at = MAKELPARAM((rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2);
    BYTE keys[256];
    GetKeyboardState(keys);
    keys[VK_SHIFT] = shift ? 0x80 : 0;
    SetKeyboardState(keys);
    SendMessageA(list, WM_LBUTTONDOWN, MK_LBUTTON | (shift ? MK_SHIFT : 0), at);
    SendMessageA(list, WM_LBUTTONUP, shift ? MK_SHIFT : 0, at);
    keys[VK_SHIFT] = 0;
    SetKeyboardState(keys);
    Pump(50);
}

void DoubleClickCell(HWND list, int row, int column)
{
    ClickCell(list, row, column);
    RECT rc = Cell(list, row, column);
    LPARAM at = MAKELPARAM((rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2);
    SendMessageA(list, WM_LBUTTONDBLCLK, MK_LBUTTON, at);
    SendMessageA(list, WM_LBUTTONUP, 0, at);
    Pump(50);
}

void Type(HWND target, const char* text)
{
    for (const char* p = text; *p; ++p) SendMessageA(target, WM_CHAR, static_cast<unsigned char>(*p), 1);
    Pump(20);
}

void Press(HWND dialog, int id)
{
    SendDlgItemMessageA(dialog, id, BM_CLICK, 0, 0);
    Pump(100);
}

} // namespace ui
