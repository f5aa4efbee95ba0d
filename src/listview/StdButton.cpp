#include "listview/StdButton.h"

#include "session/Session.h"

#include <windowsx.h>

CStdButton::~CStdButton()
{
    ReleaseStrip();
}

void CStdButton::ReleaseStrip()
{
    if (m_bitmap) DeleteObject(m_bitmap);
    m_bitmap = nullptr;
}

BOOL CStdButton::SetBitmap(UINT nBitmapId)
{
    ReleaseStrip();
    // A device-independent bitmap: drawing a frame is memory work only.
    m_bitmap = static_cast<HBITMAP>(
        LoadImageW(g_hModule, MAKEINTRESOURCEW(nBitmapId), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
    if (!m_bitmap) return FALSE;
    BITMAP bm = {};
    GetObjectA(m_bitmap, sizeof bm, &bm);
    m_cxFrame = bm.bmWidth / 3;
    m_cyFrame = bm.bmHeight;
    if (m_hWnd) {
        SetWindowPos(m_hWnd, nullptr, 0, 0, m_cxFrame, m_cyFrame, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        InvalidateRect(m_hWnd, nullptr, TRUE);
        UpdateWindow(m_hWnd);
    }
    return TRUE;
}

void CStdButton::DrawFrameOn(HDC dc, int nFrame)
{
    if (!m_bitmap) return;
    HDC mem = CreateCompatibleDC(dc);
    HGDIOBJ old = SelectObject(mem, m_bitmap);
    BitBlt(dc, 0, 0, m_cxFrame, m_cyFrame, mem, nFrame * m_cxFrame, 0, SRCCOPY);
    SelectObject(mem, old);
    DeleteDC(mem);
}

void CStdButton::DrawFrame(int nFrame)
{
    if (!m_hWnd) return;
    HDC dc = GetDC(m_hWnd);
    DrawFrameOn(dc, nFrame);
    ReleaseDC(m_hWnd, dc);
}

void CStdButton::DrawItem(const DRAWITEMSTRUCT& dis)
{
    if (!m_bitmap) return;
    int frame = (dis.itemState & ODS_DISABLED) ? 1 : (dis.itemState & ODS_SELECTED) ? 2 : 0;
    DrawFrameOn(dis.hDC, frame);
}

void CStdButton::NotifyParent()
{
    int id = static_cast<int>(GetWindowLongA(m_hWnd, GWL_ID));
    ::PostMessageA(::GetParent(m_hWnd), WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0);
}

LRESULT CStdButton::WindowProc(UINT msg, WPARAM wp, LPARAM lp)
{
    switch (msg) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        // The button's own click logic never runs: the release below is the
        // only report of a click.
        m_bPressed = TRUE;
        m_bInside = TRUE;
        SetCapture(m_hWnd);
        DrawFrame(2);
        return 0;
    case WM_MOUSEMOVE: {
        if (!m_bPressed) return 0;
        POINT pt = {GET_X_LPARAM(lp), GET_Y_LPARAM(lp)};
        ClientToScreen(m_hWnd, &pt);
        RECT rc;
        ::GetWindowRect(m_hWnd, &rc);
        BOOL inside = PtInRect(&rc, pt);
        if (inside != m_bInside) {
            m_bInside = inside;
            DrawFrame(inside ? 2 : 0);
        }
        return 0;
    }
    case WM_LBUTTONUP:
        if (!m_bPressed) return 0;
        m_bPressed = FALSE;
        NotifyParent();
        ReleaseCapture();
        DrawFrame(0);
        return 0;
    case WM_DESTROY: {
        LRESULT r = Default(msg, wp, lp);
        ReleaseStrip();
        return r;
    }
    default:
        return Default(msg, wp, lp);
    }
}
