// Whatever path the caller of stop hands over, a player must be able to open the engine's record.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "orbitwalk/RecordReader.h"
#include "stabilization/iVideoStabilization.h"
#include "support/SampleRecord.h"

namespace orbitwalk {
namespace {

using Generator = std::minstd_rand;

double between(Generator& random, double least, double most) {
    return std::uniform_real_distribution(least, most)(random);
}

int oneOf(Generator& random, std::initializer_list<int> values) {
    return values.begin()[random() % values.size()];
}

/// The fields that the engine fills before the stabiliser writes its own.
__kelOBWKDXMetaData headerOf(Generator& random) {
    __kelOBWKDXMetaData record{};
    record.width = oneOf(random, {4, 5, 64, 640, 1920, 10000, 26000});
    record.height = oneOf(random, {4, 7, 360, 1080, 27000});
    record.numFrames = oneOf(random, {1, 2, 3, 11, 40});
    record.startIndex = oneOf(random, {0, 0, 0, 1, 50});
    record.endIndex = record.startIndex == 1 ? 1 : record.numFrames;
    record.orientation = oneOf(random, {0, 90, 180, 270, 360});
    record.captureDirection = oneOf(random, {1, 2});
    record.cameraType = 1;
    record.frontCameraFlipped = oneOf(random, {0, 1});
    record.maxFrames = OBW_MAX_FRAMES;
    record.viewAngleMaxFrames = OBW_MAX_BORDER_FRAMES;
    for (int i = 0; i < record.numFrames; ++i)
        record.renderFlag[i] = oneOf(random, {1, 1, 1, 0});
    return record;
}

/// A sweep at a constant speed with shake; the scale goes from still over a pan to nonsense, and
/// some have positions that are no usable numbers.
void sendPath(Generator& random, iVideoStabilization& stabilizer, int positions) {
    const double scale =
        std::pow(10, oneOf(random, {0, 0, 0, 1}) ? between(random, 3, 12) : between(random, -3, 3));
    const double speed = between(random, -1, 1) * scale;
    const double shake = scale * oneOf(random, {0, 1, 10}) / 10;
    const double roll = oneOf(random, {0, 0, 1, 1000}) * 0.002;
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double hostile[] = {std::nan(""), infinity, -infinity, 1e9, -1e30, 1e308};
    for (int i = 1; i <= positions; ++i) {
        const double odd = random() % 50 == 0 ? hostile[random() % std::size(hostile)] : 0;
        stabilizer.sendTransformationMatrix(speed * i + between(random, -1, 1) * shake + odd,
                                            between(random, -1, 1) * shake - odd,
                                            between(random, -1, 1) * roll + odd);
    }
}

TEST(EngineRecord, OpensWhateverThePathWas) {
    Generator random(1);
    int corrected = 0;
    for (int round = 0; round < 500; ++round) {
        auto record = headerOf(random);
        iVideoStabilization* stabilizer = iVideoStabilization::Create();
        stabilizer->Initialize(record.width, record.height);
        sendPath(random, *stabilizer, std::max(1, record.numFrames - 1));
        stabilizer->doStabilization(0, record.captureDirection, 0, 0, 0, 0, true);
        stabilizer->getStabilizationInfo(&record, true);
        iVideoStabilization::Destroy(stabilizer);
        const auto opened = RecordReader::open(recordBytes(record));
        if (const auto* refusal = std::get_if<RecordRefusal>(&opened))
            ADD_FAILURE() << "round " << round << ": " << refusal->text;
        corrected += std::ranges::any_of(record.renderMat,
                                         [](const auto& matrix) { return matrix[6] != 0; });
    }

    EXPECT_GT(corrected, 25) << "hardly a path was corrected";
}

}  // namespace
}  // namespace orbitwalk
