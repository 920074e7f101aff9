#include "report/ReportPage.h"

#include <map>

#include "files/OwnFiles.h"
#include "files/PageText.h"
#include "player/PlayerAssets.h"
#include "report/ReportAssets.h"

namespace orbitwalk::tool {

std::string reportPage(const ReportContent& content) {
    const std::map<std::string_view, std::string> values{
        {"mark", std::string(kMark)},
        {"licence", std::string(assets::kPlotLicence)},
        {"style", std::string(assets::kStyle)},
        {"data", std::string(content.json)},
        {"video", base64(content.video)},
        {"record", base64(content.record)},
        {"player-script", scriptText(assets::kPlayerScript)},
        {"script", scriptText(assets::kScript)},
    };
    return filledPage(assets::kPage,
                      [&](std::string_view name) -> std::string_view { return values.at(name); });
}

}  // namespace orbitwalk::tool
