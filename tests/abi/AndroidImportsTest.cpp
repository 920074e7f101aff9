#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>

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

TEST(AndroidImports, AreInItsCLibraryAtTheLowestLevelThatIsPromised) {
    const AndroidLibc android;
    std::istringstream libraries(LIBRARIES);
    for (std::string library; std::getline(libraries, library, ':');) {
        const std::set<std::string> imports = importsOfC(library);
        EXPECT_GT(imports.size(), 10U) << library;
        for (const std::string& name : imports) {
            if (android.notThere.contains(name))
                continue;
            const auto renamed = android.namesThere.find(name);
            const auto level =
                android.levels.find(renamed == android.namesThere.end() ? name : renamed->second);
            if (level == android.levels.end())
                ADD_FAILURE() << library << " imports " << name << ", which is not in "
                              << ANDROID_LIBC;
            else
                EXPECT_LE(level->second, kLowestApi) << library << " imports " << name;
        }
    }
}

}  // namespace
