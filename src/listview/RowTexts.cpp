#include "listview/RowTexts.h"

#include "platform/BoundedCopy.h"
#include "session/NameRules.h"

namespace qv {
namespace {

std::string TimeCodeText(uint32_t t, int tv)
{
    char text[TIME_TEXT_SIZE];
    FormatTimeCode(t, tv, true, text, sizeof text);
    return text;
}

bool HasExtension(char* field)
{
    return ClassifyFileName(field) == FILE_NAME_HAS_EXTENSION;
}

} // namespace

std::string MakeOutText(const SceneRecord& scene, bool bOpenEnded, const RowTextSources& src)
{
    std::string in = TimeCodeText(scene.dwTimeCodeIn, src.nTvStandard);
    std::string out = bOpenEnded ? kNoTimeText : TimeCodeText(scene.dwTimeCodeOut, src.nTvStandard);
    if (!src.bThumbnailView) return out;
    std::string duration = kNoTimeText;
    if (!bOpenEnded) {
        char text[TIME_TEXT_SIZE];
        FormatDuration(scene.dwTimeCodeIn, scene.dwTimeCodeOut, src.nTvStandard, text, sizeof text);
        duration = text;
    }
    return "In: " + in + "\nOut: " + out + "\n(" + duration + ")";
}

RowTexts MakeRowTexts(SceneRecord& scene, bool bOpenEnded, const RowTextSources& src)
{
    RowTexts t;
    t.in = TimeCodeText(scene.dwTimeCodeIn, src.nTvStandard);
    t.out = bOpenEnded ? kNoTimeText : TimeCodeText(scene.dwTimeCodeOut, src.nTvStandard);
    if (src.bThumbnailView) {
        t.times = MakeOutText(scene, bOpenEnded, src);
        size_t open = t.times.rfind('(');
        t.duration = t.times.substr(open + 1, t.times.size() - open - 2);
    }
    char date[DATE_TEXT_SIZE];
    FormatRecordedDate(scene.stRecorded, src.bThumbnailView, src.pszUnknownDate, date, sizeof date);
    t.date = date;

    char comment[QV_COMMENT_SIZE];
    CopyField(comment, scene.szComment);
    t.comment = comment;
    t.files = MakeFilesText(scene, src);
    return t;
}

std::string MakeFilesText(SceneRecord& scene, const RowTextSources& src)
{
    scene.szCaptureFile[sizeof scene.szCaptureFile - 1] = 0;
    scene.szSceneFile[sizeof scene.szSceneFile - 1] = 0;
    bool captured = HasExtension(scene.szCaptureFile);
    bool scanned = HasExtension(scene.szSceneFile);
    std::string files;
    if (captured) files = std::string(src.pszCapturedPrefix) + scene.szCaptureFile;
    if (captured && scanned) files += "\r\n";
    if (scanned) files += std::string(src.pszScenePrefix) + scene.szSceneFile;
    return files;
}

} // namespace qv
