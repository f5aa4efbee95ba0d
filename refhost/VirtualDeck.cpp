#include "VirtualDeck.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

VirtualDeck* VirtualDeck::s_instance;

namespace {

const UINT kTickMs = 40;
const UINT kTimerId = 77;
const UINT WM_DECK_TAPE_END = WM_APP + 7;

SceneInfo MakeInfo(const TapeScene& s, bool end)
{
    SceneInfo info;
    std::memset(&info, 0, sizeof info);
    info.dwTimeCodeIn = s.dwTimeCodeIn;
    info.dwTimeCodeOut = end ? s.dwTimeCodeOut : 0;
    info.stRecorded = {s.stRecorded.wYear, s.stRecorded.wMonth, s.stRecorded.wDayOfWeek, s.stRecorded.wDay,
                       s.stRecorded.wHour, s.stRecorded.wMinute, s.stRecorded.wSecond, 0};
    info.dwPositionIn = s.nFirstFrame;
    info.dwPositionOut = end ? s.nLastFrame : 0;
    return info;
}

} // namespace

VirtualDeck::VirtualDeck(double speedFactor, Tape& tape) : m_speed(speedFactor), m_tape(tape)
{
    s_instance = this;
    SetPosition(0);
    WNDCLASSA wc = {};
    wc.lpfnWndProc = DeckProc;
    wc.hInstance = GetModuleHandleA(nullptr);
    wc.lpszClassName = "qvVirtualDeck";
    RegisterClassA(&wc);
    m_hWnd = CreateWindowA(wc.lpszClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, wc.hInstance, nullptr);
}

LRESULT CALLBACK VirtualDeck::DeckProc(HWND h, UINT msg, WPARAM wp, LPARAM lp)
{
    if (msg == WM_TIMER && wp == kTimerId && s_instance) s_instance->OnTimer();
    else if (msg == WM_DECK_TAPE_END && s_instance) s_instance->OnTapeEnd();
    else return DefWindowProcA(h, msg, wp, lp);
    return 0;
}

VirtualDeck::~VirtualDeck()
{
    m_quickStop = true;
    if (m_quickThread.joinable()) m_quickThread.join();
    DestroyWindow(m_hWnd);
    s_instance = nullptr;
}

int32_t VirtualDeck::RequestProc(int32_t nRequest, intptr_t lParam)
{
    return s_instance ? s_instance->Handle(nRequest, lParam) : 0;
}

int32_t VirtualDeck::Handle(int32_t nRequest, intptr_t lParam)
{
    switch (nRequest) {
    case HOSTREQ_START_SCAN: {
        const auto& req = *reinterpret_cast<const ScanRequest*>(lParam);
        return req.nScanMethod == 3 ? ScanWithCapture(req) : StartScan(req);
    }
    case HOSTREQ_STOP_SCAN:
        StopPlaying();
        return 1;
    case HOSTREQ_CAPTURE_SCENES:
        return Capture(*reinterpret_cast<const CaptureRequest*>(lParam));
    case HOSTREQ_PLAY_SPAN:
        return PlaySpan(*reinterpret_cast<const SceneSpan*>(lParam));
    case HOSTREQ_STOP_PLAY:
        m_stopPlay = true;
        return 1;
    case HOSTREQ_SEEK_TIMECODE:
        return MoveTo(m_tape.FrameOf(*reinterpret_cast<const uint32_t*>(lParam), m_position));
    case HOSTREQ_SEEK_POSITION:
        return MoveTo(*reinterpret_cast<const uint32_t*>(lParam));
    case HOSTREQ_CHOOSE_LIBRARY: {
        auto& req = *reinterpret_cast<LibraryRequest*>(lParam);
        std::snprintf(req.szLibraryFolder, sizeof req.szLibraryFolder, "C:\\Video Library\\Reference Host");
        req.bSaveToLibrary = 1;
        return 1;
    }
    case HOSTREQ_DIALOG_CLOSED:
        StopPlaying();
        m_dialogClosed = true;
        return 1;
    case HOSTREQ_GET_POSITION:
        *reinterpret_cast<uint32_t*>(lParam) = m_timeCode;
        return 1;
    case HOSTREQ_GET_DEVICE_STATUS: {
        auto& status = *reinterpret_cast<DeviceStatus*>(lParam);
        for (int i = 0; i < 8; ++i) status.adwCondition[i] = m_faults[i] ? 0 : 1;
        return 1;
    }
    default:
        return 0;
    }
}

