package org.orbitwalk.sample

import android.Manifest
import android.content.pm.PackageManager
import android.os.Bundle
import android.util.Size
import android.widget.Button
import android.widget.LinearLayout
import androidx.activity.ComponentActivity
import androidx.activity.result.contract.ActivityResultContracts
import androidx.camera.core.CameraSelector
import androidx.camera.core.ImageAnalysis
import androidx.camera.core.ImageProxy
import androidx.camera.core.Preview
import androidx.camera.core.resolutionselector.ResolutionSelector
import androidx.camera.core.resolutionselector.ResolutionStrategy
import androidx.camera.lifecycle.ProcessCameraProvider
import androidx.camera.view.PreviewView
import androidx.core.content.ContextCompat
import java.io.File
import java.util.concurrent.Executors

/** A preview and a button: the first press begins a sweep, the second ends it, one before 100 % gives it up. Both files go to the app's folder. */
class MainActivity : ComponentActivity() {
    /** All calls of the engine but finish and close come from here. */
    private val camera = Executors.newSingleThreadExecutor()
    private val files by lazy { getExternalFilesDir(null) ?: filesDir }
    private lateinit var capture: SweepCapture
    private lateinit var preview: PreviewView
    private lateinit var button: Button

    /** Of the camera's thread. */
    private var wanted = false
    private var frames = 0

    override fun onCreate(savedInstanceState: Bundle?) {
        super.onCreate(savedInstanceState)
        preview = PreviewView(this)
        button = Button(this).apply {
            text = "Start"
            setOnClickListener { camera.execute(::press) }
        }
        setContentView(LinearLayout(this).apply {
            addView(preview, LinearLayout.LayoutParams(0, -1, 1f))
            addView(button)
        })
        capture = SweepCapture(File(cacheDir, "orbitwalk")) { percent ->
            say("$percent %")
            if (percent == 100 && !camera.isShutdown) camera.execute(::save)
        }
        val ask = registerForActivityResult(ActivityResultContracts.RequestPermission()) { if (it) bind() }
        if (ContextCompat.checkSelfPermission(this, Manifest.permission.CAMERA) == PackageManager.PERMISSION_GRANTED) bind()
        else ask.launch(Manifest.permission.CAMERA)
    }

    override fun onDestroy() {
        super.onDestroy()
        camera.execute(capture::close)
        camera.shutdown()
    }

    private fun bind() {
        val provider = ProcessCameraProvider.getInstance(this)
        provider.addListener({
            val size = ResolutionStrategy(Size(1920, 1080), ResolutionStrategy.FALLBACK_RULE_CLOSEST_LOWER_THEN_HIGHER)
            val analysis = ImageAnalysis.Builder()
                .setResolutionSelector(ResolutionSelector.Builder().setResolutionStrategy(size).build())
                .build()
            analysis.setAnalyzer(camera) { image -> image.use(::take) }
            val view = Preview.Builder().build().also { it.setSurfaceProvider(preview.surfaceProvider) }
            provider.get().bindToLifecycle(this, CameraSelector.DEFAULT_FRONT_CAMERA, view, analysis)
        }, ContextCompat.getMainExecutor(this))
    }

    private fun press() = when {
        wanted -> stop()
        frames == 0 -> wanted = true
        else -> giveUp("Start")
    }

    private fun take(image: ImageProxy) = attempt {
        if (!wanted) return@attempt
        if (frames == 0) capture.start(File(files, "sweep.mp4"), image.width, image.height)
        val (y, u, v) = image.planes.map { SweepCapture.Plane(it.buffer, it.rowStride, it.pixelStride) }
        val moved = capture.frame(y, u, v)
        say("${++frames}: ${moved.x.toInt()} pixels")
        if (frames == MOST_FRAMES) stop()
    }

    private fun stop() = attempt {
        wanted = false
        if (frames > 0) capture.stop(SweepCapture.Direction.LEFT_TO_RIGHT)
    }

    private fun save() = attempt {
        File(files, "sweep.obw").writeBytes(capture.finish())
        frames = 0
        say("Start")
    }

    /** A sweep that fails is given up; the next press begins another. */
    private fun attempt(step: () -> Unit) = try {
        step()
    } catch (e: IllegalStateException) {
        giveUp(e.message ?: "failed")
    }

    private fun giveUp(why: String) {
        capture.cancel()
        wanted = false
        frames = 0
        say(why)
    }

    private fun say(text: String) = runOnUiThread { button.text = text }

    private companion object {
        const val MOST_FRAMES = 1000
    }
}
