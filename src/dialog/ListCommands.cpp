// The tape's name and description, the scan method, and the commands that
// change the list as a whole.
#include "dialog/PreScanDlg.h"

#include "ResourceIds.h"
#include "session/Session.h"
#include "session/Settings.h"

void CPreScanDlg::OnTapeDescriptionChanged()
{
    m_strTapeDescription = GetItemText(IDC_TAPE_DESCRIPTION);
    if (m_nSceneCount >= 1 && !m_bModified) {
        m_bModified = 1;
        UpdateTitle();
    }
}

void CPreScanDlg::OnTapeNameChanged()
{
    m_strTapeName = GetItemText(IDC_TAPE_NAME);
    // The default list name is a placeholder, not a tape name.
    if (m_strTapeName == m_strDefaultListName) m_strTapeName.clear();
    if (m_nSceneCount >= 1 && !m_bModified) {
        m_bModified = 1;
        UpdateTitle();
    }
}

void CPreScanDlg::OnScanMethodChanged()
{
    m_nScanMethodIndex = static_cast<int>(::SendMessageA(GetDlgItem(IDC_SCAN_METHOD), CB_GETCURSEL, 0, 0));
    if (m_nScanMethodIndex >= 0 && m_nScanMethodIndex <= 2) g_session.nScanMethodIndex = m_nScanMethodIndex + 1;
    WriteSettingInt(kKeyScanMethodIndex, g_session.nScanMethodIndex);
}
