#include "player/PlayerPage.h"

#include "files/OwnFiles.h"
#include "files/PageText.h"

namespace orbitwalk::tool {

std::string playerPage(std::string_view title, std::string_view video, std::string_view record) {
    return filledPage(assets::kPlayerPage, {{"mark", std::string(kMark)},
                                            {"title", escaped(title)},
                                            {"script", scriptText(assets::kPlayerScript)},
                                            {"video", base64(video)},
                                            {"record", base64(record)}});
}

}  // namespace orbitwalk::tool
