#include "platform/Dialog.h"

#include "session/Session.h"

#include <algorithm>
#include <exception>
#include <vector>

HINSTANCE CDialog::s_hTemplateInstance;

namespace {

// The modeless dialogs of this thread and the hook that serves them.
struct ModelessRegistry {
    std::vector<CDialog*> dialogs;
    HHOOK hook = nullptr;
    int taking = 0;  // inside TakeMessage: the hook lets the message pass
};
thread_local ModelessRegistry t_modeless;

HINSTANCE TemplateInstance(HINSTANCE configured)
{
    return configured ? configured : g_hResInst;
}

} // namespace

CDialog::CDialog(UINT nTemplateId, HWND hParent) : m_nTemplateId(nTemplateId), m_hParent(hParent) {}

CDialog::~CDialog()
{
    if (m_hWnd && ::IsWindow(m_hWnd)) ::DestroyWindow(m_hWnd);
    Unregister();
    m_hWnd = nullptr;
}

BOOL CDialog::Create(UINT nTemplateId, HWND hParent)
{
    m_nTemplateId = nTemplateId;
    m_hParent = hParent;
    m_bModal = false;
    HWND hWnd = CreateDialogParamA(TemplateInstance(s_hTemplateInstance), MAKEINTRESOURCEA(nTemplateId), hParent,
                                   &CDialog::StaticDialogProc, reinterpret_cast<LPARAM>(this));
    if (!hWnd) {
        m_hWnd = nullptr;
        return FALSE;
    }
    Register();
    return TRUE;
}

INT_PTR CDialog::DoModal()
{
    m_bModal = true;
    INT_PTR result = DialogBoxParamA(TemplateInstance(s_hTemplateInstance), MAKEINTRESOURCEA(m_nTemplateId),
                                     m_hParent, &CDialog::StaticDialogProc, reinterpret_cast<LPARAM>(this));
    m_bModal = false;
    return result;
}

void CDialog::EndDialog(INT_PTR nResult)
{
    if (m_bModal && m_hWnd) ::EndDialog(m_hWnd, nResult);
}

bool CDialog::UpdateData(bool bSaveAndValidate)
{
    if (!bSaveAndValidate) {
        DataToControls();
        return true;
    }
    return ControlsToData();
}

bool CDialog::PreTranslateMessage(MSG* pMsg)
{
    return m_hWnd && IsDialogMessageA(m_hWnd, pMsg);
}

BOOL CDialog::DestroyWindow()
{
    if (!m_hWnd) return FALSE;
    Unregister();
    return ::DestroyWindow(m_hWnd);
}

BOOL CDialog::OnInitDialog()
{
    UpdateData(false);
    return TRUE;
}

bool CDialog::OnCommand(UINT id, UINT /*code*/, HWND /*hCtl*/)
{
    if (id == IDOK) { OnOK(); return true; }
    if (id == IDCANCEL) { OnCancel(); return true; }
    return false;
}

bool CDialog::OnNotify(NMHDR*, LRESULT&) { return false; }
bool CDialog::OnTimer(UINT_PTR) { return false; }
bool CDialog::OnSysCommand(UINT, LPARAM) { return false; }
bool CDialog::OnSetCursor(HWND, UINT, UINT, BOOL&) { return false; }
bool CDialog::OnDrawItem(UINT, DRAWITEMSTRUCT*) { return false; }
bool CDialog::OnMessage(UINT, WPARAM, LPARAM, INT_PTR&) { return false; }

void CDialog::OnOK()
{
    if (!UpdateData(true)) return;
    EndDialog(IDOK);
}

void CDialog::OnCancel()
{
    EndDialog(IDCANCEL);
}

