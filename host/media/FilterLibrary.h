#pragma once

#include <cstdint>  // First: libavutil refuses to be compiled without its constants.

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
}

namespace orbitwalk::media {

/// What is called of libavfilter. It is not linked but opened when a video needs it, which few do:
/// it and what it needs in turn are a third of the time that every start of the tool would take.
struct FilterLibrary {
    /// The library of the headers' version, opened by the first call and kept.
    /// @throws MediaError where there is none.
    static const FilterLibrary& get();

    decltype(&avfilter_graph_alloc) graphAlloc;
    decltype(&avfilter_graph_free) graphFree;
    decltype(&avfilter_graph_create_filter) graphCreateFilter;
    decltype(&avfilter_graph_parse_ptr) graphParse;
    decltype(&avfilter_graph_config) graphConfig;
    decltype(&avfilter_get_by_name) getByName;
    decltype(&avfilter_inout_alloc) inoutAlloc;
    decltype(&avfilter_inout_free) inoutFree;
    decltype(&av_buffersrc_add_frame) addFrame;
    decltype(&av_buffersink_get_frame) getFrame;

  private:
    FilterLibrary();
};

}  // namespace orbitwalk::media
