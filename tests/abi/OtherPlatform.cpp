#include <android/log.h>
#include <sys/system_properties.h>

#include <cstdio>
#include <cstring>

/// A platform library of another host: it prints the tags of the lines and calls every build an
/// engineering build.
int __android_log_print(int, const char* tag, const char*, ...) {
    return std::printf("other platform: %s\n", tag);
}

int __system_property_get(const char*, char* value) {
    std::strcpy(value, "eng");
    return 3;
}
