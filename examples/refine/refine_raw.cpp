// refine_raw WIDTH HEIGHT KEEP RECORD < FRAMES
//
// Steadies a sweep by the library alone. FRAMES are luma planes, one after the other, as
// `ffmpeg -i VIDEO -f rawvideo -pix_fmt gray -` writes them; RECORD is the motion record that a
// player takes beside the video.

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <variant>
#include <vector>

#include "orbitwalk/refine/MotionEstimator.h"
#include "orbitwalk/refine/PathPlanner.h"
#include "orbitwalk/refine/RecordWriter.h"

using namespace orbitwalk;
using namespace orbitwalk::refine;

namespace {

/// While a capture runs: one frame at a time, none is kept.
std::vector<FrameMotion> measure(std::istream& frames, FrameSize size) {
    MotionEstimator estimator(size);
    std::vector<char> luma(std::size_t(size.width) * size.height);
    std::vector<FrameMotion> motions;
    while (frames.read(luma.data(), std::ssize(luma)))
        motions.push_back(
            estimator.next({reinterpret_cast<const std::uint8_t*>(luma.data()), size.width, size}));
    return motions;
}

int fail(const std::string& text) {
    std::cerr << "refine_raw: " << text << '\n';
    return 1;
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 5)
        return fail("WIDTH HEIGHT KEEP RECORD < FRAMES");
    const FrameSize size{std::atoi(argv[1]), std::atoi(argv[2])};
    const std::vector<FrameMotion> motions = measure(std::cin, size);

    // After it: any number of plans from the same motions.
    const auto planned = planPath(motions, size, std::atof(argv[3]));
    if (const auto* refusal = std::get_if<PlanRefusal>(&planned))
        return fail(refusal->text);
    const auto& plan = std::get<PathPlan>(planned);
    std::cout << motions.size() << " frames, " << plan.bridged.size() << " not measured; residual "
              << plan.before.shift() << " -> " << plan.after.shift() << " pixels, view kept "
              << plan.viewKept << '\n';

    RecordFacts facts;  // every frame is shown
    facts.size = size;
    facts.endIndex = static_cast<int>(motions.size());
    facts.renderFlags.assign(motions.size(), 1);
    const auto written = writeRecord(facts, plan);
    if (const auto* refusal = std::get_if<WriteRefusal>(&written))
        return fail(refusal->text);
    const auto& bytes = std::get<std::vector<std::byte>>(written);
    std::ofstream record(argv[4], std::ios::binary);
    record.write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
    return record.flush() ? 0 : fail(std::string(argv[4]) + ": cannot be written");
} catch (const std::exception& error) {
    return fail(error.what());
}
