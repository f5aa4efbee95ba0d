// The scene list's input: clicks select scenes and ranges and toggle marks,
// a double-click on a comment opens the editor, and the header keeps its
// rules.  Input that arrives while the dialog is busy is dropped.
#include "listview/SceneListCtrl.h"

#include "ResourceIds.h"
#include "listview/CommentEdit.h"
#include "listview/SceneListOwner.h"
#include "platform/BoundedCopy.h"

#include <windowsx.h>

#include <cstring>
#include <new>

namespace {

const int kMarkColumn = 0;
const int kThumbnailColumn = 1;
const int kCommentColumn = 4;
const int kMinThumbnailWidth = 81;
const int kMinColumnWidth = 16;

enum { STATE_IDLE = 0, STATE_SCANNING = 1, STATE_FILE_PREVIEW = 6 };

} // namespace

bool CqvListCtrl::HitTest(POINT pt, int& nRow, int& nColumn) const
{
    LVHITTESTINFO hit = {};
    hit.pt = pt;
    SendMessage(LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    nRow = hit.iItem;
    nColumn = hit.iSubItem;
    return nRow >= 0 && nRow < GetRowCount();
}

void CqvListCtrl::OnLButtonDown(UINT flags, POINT pt)
{
    int state = DialogState();
    if (state != STATE_IDLE && state != STATE_FILE_PREVIEW) return;
    int row, column;
    if (!HitTest(pt, row, column)) return;
    if (state == STATE_FILE_PREVIEW) {
        if (row == m_nAnchorRow) return;
        if (m_pOwner) m_pOwner->StopFilePreview();
    }
    if (GetKeyState(VK_SHIFT) < 0 && row != m_nAnchorRow) {
        m_bRangeSelected = TRUE;
        SelectRange(m_nAnchorRow, TRUE, row);
    } else {
        m_bRangeSelected = FALSE;
        SelectRange(row, FALSE, 0);
    }
    m_ptClick = pt;
    if (column == kMarkColumn) {
        if (SendMessage(LVM_GETSELECTIONMARK) != row) SendMessage(LVM_SETSELECTIONMARK, 0, row);
        m_bMarkClickPending = TRUE;
    } else {
        m_bMarkClickPending = FALSE;
    }
    m_nCurrentRow = row;
    if (m_pOwner) {
        if (m_bRangeSelected) {
            m_pOwner->SetPlayEnabled(FALSE);
        } else {
            m_nAnchorRow = row;
            m_pOwner->SetPlayEnabled(TRUE);
        }
        m_pOwner->SetMergeEnabled(m_bRangeSelected ? TRUE : FALSE);
    }
    Default(WM_LBUTTONDOWN, flags, MAKELPARAM(pt.x, pt.y));
    // The press redraws the row at once, so a click inside the check box
    // toggles the mark now; a click beside it is forgotten then, so no later
    // repaint can toggle a mark under the point it was made at.
    UpdateWindow(m_hWnd);
    m_bMarkClickPending = FALSE;
}

void CqvListCtrl::OnLButtonDblClk(UINT flags, POINT pt)
{
    if (DialogState() != STATE_IDLE) return;
    int row, column;
    if (HitTest(pt, row, column) && column == kCommentColumn) {
        std::string cellText = GetCellText(row, column);
        char text[1024];
        qv::CopyBounded(text, cellText.c_str());
        NMLVDISPINFOA info = {};
        info.hdr.hwndFrom = m_hWnd;
        info.hdr.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID());
        info.hdr.code = LVN_BEGINLABELEDITA;
        info.item.mask = LVIF_TEXT;
        info.item.iItem = row;
        info.item.iSubItem = column;
        info.item.pszText = text;
        info.item.cchTextMax = static_cast<int>(std::strlen(text));
        ::SendMessageA(GetParent(), WM_NOTIFY, info.hdr.idFrom, reinterpret_cast<LPARAM>(&info));
        if (m_pCommentEdit) return;  // the editor has the focus now
    }
    Default(WM_LBUTTONDBLCLK, flags, MAKELPARAM(pt.x, pt.y));
}

