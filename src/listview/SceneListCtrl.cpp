#include "listview/SceneListCtrl.h"

#include "ResourceIds.h"
#include "listview/CommentEdit.h"
#include "listview/RowTexts.h"
#include "listview/SceneListOwner.h"
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

std::string CqvListCtrl::GetCellText(int nRow, int nColumn) const
{
    char text[1024] = "";
    LVITEMA item = {};
    item.iSubItem = nColumn;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    SendMessage(LVM_GETITEMTEXTA, static_cast<WPARAM>(nRow), reinterpret_cast<LPARAM>(&item));
    return text;
}

void CqvListCtrl::DeleteRow(int nRow)
{
    // When the row held the widest comment or file name, the columns are
    // fitted to what is left once the command that deletes rows has ended:
    // a command deleting many rows then fits them once.
    bool widest = LineWidth(GetCellText(nRow, COL_COMMENT)) >= m_nWidestComment ||
                  LineWidth(GetCellText(nRow, COL_FILES)) >= m_nWidestFiles;
    SendMessage(LVM_DELETEITEM, static_cast<WPARAM>(nRow));
    if (widest && !m_bFitPosted && m_hWnd) m_bFitPosted = ::PostMessageA(m_hWnd, WM_QV_FIT_COLUMNS, 0, 0) != FALSE;
}

void CqvListCtrl::DeleteAllRows()
{
    SendMessage(LVM_DELETEALLITEMS);
    ForgetColumnTexts();
}

// The width of a text in the list's font, as the list itself measures it.
// Every new row is measured: a drawing context of the list's own would cost
// a call to the window system per text, so one memory context is kept.
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
    }
    SIZE size = {0, 0};
    GetTextExtentPoint32A(m_hMeasureDC, text, static_cast<int>(std::strlen(text)), &size);
    return static_cast<int>(size.cx);
}

void CqvListCtrl::SetCellText(int nRow, int nColumn, const std::string& text)
{
    LVITEMA item = {};
    item.iSubItem = nColumn;
    item.pszText = const_cast<char*>(text.c_str());
    SendMessage(LVM_SETITEMTEXTA, static_cast<WPARAM>(nRow), reinterpret_cast<LPARAM>(&item));
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

// The comment column fits its texts until a comment wider than 160 pixels
// comes: it is then set to 160 once, and from there on keeps whatever width
// it has, also one the user gave it.  Sizing to the texts never makes a
// column narrower than its own header, so an empty column still shows what
// it is for.
void CqvListCtrl::SizeCommentColumn(int nWidest)
{
    if (g_bCommentColumnCapped) return;
    if (nWidest > kCommentColumnCap) {
        SendMessage(LVM_SETCOLUMNWIDTH, COL_COMMENT, kCommentColumnCap);
        g_bCommentColumnCapped = 1;
    } else {
        SendMessage(LVM_SETCOLUMNWIDTH, COL_COMMENT, LVSCW_AUTOSIZE_USEHEADER);
    }
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
    char header[256] = "";
    LVCOLUMNA column = {};
    column.mask = LVCF_TEXT;
    column.pszText = header;
    column.cchTextMax = sizeof header;
    SendMessage(LVM_GETCOLUMNA, COL_FILES, reinterpret_cast<LPARAM>(&column));
    const int kCellMargin = 12;  // the list's space around a cell's text
    int width = std::max(std::max(nWidest, StringWidth(header)) + kCellMargin, leftOver);
    SendMessage(LVM_SETCOLUMNWIDTH, COL_FILES, width);
}

// Both columns fitted to the texts the rows hold now: after rows with the
// widest texts went, they may narrow, and a comment column that no longer
// needs its cap fits its texts again.
void CqvListCtrl::FitColumns()
{
    m_bFitPosted = false;
    int comment = 0, files = 0;
    for (int row = 0, rows = GetRowCount(); row < rows; ++row) {
        comment = std::max(comment, LineWidth(GetCellText(row, COL_COMMENT)));
        files = std::max(files, LineWidth(GetCellText(row, COL_FILES)));
    }
    m_nWidestComment = comment;
    m_nWidestFiles = files;
    if (comment <= kCommentColumnCap) g_bCommentColumnCapped = 0;
    SizeCommentColumn(comment);
    SizeFilesColumn(files);
}

int CqvListCtrl::SetSceneRow(int nRow, int nScene, BOOL bInsert, BOOL bOpenEnded)
{
    if (SceneTableSize() == 0) return 0;
    SceneRecord* scene = FetchScene(nScene);
    if (!scene) return 0;
    qv::RowTexts texts = MakeRowTexts(*scene, bOpenEnded != FALSE, TextSources(m_bShowThumbnails != FALSE));

    int result = 1;
    if (bInsert) {
        LVITEMA item = {};
        item.mask = LVIF_TEXT | LVIF_STATE;
        item.iItem = nRow;
        item.pszText = const_cast<char*>("");
        // A scene coming in is selected as it is added; rows rebuilt in bulk
        // are not, the selection is set once they are all there.
        item.stateMask = LVIS_SELECTED;
        item.state = m_bBulkRows ? 0 : LVIS_SELECTED;
        result = static_cast<int>(SendMessage(LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item)));
        if (result < 0) return -1;
        nRow = result;
        if (!m_bBulkRows) m_nInsertedRow = nRow;  // inserted selected
    }
    if (m_bShowThumbnails) {
        SetCellText(nRow, COL_TIMES_OR_OUT, texts.times);
    } else {
        SetCellText(nRow, COL_THUMB_OR_IN, texts.in);
        SetCellText(nRow, COL_TIMES_OR_OUT, texts.out);
    }
    SetCellText(nRow, COL_DATE, texts.date);
    SetCellText(nRow, COL_COMMENT, texts.comment);
    SetCellText(nRow, COL_FILES, texts.files);
    WidenColumnsFor(texts.comment, texts.files);
    return result;
}

