#include <gtest/gtest.h>

#include <cctype>
#include <fstream>
#include <sstream>
#include <string>

#include "orbitwalk/RecordReader.h"

namespace orbitwalk {
namespace {

bool isHexByte(const std::string& word) {
    return word.size() == 2 && std::isxdigit(word[0]) && std::isxdigit(word[1]);
}

/// The record that docs/record.md writes down byte by byte: lines "offset  hex bytes  words".
std::vector<std::byte> documentedRecord() {
    std::vector<std::byte> bytes(OBW_METADATA_SIZE);
    std::ifstream page(ORBITWALK_DOCS "/record.md");
    for (std::string line; std::getline(page, line);) {
        std::istringstream words(line);
        std::size_t offset = 0;
        if (!(words >> offset))
            continue;
        for (std::string word; words >> word && isHexByte(word); ++offset)
            bytes.at(offset) = static_cast<std::byte>(std::stoi(word, nullptr, 16));
    }
    return bytes;
}

// The expected values are those that the page derives by hand.
TEST(WorkedExample, ReadsAsThePageSays) {
    const auto reader = std::get<RecordReader>(RecordReader::open(documentedRecord()));
    EXPECT_EQ(reader.width(), 1280);
    EXPECT_EQ(reader.height(), 720);
    ASSERT_EQ(reader.frameCount(), 2);
    EXPECT_TRUE(reader.isRendered(0));
    EXPECT_TRUE(reader.isRendered(1));
    EXPECT_EQ(reader.crop().x, 100);
    EXPECT_EQ(reader.crop().y, 56);
    EXPECT_EQ(reader.crop().width, 1080);
    EXPECT_EQ(reader.crop().height, 607);

    const auto matrix = reader.renderMatrix(0);
    EXPECT_EQ(matrix.elements(), (std::array<double, 9>{0.8, -0.6, 0, 0.6, 0.8, 0, -5.6, 9.2, 1}));
    EXPECT_NEAR(matrix.frameFromOutput({100, 50}).x, 104.4, 1e-9);
    EXPECT_NEAR(matrix.frameFromOutput({100, 50}).y, -10.8, 1e-9);
    EXPECT_NEAR(matrix.outputFromFrame({104.4, -10.8}).x, 100, 1e-9);
    EXPECT_NEAR(matrix.outputFromFrame({104.4, -10.8}).y, 50, 1e-9);
    EXPECT_NEAR(matrix.angle(), 0.6435011, 1e-7);

    ASSERT_EQ(reader.leftBorderCount(), 1);
    EXPECT_EQ(reader.rightBorderCount(), 0);
    EXPECT_EQ(reader.leftBorder(0).frameFromOutput({0, 0}).x, -10);
    EXPECT_EQ(reader.leftBorder(0).frameFromOutput({0, 0}).y, 4);
}

}  // namespace
}  // namespace orbitwalk
