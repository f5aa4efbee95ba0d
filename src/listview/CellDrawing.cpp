// The scene list draws every cell itself: the row's background in the
// selection colour, the cell's text, the mark check box in column 0 and, in
// the thumbnail view, the scene's thumbnail scaled to 80x60 in column 1.
#include "listview/SceneListCtrl.h"

#include "ResourceIds.h"
#include "listview/SceneListOwner.h"
#include "platform/BoundedCopy.h"
#include "platform/ResourceLib.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"

#include <vfw.h>

#include <cstring>
#include <vector>

namespace {

const int kThumbWidth = 80;
const int kThumbHeight = 60;

UINT TextFormat(bool bThumbnails, int nColumn)
{
    if (!bThumbnails) return nColumn <= 2 ? DT_CENTER | DT_VCENTER | DT_SINGLELINE : DT_VCENTER | DT_SINGLELINE;
    if (nColumn <= 3) return DT_CENTER;
    if (nColumn == 4) return DT_CENTER | DT_WORDBREAK;
    return 0;
}

} // namespace

bool CqvListCtrl::OnParentNotify(NMHDR* pHdr, LRESULT& result)
{
    if (!pHdr || pHdr->hwndFrom != m_hWnd) return false;
    switch (pHdr->code) {
    case LVN_GETDISPINFOA: {
        // The list holds no texts: each is read from the row's scene.
        LVITEMA& item = reinterpret_cast<NMLVDISPINFOA*>(pHdr)->item;
        if ((item.mask & LVIF_TEXT) && item.pszText && item.cchTextMax > 0)
            qv::CopyBounded(item.pszText, static_cast<size_t>(item.cchTextMax), GetCellText(item.iItem, item.iSubItem).c_str());
        result = 0;
        return true;
    }
    case LVN_ODFINDITEMA:
        result = -1;  // typed letters find no row: the first column has no text
        return true;
    case NM_CUSTOMDRAW:
        result = OnCustomDraw(reinterpret_cast<NMLVCUSTOMDRAW*>(pHdr));
        return true;
    case LVN_BEGINLABELEDITA:
        result = OnBeginLabelEdit(reinterpret_cast<NMLVDISPINFOA*>(pHdr));
        return true;
    case LVN_ENDLABELEDITA:
        result = OnEndLabelEdit(reinterpret_cast<NMLVDISPINFOA*>(pHdr));
        return true;
    default:
        return false;
    }
}

LRESULT CqvListCtrl::OnCustomDraw(NMLVCUSTOMDRAW* pDraw)
{
    switch (pDraw->nmcd.dwDrawStage) {
    case CDDS_PREPAINT:
    case CDDS_ITEMPREPAINT:
        return CDRF_NOTIFYSUBITEMDRAW;
    case CDDS_ITEMPREPAINT | CDDS_SUBITEM:
        DrawCell(pDraw->nmcd.hdc, static_cast<int>(pDraw->nmcd.dwItemSpec), pDraw->iSubItem);
        return CDRF_SKIPDEFAULT;
    default:
        return CDRF_NOTIFYSUBITEMDRAW;
    }
}

