#include "support/Pump.h"

namespace qvtest {

void PumpPending()
{
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
}

bool PumpUntil(const std::function<bool()>& done, DWORD timeoutMs)
{
    DWORD start = GetTickCount();
    while (!done()) {
        if (GetTickCount() - start >= timeoutMs) return done();
        PumpPending();
        if (done()) break;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    }
    return true;
}

void PumpFor(DWORD ms)
{
    DWORD start = GetTickCount();
    while (GetTickCount() - start < ms) {
        PumpPending();
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    }
    PumpPending();
}

} // namespace qvtest
