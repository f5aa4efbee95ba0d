// CScanOption: the scan options dialog, shown modally from the pre-scan
// dialog's Options button.  Changes take effect on OK, which writes the
// session and the settings file at once; Cancel changes nothing.
#pragma once

#include "platform/Dialog.h"

#include <string>

class CScanOption : public CDialog {
public:
    explicit CScanOption(HWND hParent);

    int m_bWantIndexFile = 0;
    int m_bSaveToLibrary = 0;
    std::string m_strCaptureFolder;
    std::string m_strCaptureName;
    std::string m_strLibraryFolder;
    int m_bQuickScan = 0;
    int m_nQuickScanSpeed = 0;

    // The longest texts the session's fields hold.
    static constexpr size_t kMaxFolder = 259;
    static constexpr size_t kMaxName = 99;
    static constexpr size_t kMaxLibraryEdit = 520;

protected:
    BOOL OnInitDialog() override;
    bool OnCommand(UINT id, UINT code, HWND hCtl) override;
    void OnOK() override;
    void DataToControls() override;
    bool ControlsToData() override;

private:
    void OnBrowseCaptureFolder();
    void OnChooseLibrary();
    void OnToggleQuickScan();
    void OnHelp();
    int TrackbarPosition() const;
    bool RefuseTooLong(const std::string& text, size_t limit, UINT message, int control);
};
