#include "listview/SceneListCtrl.h"

#include "ResourceIds.h"
#include "listview/CommentEdit.h"
#include "listview/RowTexts.h"
#include "listview/SceneListOwner.h"
#include "platform/BoundedCopy.h"
#include "platform/ResourceLib.h"
#include "scenes/SceneStore.h"
#include "session/Session.h"

#include <vfw.h>

#include <algorithm>
#include <cstring>
#include <string>

int g_bCommentColumnCapped;
int g_bRebuildingList;

namespace {

const int kCommentColumnCap = 160;
const int kCellMargin = 12;  // the list's space around a cell's text
enum { COL_MARK, COL_THUMB_OR_IN, COL_TIMES_OR_OUT, COL_DATE, COL_COMMENT, COL_FILES, COLUMN_COUNT };

qv::RowTextSources TextSources(bool bThumbnails)
{
    // The resource texts are loaded once; they do not change while the module runs.
    static std::string unknownDate, captured, scanned;
    static HINSTANCE loadedFrom = nullptr;
    if (loadedFrom != g_hResInst) {
        unknownDate = qv::LoadResString(IDS_UNKNOWN_DATE);
        captured = qv::LoadResString(IDS_CAPTURED_FILE_PREFIX);
        scanned = qv::LoadResString(IDS_SCENE_FILE_PREFIX);
        loadedFrom = g_hResInst;
    }
    qv::RowTextSources src;
    src.nTvStandard = g_session.nTvStandard;
    src.bThumbnailView = bThumbnails;
    src.pszUnknownDate = unknownDate.c_str();
    src.pszCapturedPrefix = captured.c_str();
    src.pszScenePrefix = scanned.c_str();
    return src;
}

} // namespace

CqvListCtrl::CqvListCtrl()
{
    g_bCommentColumnCapped = 0;
}

CqvListCtrl::~CqvListCtrl()
{
    delete m_pCommentEdit;
    m_pCommentEdit = nullptr;
    if (m_bmpMarkOff) DeleteObject(m_bmpMarkOff);
    if (m_bmpMarkOn) DeleteObject(m_bmpMarkOn);
    if (m_hMeasureDC) DeleteDC(m_hMeasureDC);
    if (m_hMarkDC) DeleteDC(m_hMarkDC);
    if (m_hDrawDib) DrawDibClose(static_cast<HDRAWDIB>(m_hDrawDib));
    g_bCommentColumnCapped = 0;
}

// The list rows are virtual: a list that kept each row's texts would cost a
// row built per scene for every scene that arrives or is read from a file.
// The template's list is made again with the same styles, place, font and
// ID, the owner-data style added (which a list takes only when it is made).
bool CqvListCtrl::SubclassVirtualList(UINT nId, HWND hDialog)
{
    HWND old = ::GetDlgItem(hDialog, static_cast<int>(nId));
    if (!old) return false;
    RECT rc;
    ::GetWindowRect(old, &rc);
    MapWindowPoints(nullptr, hDialog, reinterpret_cast<POINT*>(&rc), 2);
    HWND list = CreateWindowExA(static_cast<DWORD>(GetWindowLongA(old, GWL_EXSTYLE)), WC_LISTVIEWA, "",
                                static_cast<DWORD>(GetWindowLongA(old, GWL_STYLE)) | LVS_OWNERDATA, rc.left, rc.top,
                                rc.right - rc.left, rc.bottom - rc.top, hDialog,
                                reinterpret_cast<HMENU>(static_cast<UINT_PTR>(nId)), g_hModule, nullptr);
    if (!list) return false;
    ::SendMessageA(list, WM_SETFONT, ::SendMessageA(old, WM_GETFONT, 0, 0), FALSE);
    SetWindowPos(list, old, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);  // its place in the tab order
    ::DestroyWindow(old);
    return SubclassWindow(list);
}

int CqvListCtrl::DialogState() const
{
    return m_pOwner ? m_pOwner->GetState() : 0;
}

int CqvListCtrl::GetRowCount() const
{
    return static_cast<int>(SendMessage(LVM_GETITEMCOUNT));
}

