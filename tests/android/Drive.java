import java.io.File;
import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.TimeUnit;

import org.orbitwalk.sample.SweepCapture;

/** A capture through the sample's native half: a pattern that moves by four pixels a frame. Argument: a directory. */
public class Drive {
    static final int WIDTH = 640, HEIGHT = 480, FRAMES = 12, STEP = 4;

    static void require(boolean condition, String what) {
        if (!condition)
            throw new AssertionError(what);
    }

    static void requireRefusal(Runnable call, String part) {
        try {
            call.run();
        } catch (IllegalStateException e) {
            require(e.getMessage().contains(part), "refused with: " + e.getMessage());
            return;
        }
        throw new AssertionError("not refused: " + part);
    }

    /** Blocks of 32 pixels, each of a brightness of its own, in rows with padding. */
    static ByteBuffer luma(int shift) {
        ByteBuffer plane = ByteBuffer.allocateDirect((WIDTH + 32) * HEIGHT);
        for (int y = 0; y < HEIGHT; ++y)
            for (int x = 0; x < WIDTH; ++x) {
                int block = (x + 1000 - shift) / 32 * 7919 + y / 32 * 104729;
                block = (block ^ block >> 7) * 0x9E3779B1;
                plane.put(y * (WIDTH + 32) + x, (byte) (block >>> 24));
            }
        return plane;
    }

    public static void main(String[] arguments) throws Exception {
        System.load(new File(arguments[0], "libsweepcapture.so").getPath());
        File work = new File(arguments[1]), video = new File(work, "sweep.mp4");
        List<Integer> progress = new ArrayList<>();
        CountDownLatch complete = new CountDownLatch(1);
        SweepCapture capture = new SweepCapture() {
            @Override
            protected void onProgress(int percent) {
                progress.add(percent);
                if (percent == 100)
                    complete.countDown();
                throw new RuntimeException("a listener's fault stays with it");
            }
        };
        capture.nativeInit(work + "/engine/");
        requireRefusal(() -> capture.nativeStop(1), "no frame was given");
        requireRefusal(() -> capture.nativeStart(work + "/none/sweep.mp4", WIDTH, HEIGHT, 0, false), "cannot be written");
        requireRefusal(() -> capture.nativeStart(video.getPath(), 2, 2, 0, false), "");

        capture.nativeStart(video.getPath(), WIDTH, HEIGHT, 0, false);
        ByteBuffer chroma = ByteBuffer.allocateDirect(WIDTH * HEIGHT / 2);
        float[] moved = new float[3];
        for (int i = 0; i < FRAMES; ++i)
            capture.nativeFrame(luma(i * STEP), WIDTH + 32, chroma, chroma, WIDTH, 2, moved);
        float expected = (FRAMES - 1) * STEP;
        require(Math.abs(moved[0] - expected) < 1.5 && Math.abs(moved[1]) < 0.5, "moved by " + moved[0] + " " + moved[1]);
        requireRefusal(() -> capture.nativeFrame(ByteBuffer.allocate(8), 8, chroma, chroma, WIDTH, 2, moved), "size");
        capture.nativeStop(1);
        require(complete.await(60, TimeUnit.SECONDS), "no end of " + progress);
        require(progress.equals(List.of(15, 30, 45, 60, 75, 90, 100)), "progress " + progress);
        ByteBuffer record = ByteBuffer.wrap(capture.nativeFinish()).order(ByteOrder.LITTLE_ENDIAN);
        require(record.capacity() == 52808 && record.getInt(0) == WIDTH && record.getInt(8) == FRAMES, "record");
        require(video.length() > 1000, "video of " + video.length() + " bytes");
        requireRefusal(capture::nativeFinish, "no sweep");
        capture.nativeCancel();
        capture.nativeDeinit();
        require(!new File(work, "engine").exists(), "the engine's directory is left");
    }
}
