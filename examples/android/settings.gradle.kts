pluginManagement {
    repositories {
        google()
        mavenCentral()
        gradlePluginPortal()
    }
}
dependencyResolutionManagement {
    repositories {
        google()
        mavenCentral()
        // orbitwalk.aar, as docs/android.md makes it.
        flatDir { dirs("app/libs") }
    }
}
rootProject.name = "orbitwalk-sample"
include(":app")
