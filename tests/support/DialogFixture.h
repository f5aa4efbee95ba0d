// A pre-scan dialog opened the way a host opens it, for tests that drive it.
// Where tests live and how they are written: tests/support/README.md.
#pragma once

#include "dialog/PreScanDlg.h"
#include "session/Session.h"
#include "support/ModalResponder.h"
#include "support/Portable.h"
#include "support/Pump.h"
#include "support/ScriptedHost.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qvtest {

class DialogFixture : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Opens the dialog over a host window and lets its device check run.
    void OpenDialog();
    CPreScanDlg& Dlg() { return *g_session.pDialog; }
    HWND Wnd() { return g_hPreScanWnd; }
    HWND Item(int id) { return GetDlgItem(g_hPreScanWnd, id); }
    bool Enabled(int id) { return IsWindowEnabled(Item(id)) != FALSE; }
    bool Visible(int id) { return IsWindowVisible(Item(id)) != FALSE; }
    std::string Title();
    int RowCount();
    std::string CellText(int row, int column);

    // Presses a button as a user would (also the bitmap buttons) and lets
    // the posted command arrive.
    void Click(int id);
    void PressKey(UINT vk);

    // Feeds one complete scene through the exports (a normal scan).
    void FeedScene(uint32_t tcIn, uint32_t tcOut, bool withThumbnail = true);
    // Starts a scan through the Start button; the host accepts.
    void StartScan();
    // Opens the dialog, scans `n` scenes (scene i runs from 0:00:10*i:00 to
    // five seconds later, thumbnails included) and stops with Escape.
    void OpenWithScenes(int n);
    // Clicks the middle of a cell of the scene list (scrolled into view
    // first), with Shift held if asked: column 0 is the mark box, column 2
    // selects the row.
    void ClickCell(int row, int column, bool shift = false);
    void MarkRow(int row) { ClickCell(row, 0); }
    void SelectRow(int row) { ClickCell(row, 2); }
    void SelectRows(int from, int to) { SelectRow(from), to != from ? ClickCell(to, 2, true) : void(); }

    ScriptedHost& Host() { return ScriptedHost::Instance(); }
    HWND m_hostWindow = nullptr;
};

// A scene descriptor as a host's detector fills it.
SceneInfo MakeScene(uint32_t tcIn, uint32_t tcOut, uint32_t thumbBytes = 0);
// An 80x60 24-bit thumbnail of one colour.
struct Thumbnail {
    BITMAPINFOHEADER header;
    std::vector<uint8_t> bits;
};
Thumbnail MakeThumbnail(uint8_t r, uint8_t g, uint8_t b, int width = 80, int height = 60);

} // namespace qvtest
