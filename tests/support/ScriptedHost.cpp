#include "support/ScriptedHost.h"

#include <cstring>

namespace qvtest {
namespace {

size_t RecordSize(int32_t code)
{
    switch (code) {
    case HOSTREQ_START_SCAN: return sizeof(ScanRequest);
    case HOSTREQ_CAPTURE_SCENES: return sizeof(CaptureRequest);
    case HOSTREQ_PLAY_SPAN: return sizeof(SceneSpan);
    case HOSTREQ_SEEK_TIMECODE:
    case HOSTREQ_SEEK_POSITION: return sizeof(uint32_t);
    case HOSTREQ_CHOOSE_LIBRARY: return sizeof(LibraryRequest);
    case HOSTREQ_GET_DEVICE_STATUS: return sizeof(DeviceStatus);
    default: return 0;  // 2 carries a number; 5 and 9 carry nothing; 10's value is the host's to fill
    }
}

} // namespace

ScriptedHost& ScriptedHost::Instance()
{
    static ScriptedHost host;
    return host;
}

int32_t ScriptedHost::Proc(int32_t nRequest, intptr_t lParam)
{
    return Instance().Handle(nRequest, lParam);
}

void ScriptedHost::Reset()
{
    m_requests.clear();
    m_answers.clear();
    for (int32_t ok : {HOSTREQ_START_SCAN, HOSTREQ_CAPTURE_SCENES, HOSTREQ_SEEK_TIMECODE, HOSTREQ_DIALOG_CLOSED,
                       HOSTREQ_SEEK_POSITION})
        m_answers[ok] = [](intptr_t) { return 1; };
    m_answers[HOSTREQ_GET_DEVICE_STATUS] = [](intptr_t arg) {
        auto* status = reinterpret_cast<DeviceStatus*>(arg);
        for (auto& flag : status->adwCondition) flag = 1;
        return 1;
    };
}

int ScriptedHost::Count(int32_t code) const
{
    int n = 0;
    for (const auto& r : m_requests) n += r.code == code;
    return n;
}

const RecordedRequest* ScriptedHost::Last(int32_t code) const
{
    for (auto it = m_requests.rbegin(); it != m_requests.rend(); ++it)
        if (it->code == code) return &*it;
    return nullptr;
}

std::vector<int32_t> ScriptedHost::Codes() const
{
    std::vector<int32_t> codes;
    for (const auto& r : m_requests) codes.push_back(r.code);
    return codes;
}

int32_t ScriptedHost::Handle(int32_t code, intptr_t arg)
{
    RecordedRequest r;
    r.code = code;
    r.arg = arg;
    size_t size = RecordSize(code);
    if (size && arg) {
        const auto* p = reinterpret_cast<const uint8_t*>(arg);
        r.record.assign(p, p + size);
    }
    if (code == HOSTREQ_CAPTURE_SCENES && arg) {
        const auto* req = reinterpret_cast<const CaptureRequest*>(arg);
        for (const SceneSpan* s = req->pFirstSpan; s && r.spans.size() < 100000; s = s->pNext) r.spans.push_back(*s);
    }
    m_requests.push_back(std::move(r));
    auto it = m_answers.find(code);
    // The answer may run nested dialog work; copy it so a re-scripting inside
    // it cannot pull the function from under the call.
    if (it == m_answers.end()) return 0;
    Answer answer = it->second;
    return answer(arg);
}

PreScanInitInfo MakeInitInfo(const char* ext, int32_t tv, const char* helpFile)
{
    PreScanInitInfo info;
    std::memset(&info, 0, sizeof info);
    info.hHost = reinterpret_cast<void*>(0x1234);
    info.pfnHostRequest = &ScriptedHost::Proc;
    std::strncpy(info.szCaptureExt, ext, sizeof info.szCaptureExt - 1);
    info.nTvStandard = tv;
    info.pszHelpFile = helpFile;
    return info;
}

} // namespace qvtest
