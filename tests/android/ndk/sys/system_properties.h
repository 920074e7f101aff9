#pragma once

// The one declaration of an NDK's header that the engine uses.
#ifdef __cplusplus
extern "C"
#endif
    int
    __system_property_get(const char* name, char* value);
#define PROP_VALUE_MAX 92
