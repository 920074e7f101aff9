#include <sys/system_properties.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

/// The value of a property; empty for those that a host does not have.
const char* valueOf(const char* name) {
    if (!name || std::strcmp(name, "ro.build.type") != 0)
        return "";
    const char* buildType = std::getenv("ORBITWALK_BUILD_TYPE");
    return buildType ? buildType : "user";
}

}  // namespace

int __system_property_get(const char* name, char* value) {
    if (!value)
        return 0;
    std::snprintf(value, PROP_VALUE_MAX, "%s", valueOf(name));
    return static_cast<int>(std::strlen(value));
}
