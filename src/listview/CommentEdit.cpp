#include "listview/CommentEdit.h"

#include "ResourceIds.h"

#include <commctrl.h>

#include <vector>

namespace {

const DWORD kEditorStyle = WS_CHILD | WS_VISIBLE | WS_BORDER | ES_MULTILINE | ES_AUTOVSCROLL;  // 0x50800044

} // namespace

CInCommentEdit::CInCommentEdit(int nItem, int nSubItem, const char* pszInitText)
    : m_nItem(nItem), m_nSubItem(nSubItem), m_strInitText(pszInitText ? pszInitText : "")
{
}

CInCommentEdit::~CInCommentEdit()
{
    HWND h = m_hWnd;
    if (h && ::IsWindow(h)) ::DestroyWindow(h);
}

bool CInCommentEdit::Create(HWND hList, UINT nId)
{
    HWND h = CreateWindowExA(0, "EDIT", "", kEditorStyle, 0, 0, 1, 1, hList,
                             reinterpret_cast<HMENU>(static_cast<UINT_PTR>(nId)), nullptr, nullptr);
    if (!h || !SubclassWindow(h)) return false;
    SendMessage(WM_SETFONT, ::SendMessageA(hList, WM_GETFONT, 0, 0), FALSE);
    // The editor holds no more than the comment's field: nothing is cut
    // behind the user's back when the comment is stored.
    SendMessage(EM_LIMITTEXT, kMaxChars);
    ::SetWindowTextA(h, m_strInitText.substr(0, kMaxChars).c_str());
    ::SetFocus(h);
    AutoSize();
    SendMessage(EM_SETSEL, 0, -1);
    SendMessage(EM_SCROLLCARET);
    return true;
}

void CInCommentEdit::AutoSize()
{
    if (!m_hWnd) return;
    HWND list = GetParent();
    std::string text = GetWindowText();
    RECT e;
    GetWindowRect(&e);
    MapWindowPoints(nullptr, list, reinterpret_cast<POINT*>(&e), 2);
    RECT l;
    ::GetClientRect(list, &l);

    HDC dc = ::GetDC(m_hWnd);
    HGDIOBJ oldFont = SelectObject(dc, reinterpret_cast<HFONT>(::SendMessageA(list, WM_GETFONT, 0, 0)));
    const UINT kMeasure = DT_CALCRECT | DT_WORDBREAK | DT_EXPANDTABS | DT_NOPREFIX;
    RECT r1 = e, r2 = e;
    r2.right = l.right;
    const char* measured = text.empty() ? " " : text.c_str();
    DrawTextA(dc, measured, -1, &r1, kMeasure);
    DrawTextA(dc, measured, -1, &r2, kMeasure);
    SelectObject(dc, oldFont);
    ::ReleaseDC(m_hWnd, dc);

    // Wrap within the room up to the list's right edge.
    int h1 = r1.bottom - r1.top, h2 = r2.bottom - r2.top;
    int wantW = (h1 < h2 ? r1.right - r1.left : r2.right - r2.left) + 5;
    int wantH = (h1 < h2 ? h1 : h2) + 5;
    RECT grown = e;
    if (wantW > e.right - e.left) grown.right = std::min<LONG>(e.left + wantW, l.right - 2);
    if (wantH > e.bottom - e.top) {
        grown.bottom = e.top + wantH;
        if (grown.bottom >= l.bottom - 2) {
            grown.bottom = l.bottom - 2;
            ::ShowScrollBar(m_hWnd, SB_VERT, TRUE);
        }
    }
    if (!EqualRect(&grown, &e)) MoveWindow(grown, TRUE);
}

LRESULT CInCommentEdit::WindowProc(UINT msg, WPARAM wp, LPARAM lp)
{
    switch (msg) {
    case WM_CHAR:
        if (wp == VK_ESCAPE) {
            m_bEscape = TRUE;
            ::SetFocus(GetParent());  // ends the edit, discarding
            return 0;
        }
        if (wp == VK_RETURN) {
            ::SetFocus(GetParent());  // ends the edit, keeping
            return 0;
        }
        {
            LRESULT r = Default(msg, wp, lp);
            AutoSize();
            return r;
        }
    case WM_KILLFOCUS: {
        LRESULT r = Default(msg, wp, lp);
        OnKillFocus();  // may delete this object: nothing may follow
        return r;
    }
    default:
        return Default(msg, wp, lp);
    }
}

void CInCommentEdit::OnKillFocus()
{
    HWND list = GetParent();
    std::string text = GetWindowText();
    NMLVDISPINFOA info = {};
    info.hdr.hwndFrom = list;
    info.hdr.idFrom = static_cast<UINT_PTR>(::GetDlgCtrlID(m_hWnd));
    info.hdr.code = LVN_ENDLABELEDITA;
    info.item.mask = LVIF_TEXT;
    info.item.iItem = m_nItem;
    info.item.iSubItem = m_nSubItem;
    if (!m_bEscape) {
        info.item.pszText = const_cast<char*>(text.c_str());
        info.item.cchTextMax = static_cast<int>(text.size());
    }
    // Sent to the list's parent with the list's control ID, as the list would;
    // the dialog hands it back to the list, which stores the text and deletes
    // this editor.
    ::SendMessageA(::GetParent(list), WM_NOTIFY, static_cast<WPARAM>(::GetDlgCtrlID(list)),
                   reinterpret_cast<LPARAM>(&info));
}
