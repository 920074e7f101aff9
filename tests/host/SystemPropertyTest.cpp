#include <gtest/gtest.h>
#include <sys/system_properties.h>

#include <cstdlib>
#include <string>

namespace {

std::string property(const char* name) {
    char value[PROP_VALUE_MAX];
    const int length = __system_property_get(name, value);
    EXPECT_EQ(std::string(value).size(), std::size_t(length));
    return value;
}

TEST(SystemProperty, BuildTypeComesFromTheEnvironment) {
    unsetenv("ORBITWALK_BUILD_TYPE");
    EXPECT_EQ(property("ro.build.type"), "user");
    setenv("ORBITWALK_BUILD_TYPE", "eng", 1);
    EXPECT_EQ(property("ro.build.type"), "eng");
    setenv("ORBITWALK_BUILD_TYPE", std::string(500, 'x').c_str(), 1);
    EXPECT_EQ(property("ro.build.type"), std::string(PROP_VALUE_MAX - 1, 'x'));
    unsetenv("ORBITWALK_BUILD_TYPE");
}

TEST(SystemProperty, OthersAreEmptyAndNullsAreHarmless) {
    EXPECT_EQ(property("ro.product.model"), "");
    EXPECT_EQ(property(nullptr), "");
    EXPECT_EQ(__system_property_get("ro.build.type", nullptr), 0);
}

}  // namespace
