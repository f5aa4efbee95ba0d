// CPreScanDlg: the pre-scan dialog, the module's one window.  A modeless
// dialog on template 12301 of the host's resource library, owned by the
// host's window.  It owns the scene list, the six bitmap buttons, the tool
// tips, the go-to menu and the scan options dialog object.
//
// Its handlers live in several files, one concern each:
//   PreScanDlg.cpp   life, layout, message routing, keys, cursor, menu, help
//   ScanControl.cpp  the operation state machine: scan, capture, seek, stop, close
//   StatusLine.cpp   which buttons are enabled, and the title as status line
//   ListCommands.cpp the tape texts, the scan method and the list commands
#pragma once

#include "listview/SceneListCtrl.h"
#include "listview/SceneListOwner.h"
#include "listview/StdButton.h"
#include "platform/Dialog.h"
#include "scenes/SceneStore.h"

#include <atomic>
#include <string>

class CScanOption;

// The merge group that stands for a merged scene (matched by the group's
// first record's number and start), or -1.
int FindMergeGroup(const SceneRecord* pRecord);

// The dialog's operation state.
enum PreScanState {
    PS_IDLE = 0,
    PS_SCANNING = 1,
    PS_CAPTURING = 2,
    PS_TAPE_PREVIEW = 3,
    PS_SEEKING = 4,
    PS_SCAN_CAPTURE = 5,
    PS_FILE_PREVIEW = 6
};

// The status timer: every 100 ms while the tape moves under the dialog's eyes.
const UINT_PTR kStatusTimerId = 600;
const UINT kStatusTimerMs = 100;

// Posted to itself after a scene arrived: scroll to the newest row and draw.
#define WM_PRESCAN_SHOW_NEWEST (WM_USER + 4)

// Late scene messages handled one by one after a quick scan stopped, before
// the rest of the queue is dropped in one pass.
extern int g_nLateSceneMsgs;

class CPreScanDlg : public CDialog, public SceneFeedTarget, public SceneListOwner {
public:
    explicit CPreScanDlg(HWND hParent);
    ~CPreScanDlg() override;

    virtual BOOL Create(HWND hParent);
    BOOL DestroyWindow() override;
    bool PreTranslateMessage(MSG* pMsg) override;
    void SendSysCommand(UINT nCommand);

    // --- Scan control and tape transport ---
    void OnStartScan();
    int AskKeepCurrentList();
    int StartScanWithCapture();
    void EnterScanning();
    void StopScan();
    void StopCurrentOperation();
    void EndOperation();
    void EndSeek();
    void OnCapture();
    void OnGoToScene(UINT nId);
    void SeekPosition(uint32_t dwPosition);
    void SeekTimeCode(uint32_t dwTimeCode);
    void OnCheckDevice();
    int32_t OnClosePreScan();
    int PromptSaveChanges(BOOL bWithCancel);
    void SetStatusTimer(BOOL bOn);
    void OnStatusTimer(UINT_PTR nId);
    int OnPreScanScene(int nRow, int bBegun) override;

    // --- Enabling and the status line ---
    void UpdateTitle();
    void DisableAllControls();
    void RestoreControls();
    void RestoreControlsAfterScan();
    void RestoreControlsAfterStop();
    void EnableDeviceControls(int bReady);
    void SetCaptureEnabled(int b) override;
    void SetPlayEnabled(int b) override;
    void UpdatePreviewButton(int b);
    void SetMergeEnabled(int b) override;
    void ResetEmptyList();

    // --- Tape details and list commands ---
    void OnTapeDescriptionChanged();
    void OnTapeNameChanged();
    void OnScanMethodChanged();
    void OnMarkAll();
    void OnDeleteScenes();
    void OnClearAll();

    // --- Scene list files (sceneops/) ---
    void SaveSceneListAs();
    void OpenSceneList();
    int WriteSceneListFile();
    // Opens the list file named in the session (what Open does once a file
    // was chosen); the list file benchmark calls it without the dialog.
    void OpenChosenSceneList();
    int RunSceneListDialog(char* pszProposed);
    void ApplyTapeName(const char* pszText);
    void ApplyTapeDescription(const char* pszText);