INT_PTR CDialog::DialogProc(UINT msg, WPARAM wp, LPARAM lp)
{
    switch (msg) {
    case WM_INITDIALOG:
        return OnInitDialog();
    case WM_COMMAND:
        return OnCommand(LOWORD(wp), HIWORD(wp), reinterpret_cast<HWND>(lp));
    case WM_NOTIFY: {
        LRESULT result = 0;
        if (!OnNotify(reinterpret_cast<NMHDR*>(lp), result)) return FALSE;
        SetWindowLongPtrA(m_hWnd, DWLP_MSGRESULT, result);
        return TRUE;
    }
    case WM_TIMER:
        return OnTimer(wp);
    case WM_SYSCOMMAND:
        if (!OnSysCommand(static_cast<UINT>(wp), lp)) return FALSE;
        SetWindowLongPtrA(m_hWnd, DWLP_MSGRESULT, 0);
        return TRUE;
    case WM_SETCURSOR: {
        BOOL handledResult = FALSE;
        if (!OnSetCursor(reinterpret_cast<HWND>(wp), LOWORD(lp), HIWORD(lp), handledResult)) return FALSE;
        SetWindowLongPtrA(m_hWnd, DWLP_MSGRESULT, handledResult);
        return TRUE;
    }
    case WM_DRAWITEM:
        return OnDrawItem(static_cast<UINT>(wp), reinterpret_cast<DRAWITEMSTRUCT*>(lp));
    case WM_DESTROY:
        OnDestroy();
        return FALSE;
    default: {
        INT_PTR result = 0;
        if (!OnMessage(msg, wp, lp, result)) return FALSE;
        if (m_hWnd) SetWindowLongPtrA(m_hWnd, DWLP_MSGRESULT, result);
        return TRUE;
    }
    }
}

INT_PTR CALLBACK CDialog::StaticDialogProc(HWND hWnd, UINT msg, WPARAM wp, LPARAM lp)
{
    CDialog* self;
    if (msg == WM_INITDIALOG) {
        self = reinterpret_cast<CDialog*>(lp);
        SetWindowLongPtrA(hWnd, DWLP_USER, lp);
        if (self) self->m_hWnd = hWnd;
    } else {
        self = reinterpret_cast<CDialog*>(GetWindowLongPtrA(hWnd, DWLP_USER));
    }
    if (!self) return FALSE;

    INT_PTR result = FALSE;
    try {
        result = self->DialogProc(msg, wp, lp);
    } catch (const std::exception&) {
        // No exception crosses the dialog procedure.
        result = FALSE;
    }
    if (msg == WM_NCDESTROY) {
        SetWindowLongPtrA(hWnd, DWLP_USER, 0);
        self->Unregister();
        if (self->m_hWnd == hWnd) self->m_hWnd = nullptr;
    }
    return result;
}

void CDialog::Register()
{
    auto& reg = t_modeless;
    if (std::find(reg.dialogs.begin(), reg.dialogs.end(), this) == reg.dialogs.end()) reg.dialogs.push_back(this);
    if (!reg.hook) reg.hook = SetWindowsHookExA(WH_GETMESSAGE, &CDialog::GetMessageHook, nullptr, GetCurrentThreadId());
}

void CDialog::Unregister()
{
    auto& reg = t_modeless;
    reg.dialogs.erase(std::remove(reg.dialogs.begin(), reg.dialogs.end(), this), reg.dialogs.end());
    if (reg.dialogs.empty() && reg.hook) {
        UnhookWindowsHookEx(reg.hook);
        reg.hook = nullptr;
    }
}

BOOL CDialog::TakeMessage(MSG* pMsg, UINT first, UINT last)
{
    // A count rather than a flag: a message sent from another thread may be
    // handled inside the peek and take a message of its own.
    ++t_modeless.taking;
    BOOL got = PeekMessageA(pMsg, nullptr, first, last, PM_REMOVE);
    --t_modeless.taking;
    return got;
}

LRESULT CALLBACK CDialog::GetMessageHook(int code, WPARAM wp, LPARAM lp)
{
    HHOOK hook = t_modeless.hook;
    if (code == HC_ACTION && wp == PM_REMOVE && t_modeless.taking == 0) {
        MSG* pMsg = reinterpret_cast<MSG*>(lp);
        try {
            for (CDialog* dlg : t_modeless.dialogs) {
                HWND h = dlg->m_hWnd;
                if (!h || !pMsg->hwnd || (pMsg->hwnd != h && !IsChild(h, pMsg->hwnd))) continue;
                if (dlg->PreTranslateMessage(pMsg)) {
                    pMsg->message = WM_NULL;
                    pMsg->wParam = 0;
                    pMsg->lParam = 0;
                }
                break;
            }
        } catch (const std::exception&) {
            // A hook never lets an exception out.
        }
    }
    return CallNextHookEx(hook, code, wp, lp);
}
