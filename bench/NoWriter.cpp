#include <MP4Writer.h>

int InitMP4Engine(const char*, const char*, int, int, int, int, int, int, int, int, FILE*) {
    return 1;
}

int EncodeFrame(const unsigned char*) {
    return 1;
}

int DeInitMP4Engine(void) {
    return 1;
}
