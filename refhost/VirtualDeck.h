// The reference host's virtual DV deck: it plays a tape (the synthetic one or
// a DV file), feeds the module's scene feed while scanning, captures marked
// scenes into files, moves the tape, and answers every request the module
// sends.
#pragma once

#include "Tape.h"
#include "qvPreScan.h"

#include <windows.h>

#include <atomic>
#include <string>
#include <thread>

class VirtualDeck {
public:
    VirtualDeck(double speedFactor, Tape& tape);
    ~VirtualDeck();

    // The HostRequestProc the module is given (one deck per process).
    static int32_t RequestProc(int32_t nRequest, intptr_t lParam);


    // Device faults the user can switch on (flags 0..7 of the device status).
    void SetFault(int nFlag, bool bOn) { m_faults[nFlag] = bOn; }

    bool Scanning() const { return m_scanning; }
    bool DialogClosed() const { return m_dialogClosed; }
    int ScenesFed() const { return m_scenesFed; }
    int FilesCaptured() const { return m_filesCaptured; }
    const std::string& LastCaptureFolder() const { return m_captureFolder; }

private:
    int32_t Handle(int32_t nRequest, intptr_t lParam);
    int32_t StartScan(const ScanRequest& req);
    int32_t ScanWithCapture(const ScanRequest& req);
    int32_t Capture(const CaptureRequest& req);
    int32_t PlaySpan(const SceneSpan& span);
    int32_t MoveTo(uint32_t nFrame);
    void StopPlaying();
    // The deck's play timer and the quick scan's end arrive at its own
    // message-only window, on the thread that made the deck.
    static LRESULT CALLBACK DeckProc(HWND h, UINT msg, WPARAM wp, LPARAM lp);
    void OnTimer();
    void OnTapeEnd();
    void FeedUpTo(uint32_t nFrame);
    void FeedBegin(int i);
    void FeedEnd(int i);
    void SetPosition(uint32_t nFrame);
    bool PumpWhile(uint32_t ms);
    std::string CaptureFileName(int nTake) const;
    uint32_t Step(double speed) const;
    void SpanFrames(const SceneSpan& span, uint32_t& first, uint32_t& last) const;

    static VirtualDeck* s_instance;
    HWND m_hWnd;
    double m_speed;
    Tape& m_tape;
    std::atomic<uint32_t> m_position{0};
    std::atomic<uint32_t> m_timeCode{0};  // what the head last read: the deck's position display
    int m_nextScene = 0;     // next scene whose begin is to be reported
    bool m_sceneOpen = false;
    bool m_scanning = false;
    bool m_stopPlay = false;
    bool m_dialogClosed = false;
    bool m_faults[8] = {};
    std::atomic<int> m_scenesFed{0};
    int m_filesCaptured = 0;
    int m_baseScene = 0;     // scenes in the list when the scan started
    std::string m_captureFolder, m_captureName;
    std::thread m_quickThread;
    std::atomic<bool> m_quickStop{false};
};
