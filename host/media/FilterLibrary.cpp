#include "media/FilterLibrary.h"

#include <dlfcn.h>

#include <string>

#include "media/MediaTypes.h"

extern "C" {
#include <libavfilter/version.h>
#include <libavutil/macros.h>
}

namespace orbitwalk::media {

namespace {

constexpr char kName[] = "libavfilter.so." AV_STRINGIFY(LIBAVFILTER_VERSION_MAJOR);

[[noreturn]] void fail() {
    const char* reason = dlerror();
    throw MediaError(
        std::string("its colours (HDR, BT.2020 or another matrix) need libavfilter: ") +
        (reason ? reason : kName));
}

template <typename Call>
void find(void* library, const char* name, Call& call) {
    call = reinterpret_cast<Call>(dlsym(library, name));
    if (!call)
        fail();
}

}  // namespace

FilterLibrary::FilterLibrary() {
    void* const library = dlopen(kName, RTLD_LAZY | RTLD_LOCAL);
    if (!library)
        fail();
    find(library, "avfilter_graph_alloc", graphAlloc);
    find(library, "avfilter_graph_free", graphFree);
    find(library, "avfilter_graph_create_filter", graphCreateFilter);
    find(library, "avfilter_graph_parse_ptr", graphParse);
    find(library, "avfilter_graph_config", graphConfig);
    find(library, "avfilter_get_by_name", getByName);
    find(library, "avfilter_inout_alloc", inoutAlloc);
    find(library, "avfilter_inout_free", inoutFree);
    find(library, "av_buffersrc_add_frame", addFrame);
    find(library, "av_buffersink_get_frame", getFrame);
}

const FilterLibrary& FilterLibrary::get() {
    static const FilterLibrary library;
    return library;
}

}  // namespace orbitwalk::media
