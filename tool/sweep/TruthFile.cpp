#include "sweep/TruthFile.h"

#include <array>
#include <charconv>
#include <string>

namespace orbitwalk::tool {

void writeTruth(std::span<const TrueMotion> truth, std::FILE* stream) {
    std::fputs("frame,dx,dy,da,x,y,a\n", stream);
    for (std::size_t k = 0; k < truth.size(); ++k) {
        const auto& [step, sum] = truth[k];
        std::string row = std::to_string(k);
        for (const double value : {step.x, step.y, step.a, sum.x, sum.y, sum.a}) {
            std::array<char, 32> digits;
            const auto end = std::to_chars(digits.begin(), digits.end(), value).ptr;
            row.append(1, ',').append(digits.begin(), end);
        }
        std::fprintf(stream, "%s\n", row.c_str());
    }
}

}  // namespace orbitwalk::tool