int CqvListCtrl::GetColumnCount() const
{
    HWND header = reinterpret_cast<HWND>(SendMessage(LVM_GETHEADER));
    return header ? static_cast<int>(::SendMessageA(header, HDM_GETITEMCOUNT, 0, 0)) : 0;
}

// A row shows its scene as begun and not ended until the scene's end is in
// the table and the dialog has counted it.
bool CqvListCtrl::IsOpenEnded(int nRow, const SceneRecord& scene) const
{
    return scene.dwTimeCodeOut == 0 || (m_pOwner && nRow >= m_pOwner->GetSceneCount());
}

std::string CqvListCtrl::GetCellText(int nRow, int nColumn) const
{
    if (nColumn <= COL_MARK || nColumn >= COLUMN_COUNT || (m_bShowThumbnails && nColumn == COL_THUMB_OR_IN)) return "";
    qv::SceneLockGuard lock(g_csScenes);
    SceneRecord* scene = g_arScenes.GetAtOrNull(nRow);
    if (!scene) return "";
    qv::RowTexts t = MakeRowTexts(*scene, IsOpenEnded(nRow, *scene), TextSources(m_bShowThumbnails != FALSE));
    switch (nColumn) {
    case COL_THUMB_OR_IN: return t.in;
    case COL_TIMES_OR_OUT: return m_bShowThumbnails ? t.times : t.out;
    case COL_DATE: return t.date;
    case COL_COMMENT: return t.comment;
    default: return t.files;
    }
}

void CqvListCtrl::DeleteRow(int nRow)
{
    // When the row held the widest comment or file name, the columns are
    // fitted to what is left once the command that deletes rows has ended:
    // a command deleting many rows then fits them once.
    if (nRow == m_nWidestCommentRow || nRow == m_nWidestFilesRow) PostFit();
    if (nRow < m_nWidestCommentRow) --m_nWidestCommentRow;
    if (nRow < m_nWidestFilesRow) --m_nWidestFilesRow;
    SendMessage(LVM_DELETEITEM, static_cast<WPARAM>(nRow));
}

void CqvListCtrl::DeleteAllRows()
{
    SendMessage(LVM_DELETEALLITEMS);
    ForgetColumnTexts();
}

void CqvListCtrl::SetRowCount(int nRows)
{
    SendMessage(LVM_SETITEMCOUNT, static_cast<WPARAM>(nRows), LVSICF_NOSCROLL);
    FitColumns(true);
}

void CqvListCtrl::PostFit()
{
    if (!m_bFitPosted && m_hWnd) m_bFitPosted = ::PostMessageA(m_hWnd, WM_QV_FIT_COLUMNS, 0, 0) != FALSE;
}

// The width of a text in the list's font, as the list itself measures it.
// Every new row is measured, and every row when a file is opened: a drawing
// context of the list's own would cost a call to the window system per text,
// so one memory context is kept, and a text of plain ASCII characters is
// measured from the font's character widths, read once.
int CqvListCtrl::StringWidth(const char* text) const
{
    if (!text || !text[0]) return 0;
    if (!m_hMeasureDC) m_hMeasureDC = CreateCompatibleDC(nullptr);
    if (!m_hMeasureDC) return static_cast<int>(SendMessage(LVM_GETSTRINGWIDTHA, 0, reinterpret_cast<LPARAM>(text)));
    auto font = reinterpret_cast<HFONT>(SendMessage(WM_GETFONT));
    if (!font) font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    if (font != m_hMeasureFont) {
        SelectObject(m_hMeasureDC, font);
        m_hMeasureFont = font;
        m_bCharWidths = GetCharWidth32A(m_hMeasureDC, 0, 127, m_anCharWidths) != FALSE;
    }
    int width = 0;
    const char* p = text;
    for (; m_bCharWidths && *p && static_cast<unsigned char>(*p) < 128; ++p) width += m_anCharWidths[static_cast<unsigned char>(*p)];
    if (!*p) return width;
    SIZE size = {0, 0};
    GetTextExtentPoint32A(m_hMeasureDC, text, static_cast<int>(std::strlen(text)), &size);
    return static_cast<int>(size.cx);
}