// The comment and files columns fit the widest text they hold.  Sizing a
// column to its texts visits every row, so it is done only when a row brings
// a text wider than any seen since the rows were last rebuilt: a long scan
// then costs the same per scene at its end as at its start.  Columns widen
// and never narrow while rows come in; deleting the row with the widest
// text, a rebuild (view switch, opened file) and an edited comment or file
// name fit them to the texts again.
void CqvListCtrl::WidenColumnsFor(const std::string& comment, const std::string& files)
{
    int commentWidth = LineWidth(comment);
    int filesWidth = LineWidth(files);
    bool widerComment = commentWidth > m_nWidestComment, widerFiles = filesWidth > m_nWidestFiles;
    m_nWidestComment = std::max(m_nWidestComment, commentWidth);
    m_nWidestFiles = std::max(m_nWidestFiles, filesWidth);
    if (m_bBulkRows) return;  // sized once when the rebuild ends
    if (widerComment) SizeCommentColumn(m_nWidestComment);
    if (widerFiles) SizeFilesColumn(m_nWidestFiles);
}

void CqvListCtrl::ForgetColumnTexts()
{
    m_nWidestComment = -1;
    m_nWidestFiles = -1;
}

void CqvListCtrl::BeginBulkRows()
{
    m_bBulkRows = true;
    ForgetColumnTexts();
    SendMessage(WM_SETREDRAW, FALSE);
}

void CqvListCtrl::EndBulkRows()
{
    if (!m_bBulkRows) return;
    m_bBulkRows = false;
    g_bCommentColumnCapped = 0;  // rebuilt rows: the cap is decided afresh
    SizeCommentColumn(m_nWidestComment);
    SizeFilesColumn(std::max(m_nWidestFiles, 0));
    SendMessage(WM_SETREDRAW, TRUE);
    Invalidate(TRUE);
}