    // --- Scene commands (sceneops/) ---
    void ToggleViewMode();
    void MergeScenes();
    void SplitScene();
    void PreviewScene();
    void PlayCapturedFile(int nRow);
    void PlayTapeSpan(const SceneSpan* pSpan);
    void StopTapePreview();
    void StopFilePreview() override;
    void SetSceneComment(int nRow, const char* pszText) override;
    void UpdateCapturedScene(int nScene);

    // --- SceneFeedTarget / SceneListOwner ---
    int CompletedSceneCount() const override { return m_nSceneCount; }
    HWND FeedWindow() const override { return m_hWnd; }
    void DeleteSceneRow(int nRow) override;
    void OnIncompleteScenesCleared(int nCompleted) override;
    void OnCaptureFileStored(int nScene) override { UpdateCapturedScene(nScene); }
    int GetState() const override { return m_nState; }
    int GetSceneCount() const override { return m_nSceneCount; }

    // Members, in the order of their declaration in the class's design.
    CWnd m_btnSaveList;
    CWnd m_btnOpenList;
    CStdButton m_btnPreview;
    CStdButton m_btnCapture;
    CStdButton m_btnViewMode;
    CStdButton m_btnSplit;
    CStdButton m_btnMerge;
    CStdButton m_btnGoTo;
    CWnd m_btnDelete;
    CWnd m_btnClearAll;
    CWnd m_btnMarkAll;
    CqvListCtrl m_listScenes;
    int m_nScanMethodIndex = -1;
    std::string m_strTapeDescription;
    std::string m_strTapeName;
    HMENU m_menuPopup = nullptr;
    HWND m_toolTip = nullptr;
    HIMAGELIST m_imageList = nullptr;
    // Completed scenes; the scene feed reads it from the host's threads too.
    std::atomic<int> m_nSceneCount{0};
    CScanOption* m_pScanOptionDlg = nullptr;
    int m_bOpenFileDialog = 1;
    int m_bAllMarked = 0;
    int m_bBusy = 0;
    UINT_PTR m_nTimerId = 0;
    std::string m_strCaption;
    int m_bLastSceneComplete = 1;
    int m_nState = PS_IDLE;
    int m_bCaptureEnabled = 0;
    int m_bPlayEnabled = 0;
    int m_bMergeEnabled = 0;
    int m_bModified = 0;
    int m_bDeviceReady = 1;

protected:
    BOOL OnInitDialog() override;
    bool OnCommand(UINT id, UINT code, HWND hCtl) override;
    bool OnNotify(NMHDR* pHdr, LRESULT& result) override;
    bool OnTimer(UINT_PTR nId) override;
    bool OnSysCommand(UINT nCmd, LPARAM lp) override;
    bool OnSetCursor(HWND hWnd, UINT nHitTest, UINT nMouseMsg, BOOL& bResult) override;
    bool OnDrawItem(UINT id, DRAWITEMSTRUCT* pDis) override;
    bool OnMessage(UINT msg, WPARAM wp, LPARAM lp, INT_PTR& result) override;
    void OnOK() override;
    void OnCancel() override;
    void DataToControls() override;
    bool ControlsToData() override;

private:
    void SeekTo(int32_t nRequest, uint32_t dwValue);
    void OnGoToMenu();
    void OnHelpPreScan();
    void BindControls();
    void CreateToolTips();
    void RelayToolTip(const MSG& msg);
    void FlushLateSceneMessages();
    void TakeSceneNotifications();
    bool KeyReadDue(bool bLate);
    void ShowNewestRow(int nRow);
    void OnShowNewestRow();
    std::string DefaultListPath() const;
    bool ReadSceneListFile();
    void FinishOpen(bool bReplaced);
    bool ScenesPresent() const { return m_nSceneCount >= 1; }

    std::string m_strDefaultListName;
    bool m_bControlsBound = false;
    int m_nNewestRow = -1;          // the row to show once the scenes pause
    int m_bNewestRowPending = 0;    // the list's drawing is held until then
    bool m_bTakingNotifications = false;  // scene notifications are being taken
    DWORD m_dwKeysReadAt = 0;       // when the keyboard was last read between them
};
