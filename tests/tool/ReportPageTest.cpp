#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "report/ReportPage.h"

namespace orbitwalk::tool {
namespace {

using testing::HasSubstr;

ReportData smallData(const std::string& video) {
    ReportData data;
    data.summary.video = video;
    data.motion = Track(2);
    data.motion.x[1] = 2.00049;
    data.motion.angle[1] = -0.123456789;
    return data;
}

TEST(ReportJson, RoundsValuesAndLeavesMissingOnesOut) {
    const auto json =
        nlohmann::json::parse(reportJson(smallData("a.mp4"), {{{4, "\xff\xfe", "foob"}}, "foo"}));
    EXPECT_EQ(json.at("motion").at("x"), nlohmann::json({nullptr, 2.0}));
    EXPECT_EQ(json.at("motion").at("angle"), nlohmann::json({nullptr, -0.12346}));
    EXPECT_EQ(json.at("feedbackStep"), nullptr);
    EXPECT_EQ(json.at("pictures").at("crop"), "data:image/jpeg;base64,Zm9v");
    EXPECT_EQ(json.at("pictures").at("strip").at(0).at("recorded"), "data:image/jpeg;base64,//4=");
    EXPECT_EQ(json.at("pictures").at("strip").at(0).at("steady"),
              "data:image/jpeg;base64,Zm9vYg==");
}

TEST(ReportJson, MayStandInsideAScriptElement) {
    const std::string hostile = "</script><!--<script> \" \\ ]]> & \xc3\xa9";
    ReportData data = smallData("a.mp4");
    data.direction = hostile;
    const std::string text = reportJson(data, {});
    EXPECT_EQ(text.find('<'), std::string::npos);
    EXPECT_EQ(nlohmann::json::parse(text).at("direction"), hostile);
    EXPECT_TRUE(nlohmann::json::accept(reportJson(smallData("no UTF-8: \xff"), {})));
}

TEST(ReportPage, IsWhole) {
    const std::string page = reportPage({R"({"here": "the data"})", "video", "record"});
    EXPECT_THAT(
        page,
        HasSubstr(R"(<script type="application/json" id="data">{"here": "the data"}</script>)"));
    EXPECT_THAT(page, HasSubstr(R"(id="video">dmlkZW8=</script>)"));
    EXPECT_THAT(page, HasSubstr(R"(id="record">cmVjb3Jk</script>)"));
    EXPECT_THAT(page, HasSubstr("Copyright (c) 2022 Leon Sorokin"));
    EXPECT_THAT(
        page, HasSubstr("The above copyright notice and this permission notice shall be included"));
    EXPECT_EQ(page.find("{{"), std::string::npos);
    EXPECT_TRUE(page.ends_with("</html>\n"));
}

}  // namespace
}  // namespace orbitwalk::tool