void VirtualDeck::SetPosition(uint32_t nFrame)
{
    m_position = nFrame;
    m_timeCode = m_tape.TimeCodeOf(nFrame);
}

uint32_t VirtualDeck::Step(double speed) const
{
    return std::max(1u, static_cast<uint32_t>(speed * kTickMs * m_tape.FramesPerSecond() / 1000.0));
}

void VirtualDeck::FeedBegin(int i)
{
    BITMAPINFOHEADER header;
    std::vector<uint8_t> bits;
    bool thumb = m_tape.Thumbnail(i, header, bits);
    SceneInfo info = MakeInfo(m_tape.Scenes()[static_cast<size_t>(i)], false);
    info.dwThumbSize = thumb ? static_cast<uint32_t>(bits.size()) : 0;
    qvSetSceneDataBegin(&info, thumb ? &header : nullptr, thumb ? bits.data() : nullptr);
    m_sceneOpen = true;
}

void VirtualDeck::FeedEnd(int i)
{
    SceneInfo info = MakeInfo(m_tape.Scenes()[static_cast<size_t>(i)], true);
    qvSetSceneDataEnd(&info);
    m_sceneOpen = false;
    ++m_scenesFed;
}

void VirtualDeck::FeedUpTo(uint32_t frame)
{
    const auto& scenes = m_tape.Scenes();
    while (m_nextScene < static_cast<int>(scenes.size())) {
        const TapeScene& s = scenes[static_cast<size_t>(m_nextScene)];
        if (!m_sceneOpen && frame >= s.nFirstFrame) FeedBegin(m_nextScene);
        if (m_sceneOpen && frame >= s.nLastFrame) {
            FeedEnd(m_nextScene++);
            continue;
        }
        break;
    }
}

int32_t VirtualDeck::StartScan(const ScanRequest& req)
{
    if (m_position >= m_tape.LengthInFrames()) SetPosition(0);  // rewind a finished tape
    m_captureFolder = req.szCaptureFolder;
    m_baseScene = req.nSceneCount;
    m_nextScene = m_tape.SceneAt(m_position);
    m_sceneOpen = false;
    m_scanning = true;
    if (req.nQuickScanSpeed > 0) {
        // A quick scan is the deck's trick play, from its own thread: the head
        // reads one frame in `stride` (8 to 64 as the speed rises), as fast as
        // the tape gives them, and each scene's begin and end are reported as
        // the head passes them.
        if (m_quickThread.joinable()) m_quickThread.join();
        m_quickStop = false;
        uint32_t stride = 4u << std::clamp(req.nQuickScanSpeed, 1, 4);
        m_quickThread = std::thread([this, stride] {
            const uint32_t end = m_tape.LengthInFrames();
            for (uint32_t at = m_position; !m_quickStop; at = std::min(at + stride, end)) {
                int fed = m_scenesFed;
                m_position = at;
                m_timeCode = m_tape.ReadInPassing(at);
                FeedUpTo(at);
                if (m_scenesFed != fed) Sleep(2);
                if (at >= end) break;
            }
            PostMessageA(m_hWnd, WM_DECK_TAPE_END, 0, 0);
        });
        return 1;
    }
    SetTimer(m_hWnd, kTimerId, kTickMs, nullptr);
    return 1;
}

void VirtualDeck::OnTimer()
{
    if (!m_scanning) return;
    SetPosition(std::min(m_position + Step(m_speed), m_tape.LengthInFrames()));
    FeedUpTo(m_position);
    if (m_position >= m_tape.LengthInFrames()) OnTapeEnd();
}

void VirtualDeck::OnTapeEnd()
{
    // The end of the tape ends the scan, as the host's deck reports it.
    KillTimer(m_hWnd, kTimerId);
    if (m_scanning) qvForceToStopPreScan(0);
    m_scanning = false;
}

void VirtualDeck::StopPlaying()
{
    m_scanning = false;
    m_quickStop = true;
    KillTimer(m_hWnd, kTimerId);
}

