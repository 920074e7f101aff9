/* capture_raw WIDTH HEIGHT VIDEO RECORD < FRAMES
 *
 * A capture from C. FRAMES are planar YUV 4:2:0, one after the other, as
 * `ffmpeg -i CLIP -f rawvideo -pix_fmt yuv420p -` writes them. VIDEO receives the MP4 and RECORD
 * the motion record. */

#define _POSIX_C_SOURCE 200809L

#include <pthread.h>
#include <stdlib.h>
#include <time.h>

#include "orbitwalk/orbitwalk.h"

typedef struct Progress {
    pthread_mutex_t lock;
    pthread_cond_t changed;
    int percent;
} Progress;

static void onProgress(void* user, int percent) {
    Progress* progress = user;
    pthread_mutex_lock(&progress->lock);
    progress->percent = percent;
    pthread_cond_signal(&progress->changed);
    pthread_mutex_unlock(&progress->lock);
}

/* A post-processing that fails stops reporting: each step gets a minute. */
static int waitForTheEnd(Progress* progress) {
    int status = 0;
    pthread_mutex_lock(&progress->lock);
    while (progress->percent != 100 && status == 0) {
        struct timespec end;
        clock_gettime(CLOCK_REALTIME, &end);
        end.tv_sec += 60;
        status = pthread_cond_timedwait(&progress->changed, &progress->lock, &end);
    }
    pthread_mutex_unlock(&progress->lock);
    return status;
}

static int fail(const char* what, const char* why) {
    fprintf(stderr, "capture_raw: %s: %s\n", what, why);
    return 1;
}

/* Gives the engine what the camera would. Returns the number of frames, or -1. */
static int sendFrames(size_t frameSize, OrbitwalkFrame* frames) {
    int count = 0;
    uint8_t* frame = malloc(frameSize);
    while (frame != NULL && count < OBW_MAX_FRAMES &&
           fread(frame, 1, frameSize, stdin) == frameSize) {
        OrbitwalkFrame* f = &frames[count++];
        f->isRendered = 1;
        if (orbitwalkGetTrajectory(frame, &f->x, &f->y, &f->angle) != 1 ||
            orbitwalkProvideFrame(frame, f->x, f->y, f->angle) != 1)
            count = -1;
        if (count < 0)
            break;
    }
    free(frame);
    return count;
}

static int capture(OrbitwalkParameters* parameters, Progress* progress) {
    static OrbitwalkFrame frames[OBW_MAX_FRAMES];
    OrbitwalkListener listener = {onProgress, NULL, progress};
    if (orbitwalkInit(&listener) != 1 || orbitwalkStart(parameters) != 1)
        return fail("start", orbitwalkLastError());
    const int count =
        sendFrames((size_t)parameters->width * (size_t)parameters->height * 3 / 2, frames);
    if (count < 0)
        return fail("frames", orbitwalkLastError());
    if (orbitwalkStop(0, count - 1, frames, count, ORBITWALK_LEFT_TO_RIGHT) != 1)
        return fail("stop", orbitwalkLastError());
    if (waitForTheEnd(progress) != 0)
        return fail("stop", "the sweep could not be finished");
    printf("%d frames, the last at %.2f %.2f pixels, %.5f radians\n", count,
           (double)frames[count - 1].x, (double)frames[count - 1].y,
           (double)frames[count - 1].angle);
    return 0;
}

int main(int argc, char** argv) {
    static OrbitwalkRecord record;
    static Progress progress = {PTHREAD_MUTEX_INITIALIZER, PTHREAD_COND_INITIALIZER, 0};
    char directory[] = "/tmp/capture_raw-XXXXXX", engineDirectory[64];
    if (argc != 5)
        return fail("usage", "capture_raw WIDTH HEIGHT VIDEO RECORD < FRAMES");
    OrbitwalkParameters parameters = {
        .width = atoi(argv[1]), .height = atoi(argv[2]), .record = &record};
    parameters.mp4 = fopen(argv[3], "wb");
    FILE* out = fopen(argv[4], "wb");
    if (parameters.mp4 == NULL || out == NULL || mkdtemp(directory) == NULL)
        return fail(argv[3], "cannot be written");
    snprintf(engineDirectory, sizeof engineDirectory, "%s/", directory);
    orbitwalkSetTemporaryDirectory(engineDirectory);

    int status = capture(&parameters, &progress);
    orbitwalkDeinit();
    if (fclose(parameters.mp4) != 0)
        status = fail(argv[3], "cannot be written");
    const size_t written = status == 0 ? fwrite(&record, sizeof record, 1, out) : 1;
    if (fclose(out) != 0 || written != 1)
        status = fail(argv[4], "cannot be written");
    return status;
}
