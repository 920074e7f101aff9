/// @file
/// The native half of SweepCapture.kt. The engine is one a process, and so is this state; Kotlin's
/// half lets one thread in at a time. Progress comes on the engine's own thread.

#include <jni.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

#include "CameraImage.h"
#include "orbitwalk/orbitwalk.h"

namespace {

JavaVM* javaVm = nullptr;

struct Sweep {
    std::FILE* video = nullptr;
    std::size_t width = 0, height = 0;
    std::vector<std::uint8_t> frame;
    std::vector<OrbitwalkFrame> frames;
    OrbitwalkRecord record{};

    ~Sweep() {
        if (video != nullptr)
            std::fclose(video);
    }
};
std::unique_ptr<Sweep> sweep;

/// A JDK's jni.h and an NDK's differ in the type of the first argument.
template <typename Environment>
bool attach(jint (JavaVM::*call)(Environment**, void*), JNIEnv** env) {
    return (javaVm->*call)(reinterpret_cast<Environment**>(env), nullptr) == JNI_OK;
}

/// The calling thread's environment; a thread that Java does not know is attached while this lives.
class ThreadEnvironment {
  public:
    ThreadEnvironment() {
        if (javaVm->GetEnv(reinterpret_cast<void**>(&mEnv), JNI_VERSION_1_6) != JNI_OK)
            mIsAttached = attach(&JavaVM::AttachCurrentThread, &mEnv);
    }
    ~ThreadEnvironment() {
        if (mIsAttached)
            javaVm->DetachCurrentThread();
    }
    ThreadEnvironment(const ThreadEnvironment&) = delete;
    ThreadEnvironment& operator=(const ThreadEnvironment&) = delete;
    JNIEnv* get() const { return mEnv; }

  private:
    JNIEnv* mEnv = nullptr;
    bool mIsAttached = false;
};

void onProgress(void* user, int percent) {
    const ThreadEnvironment thread;
    JNIEnv* env = thread.get();
    if (env == nullptr)
        return;
    const auto listener = static_cast<jobject>(user);
    const jmethodID method = env->GetMethodID(env->GetObjectClass(listener), "onProgress", "(I)V");
    if (method != nullptr)
        env->CallVoidMethod(listener, method, static_cast<jint>(percent));
    // The engine's thread has no Java frame that could catch it.
    if (env->ExceptionCheck()) {
        env->ExceptionDescribe();
        env->ExceptionClear();
    }
}

void release(void* user) {
    const ThreadEnvironment thread;
    if (thread.get() != nullptr)
        thread.get()->DeleteGlobalRef(static_cast<jobject>(user));
}

void throwState(JNIEnv* env, const char* why) {
    env->ThrowNew(env->FindClass("java/lang/IllegalStateException"), why);
}

/// A result of the engine, 1 or -1; a failure is thrown in Java with the engine's own reason.
bool check(JNIEnv* env, int result) {
    if (result != 1)
        throwState(env, orbitwalkLastError());
    return result == 1;
}

class Utf8 {
  public:
    Utf8(JNIEnv* env, jstring text)
        : mEnv(env), mText(text), mChars(env->GetStringUTFChars(text, nullptr)) {}
    ~Utf8() {
        if (mChars != nullptr)
            mEnv->ReleaseStringUTFChars(mText, mChars);
    }
    Utf8(const Utf8&) = delete;
    Utf8& operator=(const Utf8&) = delete;
    const char* get() const { return mChars != nullptr ? mChars : ""; }

  private:
    JNIEnv* mEnv;
    jstring mText;
    const char* mChars;
};

ImagePlane planeOf(JNIEnv* env, jobject buffer, jint rowStride, jint pixelStride) {
    const jlong capacity = env->GetDirectBufferCapacity(buffer);
    return {static_cast<const std::uint8_t*>(env->GetDirectBufferAddress(buffer)),
            capacity > 0 ? static_cast<std::size_t>(capacity) : 0,
            static_cast<std::size_t>(std::max(rowStride, 0)),
            static_cast<std::size_t>(std::max(pixelStride, 0))};
}

}  // namespace

extern "C" {

JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM* vm, void*) {
    javaVm = vm;
    return JNI_VERSION_1_6;
}

