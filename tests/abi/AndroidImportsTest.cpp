#include <gmock/gmock.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/CommandOutput.h"

namespace {

constexpr int kLowestApi = 26;

/// android-libc.txt, which says what its lines mean.
struct AndroidLibc {
    std::map<std::string, int> levels;
    std::map<std::string, std::string> namesThere;
    std::set<std::string> notThere;

    AndroidLibc() {
        std::ifstream file(ANDROID_LIBC);
        for (std::string line; std::getline(file, line);) {
            std::istringstream words(line.substr(0, line.find('#')));
            std::string name, second, third;
            if (!(words >> name))
                continue;
            words >> second >> third;
            if (second == "=")
                namesThere[name] = third;
            else if (second == "toolchain")
                notThere.insert(name);
            else
                levels[name] = std::stoi(second);
        }
    }
};

/// What a library wants of this machine's C library; the names of others have other versions.
std::set<std::string> importsOfC(const std::string& library) {
    std::set<std::string> names;
    for (const std::string& name : test_support::linesOf("nm -D -j --undefined-only " + library))
        if (name.find("@GLIBC_") != std::string::npos)
            names.insert(name.substr(0, name.find('@')));
    return names;
}

/// Of these names those that an app for the lowest level cannot be loaded with, each with why.
std::vector<std::string> lackingAtTheLowestLevel(const std::set<std::string>& imports) {
    static const AndroidLibc android;
    std::vector<std::string> lacking;
    for (const std::string& name : imports) {
        if (android.notThere.contains(name))
            continue;
        const auto renamed = android.namesThere.find(name);
        const auto level =
            android.levels.find(renamed == android.namesThere.end() ? name : renamed->second);
        if (level == android.levels.end())
            lacking.push_back(name + " is not listed");
        else if (level->second > kLowestApi)
            lacking.push_back(name + " is there from " + std::to_string(level->second));
    }
    return lacking;
}

TEST(AndroidImports, AreInItsCLibraryAtTheLowestLevelThatIsPromised) {
    std::istringstream libraries(LIBRARIES);
    for (std::string library; std::getline(libraries, library, ':');) {
        const std::set<std::string> imports = importsOfC(library);
        EXPECT_GT(imports.size(), 10U) << library;
        EXPECT_THAT(lackingAtTheLowestLevel(imports), testing::IsEmpty()) << library;
    }
    // What could come in unnoticed, on this machine.
    EXPECT_THAT(lackingAtTheLowestLevel({"__errno_location", "getrandom", "memfrob"}),
                testing::ElementsAre("getrandom is there from 28", "memfrob is not listed"));
}

}  // namespace