// The width of a cell text's longest line (a captured file's cell has two).
int CqvListCtrl::LineWidth(const std::string& text) const
{
    int widest = 0;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        std::string line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        widest = std::max(widest, StringWidth(line.c_str()));
        start = end + 1;
    }
    return widest;
}

// The widths of a row's comment and files texts, -1 for a row without a scene.
void CqvListCtrl::MeasureRow(int nRow, int& nComment, int& nFiles) const
{
    std::string comment, files;
    {
        qv::SceneLockGuard lock(g_csScenes);
        SceneRecord* scene = g_arScenes.GetAtOrNull(nRow);
        if (!scene) {
            nComment = nFiles = -1;
            return;
        }
        char text[QV_COMMENT_SIZE];
        qv::CopyField(text, scene->szComment);
        comment = text;
        files = qv::MakeFilesText(*scene, TextSources(m_bShowThumbnails != FALSE));
    }
    nComment = LineWidth(comment);
    nFiles = LineWidth(files);
}

int CqvListCtrl::HeaderWidth(int nColumn) const
{
    char header[256] = "";
    LVCOLUMNA column = {};
    column.mask = LVCF_TEXT;
    column.pszText = header;
    column.cchTextMax = sizeof header;
    SendMessage(LVM_GETCOLUMNA, static_cast<WPARAM>(nColumn), reinterpret_cast<LPARAM>(&column));
    return StringWidth(header);
}

// The comment column fits its texts until a comment wider than 160 pixels
// comes: it is then set to 160 once, and from there on keeps whatever width
// it has, also one the user gave it.  Sizing to the texts never makes a
// column narrower than its own header, so an empty column still shows what
// it is for.
void CqvListCtrl::SizeCommentColumn(int nWidest)
{
    if (g_bCommentColumnCapped) return;
    int width = kCommentColumnCap;
    if (nWidest > kCommentColumnCap)
        g_bCommentColumnCapped = 1;
    else
        width = std::max(nWidest, HeaderWidth(COL_COMMENT)) + kCellMargin;
    SetColumnWidth(COL_COMMENT, width);
}

// A column is resized only to a new width: each resize moves the columns to
// its right and the scroll bar, at the cost of a call to the window system.
void CqvListCtrl::SetColumnWidth(int nColumn, int nWidth)
{
    if (SendMessage(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(nColumn)) != nWidth)
        SendMessage(LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(nColumn), nWidth);
}

// The files column is as wide as its longest line, so a long path can be read
// by scrolling the list sideways (the platform's own sizing of the last
// column only fills the width left over), and at least as wide as that.
void CqvListCtrl::SizeFilesColumn(int nWidest)
{
    RECT client = {};
    ::GetClientRect(m_hWnd, &client);
    int leftOver = client.right - client.left;
    for (int c = 0; c < COL_FILES; ++c) leftOver -= static_cast<int>(SendMessage(LVM_GETCOLUMNWIDTH, c));
    SetColumnWidth(COL_FILES, std::max(std::max(nWidest, HeaderWidth(COL_FILES)) + kCellMargin, leftOver));
}

// Both columns fitted to the texts the rows hold now: after rows with the
// widest texts changed or went, they may narrow, and a comment column that
// no longer needs its cap fits its texts again.  Rebuilt rows (bAfresh)
// decide the cap afresh.
void CqvListCtrl::FitColumns(bool bAfresh)
{
    m_bFitPosted = false;
    ForgetColumnTexts();
    for (int row = 0, rows = GetRowCount(); row < rows; ++row) {
        int comment, files;
        MeasureRow(row, comment, files);
        if (comment > m_nWidestComment) m_nWidestComment = comment, m_nWidestCommentRow = row;
        if (files > m_nWidestFiles) m_nWidestFiles = files, m_nWidestFilesRow = row;
    }
    if (bAfresh || m_nWidestComment <= kCommentColumnCap) g_bCommentColumnCapped = 0;
    SizeCommentColumn(std::max(m_nWidestComment, 0));
    SizeFilesColumn(std::max(m_nWidestFiles, 0));
}

