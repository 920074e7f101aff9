#pragma once

#include <tbb/info.h>
#include <tbb/parallel_pipeline.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "render/StepOrder.h"
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
    struct Slot {
        ShotFrame shown;
        std::optional<std::invoke_result_t<const Work&, const ShotFrame&>> result;
    };
    const int cores = tbb::info::default_concurrency();
    const int most = threads > 0 ? std::min(threads, cores) : cores;
    // The shots pass in order and no more than so many are on their way: a slot is free again.
    std::vector<Slot> slots(static_cast<std::size_t>(2 * most + 2));
    StepOrder order;
    const auto read = [&](tbb::flow_control& control) -> Slot* {
        const StepOrder::Step step(order);
        std::optional<ShotFrame> shown = reader.next();
        if (!shown) {
            control.stop();
            return nullptr;
        }
        Slot& slot = slots[shown->number % slots.size()];
        slot.shown = *std::move(shown);
        return &slot;
    };
    const auto workOn = [&](Slot* slot) {
        const StepOrder::Step step(order);
        slot->result.emplace(work(slot->shown));
        slot->shown.frame.reset();
        return slot;
    };
    const auto takeFrom = [&](Slot* slot) {
        const StepOrder::Step step(order);
        take(*std::move(slot->result));
        slot->result.reset();
    };
    using Mode = tbb::filter_mode;
    tbb::task_arena(most).execute([&] {
        tbb::parallel_pipeline(slots.size(),
                               tbb::make_filter<void, Slot*>(Mode::serial_in_order, read),
                               tbb::make_filter<Slot*, Slot*>(Mode::parallel, workOn),
                               tbb::make_filter<Slot*, void>(Mode::serial_in_order, takeFrom));
    });
}

}  // namespace orbitwalk::tool
