#include "common/BuildType.h"

#include <sys/system_properties.h>

#include <cstring>

namespace orbitwalk {

BuildType::BuildType() {
    __system_property_get("ro.build.type", mValue.data());
    mValue.back() = '\0';
}

bool BuildType::isEngineering() const {
    return std::strncmp(mValue.data(), "eng", 256) == 0;
}

}  // namespace orbitwalk
