#include "support/ScriptedHost.h"

#include <cstring>

namespace qvtest {
namespace {

// The size of the record each request points at.  2 carries a number, 5 and
// 9 carry nothing, and 10's value is the host's to fill.
const std::map<int32_t, size_t> kRecordSize = {
    {HOSTREQ_START_SCAN, sizeof(ScanRequest)},  {HOSTREQ_CAPTURE_SCENES, sizeof(CaptureRequest)},
    {HOSTREQ_PLAY_SPAN, sizeof(SceneSpan)},     {HOSTREQ_SEEK_TIMECODE, sizeof(uint32_t)},
    {HOSTREQ_SEEK_POSITION, sizeof(uint32_t)},  {HOSTREQ_CHOOSE_LIBRARY, sizeof(LibraryRequest)},
    {HOSTREQ_GET_DEVICE_STATUS, sizeof(DeviceStatus)}};

} // namespace

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

int32_t ScriptedHost::Handle(int32_t code, intptr_t arg)
{
    RecordedRequest r{code, arg, {}, {}};
    auto size = kRecordSize.find(code);
    if (size != kRecordSize.end() && arg)
        r.record.assign(reinterpret_cast<const uint8_t*>(arg), reinterpret_cast<const uint8_t*>(arg) + size->second);
    if (code == HOSTREQ_CAPTURE_SCENES && arg) {
        const auto* req = reinterpret_cast<const CaptureRequest*>(arg);
        for (const SceneSpan* s = req->pFirstSpan; s && r.spans.size() < 100000; s = s->pNext) r.spans.push_back(*s);
    }
    m_requests.push_back(std::move(r));
    // The answer may run nested dialog work; copy it so a re-scripting inside
    // it cannot pull the function from under the call.
    auto it = m_answers.find(code);
    Answer answer = it == m_answers.end() ? Answer([](intptr_t) { return 0; }) : it->second;
    return answer(arg);
}

PreScanInitInfo MakeInitInfo(const char* ext, int32_t tv, const char* helpFile)
{
    PreScanInitInfo info = {};
    info.hHost = reinterpret_cast<void*>(0x1234);
    info.pfnHostRequest = &ScriptedHost::Proc;
    std::strncpy(info.szCaptureExt, ext, sizeof info.szCaptureExt - 1);
    info.nTvStandard = tv;
    info.pszHelpFile = helpFile;
    return info;
}

} // namespace qvtest