void CqvListCtrl::UpdateOutTimes(int nFirstRow)
{
    if (DialogState() != 0) return;
    int nTable = SceneTableSize();
    if (nTable == 0 || nFirstRow < 0 || nFirstRow >= GetRowCount()) return;
    qv::RowTextSources src = TextSources(m_bShowThumbnails != FALSE);
    for (int i = nFirstRow; i < nTable; ++i) {
        SceneRecord* scene = FetchScene(i);
        if (!scene) break;
        SceneRecord* next = i + 1 < nTable ? FetchScene(i + 1) : nullptr;
        if (scene->dwTimeCodeOut == 0) {
            // A scene whose end never came ends where the next one begins.
            if (next && next->dwTimeCodeIn >= scene->dwTimeCodeIn)
                scene->dwTimeCodeOut = next->dwTimeCodeIn;
            else
                scene->dwTimeCodeOut = scene->dwTimeCodeIn;
        }
        SetCellText(i, COL_TIMES_OR_OUT, MakeOutText(*scene, false, src));
    }
}

void CqvListCtrl::RefreshCommentAndFiles(int nRow, int nScene, BOOL bComment, BOOL bFiles)
{
    // A comment or a captured file shows also in a list without thumbnails.
    if (!m_pOwner || m_pOwner->GetSceneCount() < 1 || SceneTableSize() == 0) return;
    SceneRecord* scene = FetchScene(nScene);
    if (!scene) return;
    qv::RowTexts texts = MakeRowTexts(*scene, false, TextSources(m_bShowThumbnails != FALSE));
    // The row's old text may have been the widest: the columns are fitted
    // to every row then, else they only widen for the new text.
    if (bComment) {
        bool wasWidest = LineWidth(GetCellText(nRow, COL_COMMENT)) >= m_nWidestComment;
        SetCellText(nRow, COL_COMMENT, texts.comment);
        if (wasWidest) FitColumns();
        else WidenColumnsFor(texts.comment, "");
    }
    if (bFiles) {
        bool wasWidest = LineWidth(GetCellText(nRow, COL_FILES)) >= m_nWidestFiles;
        SetCellText(nRow, COL_FILES, texts.files);
        if (wasWidest) FitColumns();
        else WidenColumnsFor("", texts.files);
    }
}

BOOL CqvListCtrl::GetSelRange(int& nFirst, int& nLast) const
{
    nFirst = std::min(m_nAnchorRow, m_nCurrentRow);
    nLast = std::max(m_nAnchorRow, m_nCurrentRow);
    return m_bRangeSelected;
}

// Clearing the state of every row costs as much as the list is long, and a
// scan selects each new scene: so the rows this list itself selected (its
// range and the newest inserted row) and the focused row are cleared one by
// one, and every row is visited only when some other row is still selected
// (the list control's own click and key handling selects rows too).
void CqvListCtrl::ClearSelection()
{
    LVITEMA item = {};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED | LVIS_DROPHILITED;
    item.state = 0;
    auto clear = [&](int row) { SendMessage(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item)); };
    int rows = GetRowCount();
    int first = std::max(0, std::min(m_nAnchorRow, m_nCurrentRow));
    int last = std::min(rows - 1, std::max(m_nAnchorRow, m_nCurrentRow));
    for (int r = first; r <= last; ++r) clear(r);
    if (m_nInsertedRow >= 0 && m_nInsertedRow < rows) clear(m_nInsertedRow);
    m_nInsertedRow = -1;
    int focused = static_cast<int>(SendMessage(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
    if (focused >= 0) clear(focused);
    if (SendMessage(LVM_GETSELECTEDCOUNT) == 0) return;
    // Others are still selected: they are found and cleared one by one, so
    // that unselected rows are only looked at, never updated.
    for (int r = -1; (r = static_cast<int>(SendMessage(LVM_GETNEXTITEM, static_cast<WPARAM>(r), LVNI_SELECTED))) >= 0;)
        clear(r);
}

void CqvListCtrl::SelectRange(int nFrom, BOOL bRange, int nTo)
{
    int nEnd = bRange ? nTo : nFrom;
    bool range = bRange && nEnd != nFrom;
    ClearSelection();
    LVITEMA item = {};
    item.stateMask = item.state = LVIS_SELECTED;
    for (int r = std::min(nFrom, nEnd); r <= std::max(nFrom, nEnd); ++r)
        SendMessage(LVM_SETITEMSTATE, static_cast<WPARAM>(r), reinterpret_cast<LPARAM>(&item));
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
