#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace test_support {

struct BrowserRun {
    std::string dom;  ///< The page as HTML after its scripts have run.
    /// What the page asked the network for, refused or not; the browser's own errands are left out.
    std::vector<std::string> requests;
};

/// Opens a page in a browser without a window, whose profile lives no longer than the call. No name
/// resolves in it.
BrowserRun openInBrowser(const std::filesystem::path& page);

}  // namespace test_support
