// Message pumping for tests that drive real windows.
#pragma once

#include <windows.h>

#include <functional>

namespace qvtest {

// Dispatches every message already queued for this thread (sent and posted)
// and returns once the queue is empty.
void PumpPending();

// Pumps until `done` returns true or `timeoutMs` has passed.  Returns done().
bool PumpUntil(const std::function<bool()>& done, DWORD timeoutMs = 5000);

// Pumps for `ms` milliseconds (timers fire meanwhile).
void PumpFor(DWORD ms);

} // namespace qvtest
