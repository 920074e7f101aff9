#pragma once

#include <tbb/info.h>
#include <tbb/parallel_pipeline.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <optional>
#include <type_traits>
#include <utility>

#include "sweep/ShotReader.h"

namespace orbitwalk::tool {

/// Works on several shots side by side and takes the results one at a time, in the order of the
/// shots. What the reader, work or take throws ends it and is passed on.
/// @param threads  at most so many are busy with it, and at most one a core; 0: one a core. The
/// shots in memory, two a thread and two, depend on them; the results do not.
/// @param work  makes a result of a ShotFrame; on several threads at a time.
/// @param take  is given each result; on any of the threads.
template <typename Work, typename Take>
void forEachShot(ShotReader& reader, int threads, const Work& work, const Take& take) {
    using Result = std::invoke_result_t<const Work&, const ShotFrame&>;
    using Mode = tbb::filter_mode;
    const auto read = [&](tbb::flow_control& control) {
        std::optional<ShotFrame> shown = reader.next();
        if (!shown)
            control.stop();
        return shown ? *std::move(shown) : ShotFrame{};
    };
    const int cores = tbb::info::default_concurrency();
    tbb::task_arena arena(threads > 0 ? std::min(threads, cores) : cores);
    const auto inMemory = static_cast<std::size_t>(2 * arena.max_concurrency() + 2);
    arena.execute([&] {
        tbb::parallel_pipeline(inMemory,
                               tbb::make_filter<void, ShotFrame>(Mode::serial_in_order, read),
                               tbb::make_filter<ShotFrame, Result>(Mode::parallel, work),
                               tbb::make_filter<Result, void>(Mode::serial_in_order, take));
    });
}

}  // namespace orbitwalk::tool
