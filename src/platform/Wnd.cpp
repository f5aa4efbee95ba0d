#include "platform/Wnd.h"

#include <exception>
#include <memory>
#include <unordered_map>
#include <vector>

namespace {

// The objects of subclassed windows, by handle.  It is read for every
// message such a window receives, so it lives in the process: a window
// property would cost a call to the window server per message under Wine.
class ObjectTable {
public:
    CWnd* Find(HWND hWnd)
    {
        AcquireSRWLockShared(&m_lock);
        auto it = m_objects.find(hWnd);
        CWnd* found = it == m_objects.end() ? nullptr : it->second;
        ReleaseSRWLockShared(&m_lock);
        return found;
    }
    void Set(HWND hWnd, CWnd* pWnd)
    {
        AcquireSRWLockExclusive(&m_lock);
        if (pWnd)
            m_objects[hWnd] = pWnd;
        else
            m_objects.erase(hWnd);
        ReleaseSRWLockExclusive(&m_lock);
    }

private:
    SRWLOCK m_lock = SRWLOCK_INIT;
    std::unordered_map<HWND, CWnd*> m_objects;
};

ObjectTable& Objects()
{
    static ObjectTable table;
    return table;
}

// Wrappers made by FromHandle live until the thread ends: they hold nothing
// but the handle, and the same window always gets the same wrapper.
thread_local std::unordered_map<HWND, std::unique_ptr<CWnd>> t_foreignWindows;

} // namespace

CWnd::~CWnd()
{
    if (m_pfnSuper && m_hWnd && ::IsWindow(m_hWnd)) UnsubclassWindow();
}

CWnd* CWnd::FromHandle(HWND hWnd)
{
    if (!hWnd) return nullptr;
    if (CWnd* own = FromHandlePermanent(hWnd)) return own;
    auto& slot = t_foreignWindows[hWnd];
    if (!slot) slot = std::make_unique<CWnd>(hWnd);
    slot->m_hWnd = hWnd;
    return slot.get();
}

CWnd* CWnd::FromHandlePermanent(HWND hWnd)
{
    return hWnd ? Objects().Find(hWnd) : nullptr;
}

std::string CWnd::GetWindowText() const
{
    int n = ::GetWindowTextLengthA(m_hWnd);
    std::vector<char> text(static_cast<size_t>(n > 0 ? n : 0) + 1);
    ::GetWindowTextA(m_hWnd, text.data(), static_cast<int>(text.size()));
    return text.data();
}

std::string CWnd::GetItemText(int id) const
{
    HWND item = GetDlgItem(id);
    int n = ::GetWindowTextLengthA(item);
    std::vector<char> text(static_cast<size_t>(n > 0 ? n : 0) + 1);
    ::GetWindowTextA(item, text.data(), static_cast<int>(text.size()));
    return text.data();
}

bool CWnd::SubclassWindow(HWND hWnd)
{
    if (!hWnd || m_hWnd || FromHandlePermanent(hWnd)) return false;
    m_hWnd = hWnd;
    Objects().Set(hWnd, this);
    m_pfnSuper = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&CWnd::SubclassProc)));
    return m_pfnSuper != nullptr;
}

bool CWnd::SubclassDlgItem(UINT id, HWND hParent)
{
    return SubclassWindow(::GetDlgItem(hParent, static_cast<int>(id)));
}

HWND CWnd::UnsubclassWindow()
{
    HWND hWnd = m_hWnd;
    if (hWnd && m_pfnSuper) {
        SetWindowLongPtrA(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuper));
        Objects().Set(hWnd, nullptr);
    }
    m_pfnSuper = nullptr;
    m_hWnd = nullptr;
    return hWnd;
}

HWND CWnd::Detach()
{
    HWND hWnd = m_hWnd;
    m_hWnd = nullptr;
    return hWnd;
}

BOOL CWnd::DestroyWindow()
{
    if (!m_hWnd) return FALSE;
    return ::DestroyWindow(m_hWnd);
}

LRESULT CWnd::WindowProc(UINT msg, WPARAM wp, LPARAM lp)
{
    return Default(msg, wp, lp);
}

LRESULT CWnd::Default(UINT msg, WPARAM wp, LPARAM lp)
{
    if (m_pfnSuper) return CallWindowProcA(m_pfnSuper, m_hWnd, msg, wp, lp);
    return DefWindowProcA(m_hWnd, msg, wp, lp);
}

LRESULT CALLBACK CWnd::SubclassProc(HWND hWnd, UINT msg, WPARAM wp, LPARAM lp)
{
    CWnd* self = FromHandlePermanent(hWnd);
    if (!self) return DefWindowProcA(hWnd, msg, wp, lp);
    LRESULT result = 0;
    try {
        result = self->WindowProc(msg, wp, lp);
    } catch (const std::exception&) {
        // No exception crosses a window procedure: the message counts as handled.
        result = 0;
    }
    if (msg == WM_NCDESTROY) {
        // The window is gone: give the original procedure back and let go.
        if (self->m_hWnd == hWnd) {
            WNDPROC super = self->m_pfnSuper;
            self->UnsubclassWindow();
            if (super) SetWindowLongPtrA(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(super));
        }
        self->PostNcDestroy();
    }
    return result;
}
