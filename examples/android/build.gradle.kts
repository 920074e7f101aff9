plugins {
    // 8.5.1 is the first that aligns libraries in an APK to pages of 16 KB.
    id("com.android.application") version "8.5.2" apply false
    id("org.jetbrains.kotlin.android") version "1.9.24" apply false
}
