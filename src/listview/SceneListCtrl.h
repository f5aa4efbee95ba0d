// CqvListCtrl: the scene list.  Row r always shows scene r of the scene
// table: the list is virtual (owner data) and holds no scene data of its
// own; it asks the table for a cell's text whenever it needs one.  Two
// views: thumbnail (tall rows, an 80x60 thumbnail, texts on several lines)
// and compact (one line per row).
#pragma once

#include "platform/Wnd.h"

#include <commctrl.h>

#include <string>

struct SceneRecord;

class CInCommentEdit;
class SceneListOwner;

// Set once the comment column was narrowed to 160 pixels; it then keeps the
// width it has (the user may widen it) until no comment needs the cap or the
// rows are rebuilt.
extern int g_bCommentColumnCapped;
// The list fits its columns after rows with the widest texts changed or went.
#define WM_QV_FIT_COLUMNS (WM_APP + 20)
// Set while the view switch rebuilds the columns: no cell is drawn.
extern int g_bRebuildingList;

class CqvListCtrl : public CWnd {
public:
    CqvListCtrl();
    ~CqvListCtrl() override;

    void SetOwner(SceneListOwner* pOwner) { m_pOwner = pOwner; }
    // Takes over the dialog's list control as a virtual list: the template's
    // list is replaced by one of the same styles, place, font and ID.
    bool SubclassVirtualList(UINT nId, HWND hDialog);

    // Rows.  A row is told when its scene begins (bInsert: a row is added
    // at nRow) or changes; its texts are read from the scene when drawn.
    void SetSceneRow(int nRow, BOOL bInsert);
    // All rows at once (an opened file, a view switch): the columns are
    // fitted to the texts once.
    void SetRowCount(int nRows);
    void UpdateOutTimes(int nFirstRow);
    void RefreshCommentAndFiles(int nRow, BOOL bComment, BOOL bFiles);
    int GetRowCount() const;
    std::string GetCellText(int nRow, int nColumn) const;
    void DeleteRow(int nRow);
    void DeleteAllRows();

    // Selection
    BOOL GetSelRange(int& nFirst, int& nLast) const;
    void ClearSelection();
    void SelectRange(int nFrom, BOOL bRange, int nTo);

    // Views and columns
    void SetThumbnailView(BOOL bThumbnails);
    void RedrawAllRows();
    void DeleteAllColumns();
    void InsertSceneColumns();
    int GetColumnCount() const;
    BOOL GetCellRect(int nRow, int nColumn, int nArea, RECT& rc) const;
    BOOL ToggleMarkAt(const RECT* prcBox, int nScene);

    BOOL m_bShowThumbnails = TRUE;
    BOOL m_bMarkClickPending = FALSE;
    int m_nMarkedCount = 0;
    POINT m_ptClick = {0, 0};
    int m_nAnchorRow = 0;
    int m_nCurrentRow = 0;
    BOOL m_bRangeSelected = FALSE;
    CInCommentEdit* m_pCommentEdit = nullptr;

    // Notifications the list sends its parent come back here (the dialog
    // hands every one of them on): cell texts, custom drawing and the label
    // edits.
    bool OnParentNotify(NMHDR* pHdr, LRESULT& result);
    // Ends an open comment edit, keeping its text.
    void EndCommentEdit();

    // The comment and files columns fitted to the texts the rows hold now;
    // rebuilt rows (bAfresh) decide the comment column's cap afresh.
    void FitColumns(bool bAfresh = false);

protected:
    LRESULT WindowProc(UINT msg, WPARAM wp, LPARAM lp) override;

private:
    // Cell drawing (CellDrawing.cpp)
    LRESULT OnCustomDraw(NMLVCUSTOMDRAW* pDraw);
    void DrawCell(HDC dc, int nRow, int nColumn);
    void DrawMarkCell(HDC dc, int nRow, const RECT& rc, const SceneRecord& scene);
    void PaintEmptyList();
    // Input (ListInput.cpp)
    void OnLButtonDown(UINT flags, POINT pt);
    void OnLButtonDblClk(UINT flags, POINT pt);
    bool OnHeaderNotify(NMHEADERA* pHdr, LRESULT& result);
    bool HitTest(POINT pt, int& nRow, int& nColumn) const;
    // Comment editor (ListInput.cpp)
    LRESULT OnBeginLabelEdit(NMLVDISPINFOA* pInfo);
    LRESULT OnEndLabelEdit(NMLVDISPINFOA* pInfo);

    bool IsOpenEnded(int nRow, const SceneRecord& scene) const;
    void SetRowState(int nRow, UINT nState, UINT nMask);
    void DeselectOutside(int nFirst, int nLast);
    int LineWidth(const std::string& text) const;
    void MeasureRow(int nRow, int& nComment, int& nFiles) const;
    int HeaderWidth(int nColumn) const;
    void SizeCommentColumn(int nWidest);
    void SetColumnWidth(int nColumn, int nWidth);
    void SizeFilesColumn(int nWidest);
    void WidenColumnsFor(int nRow);
    void ForgetColumnTexts();
    void PostFit();
    int StringWidth(const char* text) const;
    int DialogState() const;

    SceneListOwner* m_pOwner = nullptr;
    // The widest texts since the rows were rebuilt, and a row that holds each.
    int m_nWidestComment = -1;
    int m_nWidestFiles = -1;
    int m_nWidestCommentRow = -1;
    int m_nWidestFilesRow = -1;
    bool m_bFitPosted = false;  // a fit of the columns is on its way
    mutable HDC m_hMeasureDC = nullptr;  // texts are measured here
    void* m_hDrawDib = nullptr;          // thumbnails are drawn through this
    mutable HFONT m_hMeasureFont = nullptr;
    mutable int m_anCharWidths[128] = {};  // of the plain ASCII characters in that font
    mutable bool m_bCharWidths = false;
    HBITMAP m_bmpMarkOff = nullptr;  // the check boxes, loaded once per list
    HBITMAP m_bmpMarkOn = nullptr;
    HDC m_hMarkDC = nullptr;           // the check boxes are drawn from here
    SIZE m_szMark = {0, 0};
};
