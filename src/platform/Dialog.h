// CDialog: modeless and modal dialogs from templates of the host's resource
// library.
//
// The dialog procedure keeps `this` in DWLP_USER from WM_INITDIALOG to
// WM_NCDESTROY and forwards each message through one switch to a small typed
// handler.  WM_NOTIFY results travel back through DWLP_MSGRESULT.  Data
// exchange is two explicit functions: DataToControls and ControlsToData.
//
// A modeless dialog inside the host's own message loop gets its keys through
// PreTranslateMessage: a thread message hook, installed while such a dialog
// lives, routes the messages of the dialog and its children through the
// dialog's PreTranslateMessage (whose default is IsDialogMessage, so Tab and
// the mnemonics work).  A message it consumes becomes WM_NULL.
#pragma once

#include "platform/Wnd.h"

#include <commctrl.h>

class CDialog : public CWnd {
public:
    CDialog(UINT nTemplateId, HWND hParent);
    ~CDialog() override;

    // Creates the modeless window.  Returns nonzero on success.
    virtual BOOL Create(UINT nTemplateId, HWND hParent);
    // Runs the dialog modally; returns the EndDialog result, or -1.
    virtual INT_PTR DoModal();
    void EndDialog(INT_PTR nResult);
    bool IsModal() const { return m_bModal; }

    // Moves data between the controls and the members.  ControlsToData may
    // refuse (false) after telling the user what is wrong.
    bool UpdateData(bool bSaveAndValidate);

    // Key and mouse filtering of a modeless dialog; true = consumed.
    virtual bool PreTranslateMessage(MSG* pMsg);

    // Takes one message in [first, last] out of this thread's queue for the
    // caller alone (PeekMessage with PM_REMOVE): the thread's modeless dialogs
    // never see it, so a message taken out to be dropped stays dropped and a
    // key read here is acted on only by the caller.
    static BOOL TakeMessage(MSG* pMsg, UINT first, UINT last);

    BOOL DestroyWindow() override;

    // The instance that holds the templates (the host's resource library).
    static void SetTemplateInstance(HINSTANCE hInst) { s_hTemplateInstance = hInst; }

protected:
    virtual INT_PTR DialogProc(UINT msg, WPARAM wp, LPARAM lp);

    // Typed handlers; each returns true when it handled the message.
    virtual BOOL OnInitDialog();
    virtual bool OnCommand(UINT id, UINT code, HWND hCtl);
    virtual bool OnNotify(NMHDR* pHdr, LRESULT& result);
    virtual bool OnTimer(UINT_PTR nId);
    virtual bool OnSysCommand(UINT nCmd, LPARAM lp);
    virtual bool OnSetCursor(HWND hWnd, UINT nHitTest, UINT nMouseMsg, BOOL& bResult);
    virtual bool OnDrawItem(UINT id, DRAWITEMSTRUCT* pDis);
    // Any other message (private ones included); true = handled with `result`.
    virtual bool OnMessage(UINT msg, WPARAM wp, LPARAM lp, INT_PTR& result);
    virtual void OnOK();
    virtual void OnCancel();
    virtual void OnDestroy() {}

    virtual void DataToControls() {}
    virtual bool ControlsToData() { return true; }

    UINT m_nTemplateId;
    HWND m_hParent;

private:
    static INT_PTR CALLBACK StaticDialogProc(HWND hWnd, UINT msg, WPARAM wp, LPARAM lp);
    static LRESULT CALLBACK GetMessageHook(int code, WPARAM wp, LPARAM lp);
    void Register();
    void Unregister();

    bool m_bModal = false;
    static HINSTANCE s_hTemplateInstance;
};
