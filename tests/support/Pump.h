// Message pumping for tests that drive real windows.
#pragma once

#include <windows.h>

#include <functional>

namespace qvtest {

// Dispatches every message already queued for this thread (sent and posted)
// and returns once the queue is empty.
inline void PumpPending()
{
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
}

// Pumps until `done` returns true or `timeoutMs` has passed (timers fire
// meanwhile).  Returns done().
inline bool PumpUntil(const std::function<bool()>& done, DWORD timeoutMs = 5000)
{
    for (DWORD start = GetTickCount(); !done(); MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT)) {
        if (GetTickCount() - start >= timeoutMs) return done();
        PumpPending();
    }
    return true;
}

// Pumps for `ms` milliseconds.
inline void PumpFor(DWORD ms) { PumpUntil([] { return false; }, ms), PumpPending(); }

} // namespace qvtest
