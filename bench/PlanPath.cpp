// plan_path WIDTH HEIGHT KEEP < MOTIONS.csv
// Plans the path of motions as `frame,dx,dy,da,ds,measured` has them. Prints the crop's width and
// height, then x, y and angle of each frame's crop placement. For bench/plan_check.

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "orbitwalk/refine/PathPlanner.h"

using namespace orbitwalk;
using namespace orbitwalk::refine;

int main(int argc, char** argv) {
    if (argc != 4)
        return 2;
    const FrameSize size{std::atoi(argv[1]), std::atoi(argv[2])};
    std::vector<FrameMotion> motions;
    std::string line;
    std::getline(std::cin, line);
    while (std::getline(std::cin, line)) {
        std::ranges::replace(line, ',', ' ');
        std::istringstream fields(line);
        int frame = 0;
        FrameMotion motion{
            .motion = {.about = frameCentre(size)}, .quality = {}, .measured = false};
        auto& [x, y, angle, logScale, about] = motion.motion;
        fields >> frame >> x >> y >> angle >> logScale >> motion.measured;
        motions.push_back(motion);
    }
    const auto planned = planPath(motions, size, std::atof(argv[3]));
    if (const auto* refusal = std::get_if<PlanRefusal>(&planned)) {
        std::cerr << refusal->text << '\n';
        return 1;
    }
    const auto& plan = std::get<PathPlan>(planned);
    std::cout.precision(12);
    std::cout << plan.crop.width << ' ' << plan.crop.height << '\n';
    for (const SimilarityTransform& correction : plan.corrections) {
        const SimilarityTransform placement = correction.inverse();
        std::cout << placement.x << ' ' << placement.y << ' ' << placement.angle << '\n';
    }
}
