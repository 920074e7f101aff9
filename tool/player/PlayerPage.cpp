#include "player/PlayerPage.h"

#include <map>

#include "files/OwnFiles.h"
#include "files/PageAssets.h"
#include "files/PageText.h"

namespace orbitwalk::tool {

std::string playerPage(std::string_view title, std::string_view video, std::string_view record) {
    const std::map<std::string_view, std::string> values{
        {"mark", std::string(kMark)},
        {"title", escaped(title)},
        {"script", scriptText(assets::kPlayerScript)},
        {"video", base64(video)},
        {"record", base64(record)},
    };
    return filledPage(assets::kPlayerPage,
                      [&](std::string_view name) -> std::string_view { return values.at(name); });
}

}  // namespace orbitwalk::tool
