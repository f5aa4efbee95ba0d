// A host for tests: its HostRequestProc records every request with a copy of
// the record it carried, and answers as the test scripts it, including work
// done inside a long request (feeding scenes, pressing stop).
#pragma once

#include "qvPreScan.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <vector>

namespace qvtest {

struct RecordedRequest {
    int32_t code = 0;
    intptr_t arg = 0;
    std::vector<uint8_t> record;      // the record's bytes as the module sent them
    std::vector<SceneSpan> spans;     // request 3: the chain, in order
};

inline auto RequestIs(int32_t code) { return [code](const RecordedRequest& r) { return r.code == code; }; }

class ScriptedHost {
public:
    using Answer = std::function<int32_t(intptr_t arg)>;

    static ScriptedHost& Instance()
    {
        static ScriptedHost host;
        return host;
    }
    // The callback a PreScanInitInfo carries.
    static int32_t Proc(int32_t nRequest, intptr_t lParam) { return Instance().Handle(nRequest, lParam); }

    // Forgets the requests and restores the default answers: requests 1, 3,
    // 6, 9 and 12 succeed, request 10 has no position, request 11 reports a
    // ready device, the others answer 0.
    void Reset();
    void OnRequest(int32_t code, Answer answer) { m_answers[code] = std::move(answer); }

    int Count(int32_t code) const { return int(std::count_if(m_requests.begin(), m_requests.end(), RequestIs(code))); }
    const RecordedRequest* Last(int32_t code) const
    {
        auto it = std::find_if(m_requests.rbegin(), m_requests.rend(), RequestIs(code));
        return it == m_requests.rend() ? nullptr : &*it;
    }
    // The codes of the requests so far, in order.
    std::vector<int32_t> Codes() const
    {
        std::vector<int32_t> codes;
        for (const auto& r : m_requests) codes.push_back(r.code);
        return codes;
    }
    // The record the last request `code` carried, as the module sent it
    // (all zero when there was none).
    template <class T> T LastRecord(int32_t code) const
    {
        T value;
        std::memset(&value, 0, sizeof value);
        const RecordedRequest* r = Last(code);
        if (r && r->record.size() >= sizeof value) std::memcpy(&value, r->record.data(), sizeof value);
        return value;
    }

private:
    int32_t Handle(int32_t code, intptr_t arg);
    std::vector<RecordedRequest> m_requests;
    std::map<int32_t, Answer> m_answers;
};

// A filled initialisation record that points at the scripted host.
PreScanInitInfo MakeInitInfo(const char* ext = ".avi", int32_t tv = 2, const char* helpFile = "C:\\help\\qv.hlp");

} // namespace qvtest
