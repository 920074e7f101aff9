#pragma once

/* System properties as the engine reads them. On a phone the platform's own header of this name is
 * used. */

#define PROP_VALUE_MAX 92

#ifdef __cplusplus
extern "C" {
#endif

/* Copies the value of a property, at most PROP_VALUE_MAX bytes with its NUL; an unknown property
 * gives the empty string. Any thread. Returns the length. */
__attribute__((visibility("default"))) int __system_property_get(const char* name, char* value);

#ifdef __cplusplus
}
#endif