bool VirtualDeck::PumpWhile(uint32_t ms)
{
    DWORD start = GetTickCount();
    do {
        MSG msg;
        while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
            if (msg.message == WM_QUIT) {
                PostQuitMessage(static_cast<int>(msg.wParam));
                return false;
            }
            TranslateMessage(&msg);
            DispatchMessageA(&msg);
        }
        if (m_dialogClosed) return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
    } while (GetTickCount() - start < ms);
    return true;
}

std::string VirtualDeck::CaptureFileName(int nTake) const
{
    std::string base = m_captureName.substr(0, m_captureName.rfind('.'));
    char name[64];
    std::snprintf(name, sizeof name, " %03d%s", nTake, m_tape.CaptureExtension());
    std::string folder = m_captureFolder;
    if (!folder.empty() && folder.back() != '\\') folder += '\\';
    return folder + base + name;
}

int32_t VirtualDeck::ScanWithCapture(const ScanRequest& req)
{
    // The whole scan runs inside the request: the deck plays, reports each
    // scene and captures it at once, pumping messages meanwhile.
    if (m_position >= m_tape.LengthInFrames()) SetPosition(0);
    m_captureFolder = req.szCaptureFolder;
    m_captureName = req.szCaptureName;
    m_baseScene = req.nSceneCount;
    int first = m_tape.SceneAt(m_position);
    for (int i = first; i < static_cast<int>(m_tape.Scenes().size()); ++i) {
        const TapeScene& s = m_tape.Scenes()[static_cast<size_t>(i)];
        SetPosition(s.nFirstFrame);
        FeedBegin(i);
        if (!PumpWhile(10)) break;
        SetPosition(s.nLastFrame);
        FeedEnd(i);
        std::string file = CaptureFileName(m_baseScene + i - first + 1);
        if (m_tape.Capture(s.nFirstFrame, s.nLastFrame, file)) {
            qvSetCapSceneFileName(m_baseScene + i - first, file.c_str());
            ++m_filesCaptured;
        }
        if (!PumpWhile(10)) break;
    }
    return 1;
}

int32_t VirtualDeck::Capture(const CaptureRequest& req)
{
    m_captureFolder = req.szCaptureFolder;
    m_captureName.assign(req.szCaptureName, strnlen(req.szCaptureName, sizeof req.szCaptureName));
    int take = 0;
    for (const SceneSpan* span = req.pFirstSpan; span && take < req.nSpanCount; span = span->pNext, ++take) {
        uint32_t first, last;
        SpanFrames(*span, first, last);
        if (first >= m_tape.LengthInFrames()) continue;
        SetPosition(first);
        std::string file = CaptureFileName(take + 1);
        if (m_tape.Capture(first, last, file)) {
            qvSetCapSceneFileName(take, file.c_str());  // the n-th marked scene
            ++m_filesCaptured;
        }
        if (!PumpWhile(10)) break;
    }
    return 1;
}

void VirtualDeck::SpanFrames(const SceneSpan& span, uint32_t& first, uint32_t& last) const
{
    // Positions when the module has them, else the frames carrying the time codes.
    first = span.dwPositionIn != QV_NO_POSITION ? span.dwPositionIn : m_tape.FrameOf(span.dwTimeCodeIn, m_position);
    last = span.dwPositionOut != QV_NO_POSITION && span.dwPositionOut ? span.dwPositionOut
                                                                      : m_tape.FrameOf(span.dwTimeCodeOut, first);
}

int32_t VirtualDeck::PlaySpan(const SceneSpan& span)
{
    uint32_t from, to;
    SpanFrames(span, from, to);
    m_stopPlay = false;
    SetPosition(from);
    // Plays at four times normal speed so a preview does not take minutes.
    while (!m_stopPlay && m_position < to) {
        if (!PumpWhile(kTickMs)) break;
        SetPosition(std::min(m_position + Step(4), to));
    }
    return 1;
}

int32_t VirtualDeck::MoveTo(uint32_t nFrame)
{
    uint32_t step = Step(m_speed);
    while (m_position != nFrame) {
        if (!PumpWhile(kTickMs)) return 0;
        uint32_t at = m_position;
        SetPosition(at < nFrame ? std::min(at + step, nFrame) : std::max(at > step ? at - step : 0, nFrame));
    }
    return 1;
}
