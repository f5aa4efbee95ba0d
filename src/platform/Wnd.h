// CWnd: a window handle with the few operations the module needs, and
// subclassing for the module's own controls (list, edit, buttons).
#pragma once

#include <windows.h>

#include <string>

class CWnd {
public:
    CWnd() = default;
    explicit CWnd(HWND hWnd) : m_hWnd(hWnd) {}
    virtual ~CWnd();
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    // A non-owning wrapper for a window the module did not make (the host's).
    static CWnd* FromHandle(HWND hWnd);
    // The subclassed object behind a window, or null.
    static CWnd* FromHandlePermanent(HWND hWnd);

    HWND GetSafeHwnd() const { return m_hWnd; }
    operator HWND() const { return m_hWnd; }
    bool IsWindow() const { return m_hWnd && ::IsWindow(m_hWnd); }

    // Routes the window's messages through WindowProc until it is destroyed.
    bool SubclassWindow(HWND hWnd);
    bool SubclassDlgItem(UINT id, HWND hParent);
    HWND UnsubclassWindow();
    HWND Detach();

    LRESULT SendMessage(UINT msg, WPARAM wp = 0, LPARAM lp = 0) const { return ::SendMessageA(m_hWnd, msg, wp, lp); }
    BOOL PostMessage(UINT msg, WPARAM wp = 0, LPARAM lp = 0) const { return ::PostMessageA(m_hWnd, msg, wp, lp); }
    HWND GetDlgItem(int id) const { return ::GetDlgItem(m_hWnd, id); }
    int GetDlgCtrlID() const { return ::GetDlgCtrlID(m_hWnd); }
    HWND GetParent() const { return ::GetParent(m_hWnd); }
    BOOL EnableWindow(BOOL bEnable) const { return ::EnableWindow(m_hWnd, bEnable); }
    BOOL ShowWindow(int nCmd) const { return ::ShowWindow(m_hWnd, nCmd); }
    BOOL IsWindowEnabled() const { return ::IsWindowEnabled(m_hWnd); }
    BOOL IsWindowVisible() const { return ::IsWindowVisible(m_hWnd); }
    void SetWindowText(const char* text) const { ::SetWindowTextA(m_hWnd, text ? text : ""); }
    std::string GetWindowText() const;
    void GetClientRect(RECT* rc) const { ::GetClientRect(m_hWnd, rc); }
    void GetWindowRect(RECT* rc) const { ::GetWindowRect(m_hWnd, rc); }
    void MoveWindow(const RECT& rc, BOOL bRepaint = TRUE) const
    {
        ::MoveWindow(m_hWnd, rc.left, rc.top, rc.right - rc.left, rc.bottom - rc.top, bRepaint);
    }
    void Invalidate(BOOL bErase = TRUE) const { ::InvalidateRect(m_hWnd, nullptr, bErase); }
    HWND SetFocus() const { return ::SetFocus(m_hWnd); }

    // Enables / shows one child control by ID.
    void EnableItem(int id, BOOL bEnable) const { ::EnableWindow(GetDlgItem(id), bEnable); }
    void ShowItem(int id, BOOL bShow) const { ::ShowWindow(GetDlgItem(id), bShow ? SW_SHOW : SW_HIDE); }
    void SetItemText(int id, const char* text) const { ::SetDlgItemTextA(m_hWnd, id, text ? text : ""); }
    std::string GetItemText(int id) const;

    virtual BOOL DestroyWindow();

    HWND m_hWnd = nullptr;

protected:
    // Messages of a subclassed window.  The default hands them to the
    // window's original procedure.
    virtual LRESULT WindowProc(UINT msg, WPARAM wp, LPARAM lp);
    LRESULT Default(UINT msg, WPARAM wp, LPARAM lp);
    // Called after the window's last message; the object may delete itself.
    virtual void PostNcDestroy() {}

private:
    static LRESULT CALLBACK SubclassProc(HWND hWnd, UINT msg, WPARAM wp, LPARAM lp);
    WNDPROC m_pfnSuper = nullptr;
};