JNIEXPORT void JNICALL Java_org_orbitwalk_sample_SweepCapture_nativeInit(JNIEnv* env, jobject self,
                                                                         jstring directory) {
    if (!check(env, orbitwalkSetTemporaryDirectory(Utf8(env, directory).get())))
        return;
    const OrbitwalkListener listener = {onProgress, release, env->NewGlobalRef(self)};
    if (!check(env, orbitwalkInit(&listener)))
        release(listener.user);
}

JNIEXPORT void JNICALL Java_org_orbitwalk_sample_SweepCapture_nativeStart(JNIEnv* env, jobject,
                                                                          jstring video, jint width,
                                                                          jint height,
                                                                          jint orientation,
                                                                          jboolean mirrored) {
    auto starting = std::make_unique<Sweep>();
    // To be read, too: a muxer goes back to what it has written.
    starting->video = std::fopen(Utf8(env, video).get(), "w+b");
    if (starting->video == nullptr)
        return throwState(env, "the video's file cannot be written");
    OrbitwalkParameters parameters{};
    parameters.width = width;
    parameters.height = height;
    parameters.mp4 = starting->video;
    parameters.record = &starting->record;
    parameters.mirrored = mirrored == JNI_TRUE;
    parameters.orientation = orientation;
    if (!check(env, orbitwalkStart(&parameters)))
        return;
    // The engine has taken the sizes, so that they are positive and their product is small.
    starting->width = static_cast<std::size_t>(width);
    starting->height = static_cast<std::size_t>(height);
    starting->frame.resize(starting->width * starting->height * 3 / 2);
    sweep = std::move(starting);
}

JNIEXPORT void JNICALL Java_org_orbitwalk_sample_SweepCapture_nativeFrame(
    JNIEnv* env, jobject, jobject y, jint yRowStride, jobject u, jobject v, jint uvRowStride,
    jint uvPixelStride, jfloatArray trajectory) {
    if (sweep == nullptr || sweep->frames.size() == OBW_MAX_FRAMES)
        return throwState(env, "no sweep, or a full one");
    if (!packI420(planeOf(env, y, yRowStride, 1), planeOf(env, u, uvRowStride, uvPixelStride),
                  planeOf(env, v, uvRowStride, uvPixelStride), sweep->width, sweep->height,
                  sweep->frame.data()))
        return throwState(env, "the image has not the sweep's size");
    OrbitwalkFrame frame{};
    frame.isRendered = 1;
    if (!check(env,
               orbitwalkGetTrajectory(sweep->frame.data(), &frame.x, &frame.y, &frame.angle)) ||
        !check(env, orbitwalkProvideFrame(sweep->frame.data(), frame.x, frame.y, frame.angle)))
        return;
    sweep->frames.push_back(frame);
    const jfloat values[] = {frame.x, frame.y, frame.angle};
    env->SetFloatArrayRegion(trajectory, 0, 3, values);
}

JNIEXPORT void JNICALL Java_org_orbitwalk_sample_SweepCapture_nativeStop(JNIEnv* env, jobject,
                                                                         jint direction) {
    if (sweep == nullptr || sweep->frames.empty())
        return throwState(env, "no frame was given");
    const int count = static_cast<int>(sweep->frames.size());
    check(env, orbitwalkStop(0, count - 1, sweep->frames.data(), count, direction));
}

JNIEXPORT jbyteArray JNICALL Java_org_orbitwalk_sample_SweepCapture_nativeFinish(JNIEnv* env,
                                                                                 jobject) {
    if (sweep == nullptr) {
        throwState(env, "no sweep");
        return nullptr;
    }
    const std::unique_ptr<Sweep> finished = std::move(sweep);
    const bool complete = std::ferror(finished->video) == 0;
    if (std::fclose(std::exchange(finished->video, nullptr)) != 0 || !complete) {
        throwState(env, "the video could not be written");
        return nullptr;
    }
    const jbyteArray record = env->NewByteArray(OBW_METADATA_SIZE);
    if (record != nullptr)
        env->SetByteArrayRegion(record, 0, OBW_METADATA_SIZE,
                                reinterpret_cast<const jbyte*>(&finished->record));
    return record;
}

JNIEXPORT void JNICALL Java_org_orbitwalk_sample_SweepCapture_nativeCancel(JNIEnv*, jobject) {
    orbitwalkCancel();
    sweep.reset();
}

JNIEXPORT void JNICALL Java_org_orbitwalk_sample_SweepCapture_nativeDeinit(JNIEnv*, jobject) {
    orbitwalkDeinit();
    sweep.reset();
}

}  // extern "C"
