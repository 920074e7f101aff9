#include "batch/Manifest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "terminal/ToolError.h"

namespace {

using namespace orbitwalk::tool;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(Manifest, IsTheSameAsCsvAndAsJsonLines) {
    const auto csv = parseManifest("m.csv",
                                   "video,id,refine,evaluate,capture\r\n"
                                   "a b.mp4,one,,yes,\"--skip \"\"3,4\"\" --first 1\"\r\n"
                                   "\r\n"
                                   "\"c,d.mp4\",two.2,--keep 0.9,,\r\n");
    const auto json =
        parseManifest("m.jsonl", R"({"id": "one", "video": "a b.mp4", "evaluate": true, )"
                                 R"("capture": ["--skip", "3,4", "--first", "1"]})"
                                 "\n\n"
                                 R"({"id": "two.2", "video": "c,d.mp4", )"
                                 R"("refine": ["--keep", "0.9"], "render": false})"
                                 "\n");
    for (const auto& clips : {csv, json}) {
        ASSERT_EQ(clips.size(), 2u);
        EXPECT_EQ(clips[0].id, "one");
        EXPECT_EQ(clips[0].video, "a b.mp4");
        EXPECT_THAT(clips[0].capture, ElementsAre("--skip", "3,4", "--first", "1"));
        EXPECT_EQ(clips[0].evaluate, Arguments{});
        EXPECT_EQ(clips[0].refine, std::nullopt);
        EXPECT_EQ(clips[1].video, "c,d.mp4");
        EXPECT_THAT(*clips[1].refine, ElementsAre("--keep", "0.9"));
        EXPECT_EQ(clips[1].evaluate, std::nullopt);
    }
}

TEST(Manifest, IsRefusedWithTheLineThatCannotBeTaken) {
    const std::pair<const char*, const char*> refusals[] = {
        {"\n \n", "names no clips"},
        {"id,video\na,\xff.mp4\n", "no text in UTF-8"},
        {"id,film\na,b\n", "film"},
        {"id,capture\na,b\n", "no columns id and video"},
        {"id,video\na,b\na,c\n", "line 3: the id \"a\" stands twice"},
        {"id,video\n../a,b\n", "line 2: the id"},
        {"id,video\n.work,b\n", "line 2: the id"},
        {"id,video\nindex.html,b\n", "line 2: the id"},
        {"id,video\na.error.txt,b\n", "line 2: the id"},
        {"id,video\na,\n", "a has no video"},
        {"id,video\na\n", "line 2"},
        {"id,video\na,\"b\n", "line 2"},
        {"id,video,render\na,b,--output=/x.mp4\n", "--output=/x.mp4 is the batch's own"},
        {"{\"id\": \"a\", \"video\": \"b\", \"film\": 1}", "line 1: there is no key \"film\""},
        {"{\"id\": \"a\", \"video\": 7}", "line 1: no JSON object"},
        {"{\"id\": \"a\", \"video\": \"b\"}\n{", "line 2: no JSON object"},
    };
    for (const auto& [text, complaint] : refusals) {
        SCOPED_TRACE(text);
        try {
            parseManifest("m", text);
            ADD_FAILURE() << "taken";
        } catch (const UsageError& error) {
            EXPECT_THAT(error.what(), HasSubstr(complaint));
        }
    }
}

}  // namespace