// The comment and files columns fit the widest text they hold.  Sizing a
// column to its texts visits every row, so it is done only when a row brings
// a text wider than any seen since the rows were last rebuilt: a long scan
// then costs the same per scene at its end as at its start.  Columns widen
// and never narrow while rows come in; deleting the row with the widest
// text, a rebuild (view switch, opened file) and a changed comment or file
// name in that row fit them to the texts again.
void CqvListCtrl::WidenColumnsFor(int nRow)
{
    int comment, files;
    MeasureRow(nRow, comment, files);
    if (comment > m_nWidestComment) {
        m_nWidestComment = comment;
        m_nWidestCommentRow = nRow;
        SizeCommentColumn(comment);
    }
    if (files > m_nWidestFiles) {
        m_nWidestFiles = files;
        m_nWidestFilesRow = nRow;
        SizeFilesColumn(files);
    }
}

void CqvListCtrl::ForgetColumnTexts()
{
    m_nWidestComment = m_nWidestFiles = -1;
    m_nWidestCommentRow = m_nWidestFilesRow = -1;
}

// A row begins (bInsert: rows from nRow down move one down with their
// scenes) or its scene changed; the list draws it from the scene again.
void CqvListCtrl::SetSceneRow(int nRow, BOOL bInsert)
{
    if (nRow < 0 || !FetchScene(nRow)) return;
    if (bInsert) {
        int rows = GetRowCount();
        if (nRow <= m_nWidestCommentRow) ++m_nWidestCommentRow;
        if (nRow <= m_nWidestFilesRow) ++m_nWidestFilesRow;
        // A row added at the end leaves the rows above it as they are drawn.
        SendMessage(LVM_SETITEMCOUNT, static_cast<WPARAM>(std::max(rows, nRow) + 1),
                    nRow < rows ? LVSICF_NOSCROLL : LVSICF_NOSCROLL | LVSICF_NOINVALIDATEALL);
    } else {
        SendMessage(LVM_REDRAWITEMS, static_cast<WPARAM>(nRow), nRow);
    }
    WidenColumnsFor(nRow);
}

void CqvListCtrl::UpdateOutTimes(int nFirstRow)
{
    if (DialogState() != 0) return;
    int nTable = SceneTableSize();
    if (nTable == 0 || nFirstRow < 0 || nFirstRow >= GetRowCount()) return;
    for (int i = nFirstRow; i < nTable; ++i) {
        SceneRecord* scene = FetchScene(i);
        if (!scene) break;
        if (scene->dwTimeCodeOut != 0) continue;
        // A scene whose end never came ends where the next one begins.
        SceneRecord* next = FetchScene(i + 1);
        scene->dwTimeCodeOut = next && next->dwTimeCodeIn >= scene->dwTimeCodeIn ? next->dwTimeCodeIn : scene->dwTimeCodeIn;
    }
    RedrawAllRows();
}

void CqvListCtrl::RefreshCommentAndFiles(int nRow, BOOL bComment, BOOL bFiles)
{
    // A comment or a captured file shows also in a list without thumbnails.
    if (!m_pOwner || m_pOwner->GetSceneCount() < 1 || !FetchScene(nRow)) return;
    SendMessage(LVM_REDRAWITEMS, static_cast<WPARAM>(nRow), nRow);
    // The row's old text may have been the widest: the columns are fitted
    // to every row then, else they only widen for the new text.
    if ((bComment && nRow == m_nWidestCommentRow) || (bFiles && nRow == m_nWidestFilesRow))
        FitColumns();
    else
        WidenColumnsFor(nRow);
}

BOOL CqvListCtrl::GetSelRange(int& nFirst, int& nLast) const
{
    nFirst = std::min(m_nAnchorRow, m_nCurrentRow);
    nLast = std::max(m_nAnchorRow, m_nCurrentRow);
    return m_bRangeSelected;
}

