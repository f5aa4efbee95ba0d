// CStdButton: an owner-drawn push button that shows one frame of a
// three-frame bitmap strip (normal, disabled, pressed), sizes itself to one
// frame, follows the mouse while held down, and reports a click by posting
// its command to the parent.
#pragma once

#include "platform/Wnd.h"

class CStdButton : public CWnd {
public:
    ~CStdButton() override;

    // Loads a strip from the module's resources and sizes the button to one
    // frame.  FALSE when the strip cannot be loaded (then nothing is drawn).
    BOOL SetBitmap(UINT nBitmapId);
    void DrawFrame(int nFrame);
    void NotifyParent();
    // The owner-draw request (the parent forwards WM_DRAWITEM).
    void DrawItem(const DRAWITEMSTRUCT& dis);

    int FrameWidth() const { return m_cxFrame; }
    int FrameHeight() const { return m_cyFrame; }
    bool HasBitmap() const { return m_bitmap != nullptr; }

    BOOL m_bInside = FALSE;
    BOOL m_bPressed = FALSE;

protected:
    LRESULT WindowProc(UINT msg, WPARAM wp, LPARAM lp) override;

private:
    void DrawFrameOn(HDC dc, int nFrame);
    void ReleaseStrip();

    int m_cxFrame = 0;
    int m_cyFrame = 0;
    HBITMAP m_bitmap = nullptr;
};
