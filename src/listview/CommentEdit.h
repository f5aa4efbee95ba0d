// CInCommentEdit: the in-place comment editor, a multi-line edit box laid
// over a comment cell.  It grows with its text (never shrinks), keeps the
// text on Return or when it loses the focus, and discards it on Escape.
#pragma once

#include "platform/Wnd.h"

#include <string>

class CInCommentEdit : public CWnd {
public:
    CInCommentEdit(int nItem, int nSubItem, const char* pszInitText);
    ~CInCommentEdit() override;

    // Creates the editor as a child of the list, with the list's font, its
    // text selected and the focus.
    bool Create(HWND hList, UINT nId);
    void AutoSize();

    int m_nItem;
    int m_nSubItem;
    std::string m_strInitText;
    BOOL m_bEscape = FALSE;

    // The comment's room: 519 characters and the terminating zero.
    static constexpr int kMaxChars = 519;

protected:
    LRESULT WindowProc(UINT msg, WPARAM wp, LPARAM lp) override;

private:
    void OnKillFocus();
};