// Sets or clears states of one row, telling the list of changes only: each
// costs a notification to the dialog.
void CqvListCtrl::SetRowState(int nRow, UINT nState, UINT nMask)
{
    UINT now = static_cast<UINT>(SendMessage(LVM_GETITEMSTATE, static_cast<WPARAM>(nRow), nMask));
    if ((now & nMask) == (nState & nMask)) return;
    LVITEMA item = {};
    item.stateMask = nMask;
    item.state = nState;
    SendMessage(LVM_SETITEMSTATE, static_cast<WPARAM>(nRow), reinterpret_cast<LPARAM>(&item));
}

void CqvListCtrl::ClearSelection()
{
    DeselectOutside(0, -1);
}

// Clearing the state of every row costs as much as the list is long, and a
// scan selects each new scene: so the rows this list itself selected (its
// range) and the focused row are cleared one by one, and every row is
// visited only when some other row is still selected (the list control's own
// click and key handling selects rows too).  Rows from nFirst to nLast keep
// their selection.
void CqvListCtrl::DeselectOutside(int nFirst, int nLast)
{
    auto clear = [&](int row) {
        bool inside = row >= nFirst && row <= nLast;
        SetRowState(row, 0, LVIS_FOCUSED | LVIS_DROPHILITED | (inside ? 0 : LVIS_SELECTED));
    };
    int rows = GetRowCount();
    for (int r = std::max(0, std::min(m_nAnchorRow, m_nCurrentRow)); r <= std::min(rows - 1, std::max(m_nAnchorRow, m_nCurrentRow)); ++r)
        clear(r);
    int focused = static_cast<int>(SendMessage(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
    if (focused >= 0) clear(focused);
    int inside = std::max(0, std::min(nLast, rows - 1) - std::max(nFirst, 0) + 1);
    if (SendMessage(LVM_GETSELECTEDCOUNT) <= inside) return;
    for (int r = -1; (r = static_cast<int>(SendMessage(LVM_GETNEXTITEM, static_cast<WPARAM>(r), LVNI_SELECTED))) >= 0;)
        clear(r);
}

void CqvListCtrl::SelectRange(int nFrom, BOOL bRange, int nTo)
{
    int nEnd = bRange ? nTo : nFrom;
    bool range = bRange && nEnd != nFrom;
    int first = std::min(nFrom, nEnd), last = std::max(nFrom, nEnd);
    for (int r = first; r <= last; ++r) SetRowState(r, LVIS_SELECTED, LVIS_SELECTED);
    DeselectOutside(first, last);
    m_nAnchorRow = nFrom;
    m_nCurrentRow = nEnd;
    if (m_pOwner && DialogState() == 0) m_pOwner->SetPlayEnabled(range ? FALSE : TRUE);
}

void CqvListCtrl::SetThumbnailView(BOOL bThumbnails)
{
    m_bShowThumbnails = bThumbnails;
    m_ptClick = {0, 0};
}

// Only rows on screen can be drawn: asking the list to redraw the others
// would cost a region update per row for nothing.
void CqvListCtrl::RedrawAllRows()
{
    int n = GetRowCount();
    if (n > 0) {
        int top = std::max(0, static_cast<int>(SendMessage(LVM_GETTOPINDEX)));
        int last = std::min(n - 1, top + static_cast<int>(SendMessage(LVM_GETCOUNTPERPAGE)));
        SendMessage(LVM_REDRAWITEMS, static_cast<WPARAM>(top), last);
    }
    Invalidate(FALSE);
}

void CqvListCtrl::DeleteAllColumns()
{
    for (int c = GetColumnCount() - 1; c >= 0; --c) SendMessage(LVM_DELETECOLUMN, static_cast<WPARAM>(c));
}

void CqvListCtrl::InsertSceneColumns()
{
    ForgetColumnTexts();
    // Full-row selection, draggable headers and grid lines; the thumbnail
    // view adds sub-item images.  The list's own check-box style is never set:
    // the marks are the list's own drawing, and that style would paint its
    // check-box area over the highlight of a selected row's mark cell.
    DWORD styles = LVS_EX_FULLROWSELECT | LVS_EX_HEADERDRAGDROP | LVS_EX_GRIDLINES;
    if (m_bShowThumbnails) styles |= LVS_EX_SUBITEMIMAGES;
    SendMessage(LVM_SETEXTENDEDLISTVIEWSTYLE, static_cast<WPARAM>(-1), styles);

    // Widths are measured in a fresh drawing context of the list, in its
    // default font.
    HDC dc = GetDC(m_hWnd);
    auto width = [dc](const std::string& text) {
        SIZE size = {0, 0};
        GetTextExtentPoint32A(dc, text.c_str(), static_cast<int>(text.size()), &size);
        return static_cast<int>(size.cx);
    };
    auto header = [](UINT id) {
        std::string text = qv::LoadResString(id);
        return text.size() > 99 ? text.substr(0, 99) : text;
    };
    std::string titles[COLUMN_COUNT] = {
        "",
        header(m_bShowThumbnails ? IDS_COL_THUMBNAIL : IDS_COL_IN),
        header(m_bShowThumbnails ? IDS_COL_TIMES : IDS_COL_OUT),
        header(IDS_COL_DATE),
        header(IDS_COL_COMMENT),
        header(IDS_COL_FILES),
    };
    int widths[COLUMN_COUNT];
    widths[COL_MARK] = width("     ") + 4;
    widths[COL_THUMB_OR_IN] = std::max(80, m_bShowThumbnails ? width(titles[1]) : width("In: 00:00:00:00")) + 4;
    widths[COL_TIMES_OR_OUT] = std::max(80, width("Out: 00:00:00:00")) + 4;
    widths[COL_DATE] = width(titles[COL_DATE]) + 4;
    widths[COL_COMMENT] = width(titles[COL_COMMENT]) + 4;
    ReleaseDC(m_hWnd, dc);
    RECT client;
    GetClientRect(&client);
    widths[COL_FILES] = client.right - client.left;
    for (int c = 0; c < COL_FILES; ++c) widths[COL_FILES] -= widths[c];

    for (int c = 0; c < COLUMN_COUNT; ++c) {
        LVCOLUMNA col = {};
        col.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT | LVCF_SUBITEM;
        col.fmt = LVCFMT_CENTER;
        col.cx = widths[c];
        col.pszText = const_cast<char*>(titles[c].c_str());
        col.iSubItem = c;
        SendMessage(LVM_INSERTCOLUMNA, static_cast<WPARAM>(c), reinterpret_cast<LPARAM>(&col));
    }
}

BOOL CqvListCtrl::GetCellRect(int nRow, int nColumn, int nArea, RECT& rc) const
{
    if (nColumn != 0) {
        rc.top = nColumn;
        rc.left = nArea;
        return SendMessage(LVM_GETSUBITEMRECT, static_cast<WPARAM>(nRow), reinterpret_cast<LPARAM>(&rc)) != 0;
    }
    rc.left = nArea;
    if (!SendMessage(LVM_GETITEMRECT, static_cast<WPARAM>(nRow), reinterpret_cast<LPARAM>(&rc))) return FALSE;
    if (GetColumnCount() <= 1) return TRUE;
    RECT next = {};
    next.top = 1;
    next.left = LVIR_BOUNDS;
    if (!SendMessage(LVM_GETSUBITEMRECT, static_cast<WPARAM>(nRow), reinterpret_cast<LPARAM>(&next))) return FALSE;
    rc.right = next.left;
    return TRUE;
}

BOOL CqvListCtrl::ToggleMarkAt(const RECT* prcBox, int nScene)
{
    if (!prcBox || !PtInRect(prcBox, m_ptClick)) return FALSE;
    int marked = 0;
    {
        qv::SceneLockGuard lock(g_csScenes);
        SceneRecord* scene = g_arScenes.GetAtOrNull(nScene);
        if (!scene) return FALSE;
        scene->bMarked = scene->bMarked == 1 ? 0 : 1;
        marked = scene->bMarked;
    }
    m_nMarkedCount += marked ? 1 : -1;
    if (m_nMarkedCount < 1) {
        m_nMarkedCount = 0;
        if (m_pOwner) m_pOwner->SetCaptureEnabled(FALSE);
    } else if (m_pOwner) {
        m_pOwner->SetCaptureEnabled(TRUE);
    }
    return TRUE;
}
