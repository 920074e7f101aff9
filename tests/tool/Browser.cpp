#include "tool/Browser.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "support/TestDirectory.h"
#include "tool/RunTool.h"

namespace test_support {
namespace {

/// The browser's network log names the origin of a request by a hash of a name; this one is
/// blink_resource_loader, a page.
constexpr int kAskedByPage = 101845102;

std::vector<std::string> pageRequests(const std::string& networkLog) {
    const auto log = nlohmann::json::parse(networkLog);
    std::vector<std::string> requests;
    for (const auto& event : log.at("events")) {
        const auto params = event.value("params", nlohmann::json::object());
        if (params.value("traffic_annotation", 0) == kAskedByPage)
            requests.push_back(params.value("url", "no URL"));
    }
    return requests;
}

}  // namespace

BrowserRun openInBrowser(const std::filesystem::path& page) {
    const TestDirectory scratch;
    const std::string log = scratch / "net.json";
    std::vector<std::string> arguments{
        "-u",  "ASAN_OPTIONS",    "-u", "UBSAN_OPTIONS", "-u", "TSAN_OPTIONS", "timeout", "-k", "5",
        "120", ORBITWALK_CHROMIUM};
    for (const char* option :
         {"--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
          "--disable-background-networking", "--disable-component-update", "--disable-sync",
          "--host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE 127.0.0.1", "--virtual-time-budget=5000",
          "--dump-dom"})
        arguments.push_back(option);
    arguments.push_back("--user-data-dir=" + (scratch / "profile").string());
    arguments.push_back("--log-net-log=" + log);
    arguments.push_back("file://" + page.string());
    const ToolRun run = runProgram("/usr/bin/env", arguments);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return {run.out, pageRequests(contentOf(log))};
}

}  // namespace test_support
