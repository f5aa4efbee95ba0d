// The texts of one scene row, as the scene list shows them.  Portable.
#pragma once

#include "scenes/SceneRecord.h"
#include "scenes/TimeCode.h"

#include <string>

namespace qv {

struct RowTextSources {
    int nTvStandard = 0;
    bool bThumbnailView = true;
    const char* pszUnknownDate = "";     // shown for a scene without a date
    const char* pszCapturedPrefix = "";  // before the captured file
    const char* pszScenePrefix = "";     // before the file written while scanning
};

struct RowTexts {
    std::string in, out, duration;
    std::string times;    // thumbnail view: "In: ...\nOut: ...\n(duration)"
    std::string date, comment, files;
};

// Builds every text of a scene's row.  An open-ended scene (its end has not
// arrived) shows "--:--:--:--" as out time and duration.  The file names
// count only when they have an extension; testing them trims their blanks
// in the record itself.
RowTexts MakeRowTexts(SceneRecord& scene, bool bOpenEnded, const RowTextSources& src);

// Column 2's text alone: the out time (compact view) or the times block.
std::string MakeOutText(const SceneRecord& scene, bool bOpenEnded, const RowTextSources& src);

// Column 5's text alone: the captured file and the file written while
// scanning, each when it has an extension (trimmed in the record).
std::string MakeFilesText(SceneRecord& scene, const RowTextSources& src);

} // namespace qv