bool CqvListCtrl::OnHeaderNotify(NMHEADERA* pHdr, LRESULT& result)
{
    switch (pHdr->hdr.code) {
    case HDN_BEGINTRACKA:
    case HDN_BEGINTRACKW:
    case HDN_DIVIDERDBLCLICKA:
    case HDN_DIVIDERDBLCLICKW:
    case HDN_ITEMDBLCLICKA:
    case HDN_ITEMDBLCLICKW:
        if (pHdr->iItem != kMarkColumn) return false;
        result = TRUE;  // the mark column keeps its width
        return true;
    case HDN_TRACKA:
    case HDN_TRACKW:
    case HDN_ENDTRACKA:
    case HDN_ENDTRACKW:
    case HDN_ITEMCHANGINGA:
    case HDN_ITEMCHANGINGW: {
        if (pHdr->iItem == kMarkColumn) return false;
        InvalidateRect(m_hWnd, nullptr, TRUE);
        if (!pHdr->pitem || !(pHdr->pitem->mask & HDI_WIDTH)) return false;
        int width = pHdr->pitem->cxy;
        bool refused = width <= kMinColumnWidth - 1 ||
                       (m_bShowThumbnails && pHdr->iItem == kThumbnailColumn && width < kMinThumbnailWidth);
        if (!refused) return false;
        result = TRUE;
        return true;
    }
    default:
        return false;
    }
}

LRESULT CqvListCtrl::OnBeginLabelEdit(NMLVDISPINFOA* pInfo)
{
    if (m_pCommentEdit) {
        CInCommentEdit* old = m_pCommentEdit;
        m_pCommentEdit = nullptr;  // deleted without storing its text
        old->m_bEscape = TRUE;
        delete old;
    }
    auto* editor = new (std::nothrow) CInCommentEdit(pInfo->item.iItem, pInfo->item.iSubItem, pInfo->item.pszText);
    if (!editor) return 1;
    m_pCommentEdit = editor;
    if (!editor->Create(m_hWnd, IDC_COMMENT_EDIT)) {
        m_pCommentEdit = nullptr;
        delete editor;
        return 1;
    }
    RECT cell = {};
    GetCellRect(pInfo->item.iItem, pInfo->item.iSubItem, LVIR_BOUNDS, cell);
    editor->MoveWindow(cell, TRUE);
    editor->AutoSize();
    return 1;  // the list's own label editor never starts
}

LRESULT CqvListCtrl::OnEndLabelEdit(NMLVDISPINFOA* pInfo)
{
    CInCommentEdit* editor = m_pCommentEdit;
    if (!editor) return 0;
    m_pCommentEdit = nullptr;
    int row = pInfo->item.iItem;
    if (pInfo->item.pszText && m_pOwner) {
        m_pOwner->SetSceneComment(row, pInfo->item.pszText);
        RefreshCommentAndFiles(row, TRUE, FALSE);
        RedrawAllRows();
    }
    delete editor;
    return 0;
}

void CqvListCtrl::EndCommentEdit()
{
    if (m_pCommentEdit && m_pCommentEdit->m_hWnd) ::SendMessageA(m_pCommentEdit->m_hWnd, WM_KILLFOCUS, 0, 0);
}

LRESULT CqvListCtrl::WindowProc(UINT msg, WPARAM wp, LPARAM lp)
{
    switch (msg) {
    case WM_LBUTTONDOWN:
        OnLButtonDown(static_cast<UINT>(wp), POINT{GET_X_LPARAM(lp), GET_Y_LPARAM(lp)});
        return 0;
    case WM_LBUTTONDBLCLK:
        OnLButtonDblClk(static_cast<UINT>(wp), POINT{GET_X_LPARAM(lp), GET_Y_LPARAM(lp)});
        return 0;
    case WM_RBUTTONDOWN:
    case WM_RBUTTONDBLCLK:
        return 0;  // no menu, no selection change
    case WM_HSCROLL:
    case WM_VSCROLL: {
        bool allowed = msg == WM_HSCROLL ? DialogState() == STATE_IDLE : DialogState() <= STATE_SCANNING;
        if (!allowed) return 0;
        EndCommentEdit();
        return Default(msg, wp, lp);
    }
    case WM_NOTIFY: {
        auto* hdr = reinterpret_cast<NMHDR*>(lp);
        LRESULT result = 0;
        if (hdr && hdr->hwndFrom == reinterpret_cast<HWND>(SendMessage(LVM_GETHEADER)) &&
            OnHeaderNotify(reinterpret_cast<NMHEADERA*>(lp), result))
            return result;
        return Default(msg, wp, lp);
    }
    case WM_QV_FIT_COLUMNS:
        FitColumns();
        return 0;
    case WM_PAINT:
        if (GetRowCount() == 0) {
            PaintEmptyList();
            return 0;
        }
        return Default(msg, wp, lp);
    case WM_DESTROY:
        if (m_pCommentEdit) {
            CInCommentEdit* editor = m_pCommentEdit;
            m_pCommentEdit = nullptr;
            delete editor;
        }
        return Default(msg, wp, lp);
    default:
        return Default(msg, wp, lp);
    }
}