void CqvListCtrl::DrawCell(HDC dc, int nRow, int nColumn)
{
    if (m_pOwner && m_pOwner->GetState() == 0 && m_pOwner->GetSceneCount() < 1 && SceneTableSize() == 0 &&
        g_arThumbBits.IsEmpty()) {
        // Rows left from an earlier table: they go (once painting is over).
        PostMessage(LVM_DELETEALLITEMS);
        return;
    }
    if (g_bRebuildingList) return;

    RECT rc;
    if (!GetCellRect(nRow, nColumn, LVIR_BOUNDS, rc)) return;
    bool selected = (SendMessage(LVM_GETITEMSTATE, static_cast<WPARAM>(nRow), LVIS_SELECTED) & LVIS_SELECTED) != 0;
    FillRect(dc, &rc, selected ? GetSysColorBrush(COLOR_HIGHLIGHT) : static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    SetTextColor(dc, selected ? RGB(255, 255, 255) : RGB(0, 0, 0));
    SetBkMode(dc, TRANSPARENT);
    SceneRecord* scene = FetchScene(nRow);
    if (!scene) return;
    if (nColumn == 0) {
        DrawMarkCell(dc, nRow, rc, *scene);
        return;
    }
    std::string text = GetCellText(nRow, nColumn);
    RECT textRect = rc;
    DrawTextA(dc, text.c_str(), -1, &textRect, TextFormat(m_bShowThumbnails != FALSE, nColumn) | DT_NOPREFIX);

    if (m_bShowThumbnails && nColumn == 1 && g_bHaveThumbnails) {
        const ThumbHeader* header = nullptr;
        const uint8_t* bits = nullptr;
        if (!FetchThumbnail(nRow, header, bits)) return;
        // Pixels from a list file are drawn only when there are as many as
        // the header describes.
        uint32_t needed = ThumbnailBytes(*header);
        if (needed == 0 || scene->dwThumbSize < needed) return;
        int cx = (rc.left + rc.right) / 2, cy = (rc.top + rc.bottom) / 2;
        int srcHeight = header->biHeight < 0 ? -header->biHeight : header->biHeight;
        // One DrawDib context serves every thumbnail: opening one looks for a
        // video decompressor each time, which costs more than the drawing.
        if (!m_hDrawDib) m_hDrawDib = DrawDibOpen();
        HDRAWDIB dd = static_cast<HDRAWDIB>(m_hDrawDib);
        if (!dd) return;
        // The header is used as the host delivered it; DrawDib reads no colour
        // table beyond it for the 16- and 24-bit thumbnails scenes carry.
        BITMAPINFOHEADER bih;
        static_assert(sizeof bih == sizeof *header, "thumbnail header size");
        std::memcpy(&bih, header, sizeof bih);
        DrawDibDraw(dd, dc, cx - kThumbWidth / 2, cy - kThumbHeight / 2, kThumbWidth, kThumbHeight, &bih,
                    const_cast<uint8_t*>(bits), 0, 0, header->biWidth, srcHeight, DDF_BACKGROUNDPAL);
    }
}

void CqvListCtrl::DrawMarkCell(HDC dc, int nRow, const RECT& rc, const SceneRecord& scene)
{
    // Loaded as device-independent bitmaps: copying from one is plain memory
    // work, where a device bitmap may live in the display server.
    auto load = [](UINT id) {
        return static_cast<HBITMAP>(LoadImageW(g_hModule, MAKEINTRESOURCEW(id), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
    };
    if (!m_bmpMarkOff) m_bmpMarkOff = load(IDB_MARK_OFF);
    if (!m_bmpMarkOn) m_bmpMarkOn = load(IDB_MARK_ON);
    if (!m_bmpMarkOff) return;
    if (m_szMark.cx == 0) {
        BITMAP bm = {};
        GetObjectA(m_bmpMarkOff, sizeof bm, &bm);
        m_szMark = {bm.bmWidth, bm.bmHeight};
    }
    int w = m_szMark.cx, h = m_szMark.cy;
    int cx = (rc.left + rc.right) / 2, cy = (rc.top + rc.bottom) / 2;
    RECT box = {cx - w / 2, cy - h / 2, cx - w / 2 + w, cy - h / 2 + h};
    if (m_bMarkClickPending && ToggleMarkAt(&box, nRow)) m_bMarkClickPending = FALSE;

    HBITMAP image = m_bmpMarkOff;
    {
        qv::SceneLockGuard lock(g_csScenes);
        auto& record = const_cast<SceneRecord&>(scene);
        if (record.bMarked != 1)
            record.bMarked = 0;  // any value but 1 shows, and is, unmarked
        else if (m_bmpMarkOn)
            image = m_bmpMarkOn;  // without its picture a mark stays, unseen
    }
    // The check boxes are drawn from one memory context kept with them.
    if (!m_hMarkDC) m_hMarkDC = CreateCompatibleDC(dc);
    if (!m_hMarkDC) return;
    HGDIOBJ old = SelectObject(m_hMarkDC, image);
    BitBlt(dc, box.left, box.top, w, h, m_hMarkDC, 0, 0, SRCCOPY);
    SelectObject(m_hMarkDC, old);
}

void CqvListCtrl::PaintEmptyList()
{
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(m_hWnd, &ps);
    RECT rc;
    GetClientRect(&rc);
    FillRect(dc, &rc, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    HGDIOBJ oldFont = SelectObject(dc, reinterpret_cast<HFONT>(SendMessage(WM_GETFONT)));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, RGB(0, 0, 0));
    std::string text = qv::LoadResString(IDS_EMPTY_LIST);
    DrawTextA(dc, text.c_str(), -1, &rc,
              DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_WORDBREAK | DT_NOCLIP | DT_NOPREFIX);
    SelectObject(dc, oldFont);
    EndPaint(m_hWnd, &ps);
}
