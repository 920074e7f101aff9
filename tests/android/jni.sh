#!/usr/bin/env bash
# A capture through the sample's native half in a Java machine. Its Java half is made of the native functions that the
# sample's Kotlin class declares, so that names and types are those that Kotlin would call.
#   jni.sh SOURCE LIBRARIES
set -euo pipefail
source=$1 libraries=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
python3 - "$source/examples/android/app/src/main/kotlin/org/orbitwalk/sample/SweepCapture.kt" >"$work/SweepCapture.java" <<'P'
import re, sys

java = {"Int": "int", "Boolean": "boolean", "String": "String", "FloatArray": "float[]", "ByteArray": "byte[]",
        "ByteBuffer": "java.nio.ByteBuffer", "Unit": "void"}
kotlin = open(sys.argv[1]).read()
assert "private fun onProgress(percent: Int)" in kotlin
print("package org.orbitwalk.sample;\npublic class SweepCapture {\n    protected void onProgress(int percent) {}")
functions = re.findall(r"external fun (\w+)\((.*?)\)(?:: (\w+))?\n", kotlin, re.S)
assert len(functions) == kotlin.count("external fun")
for name, parameters, result in functions:
    arguments = (parameter.split(":") for parameter in parameters.split(",") if parameter)
    print(f"    public native {java[result or 'Unit']} {name}(" +
          ", ".join(f"{java[kind.strip()]} {argument.strip()}" for argument, kind in arguments) + ");")
print("}")
P
javac -d "$work" "$work/SweepCapture.java" "$source/tests/android/Drive.java"
java -Xcheck:jni -XX:TieredStopAtLevel=1 -cp "$work" Drive "$libraries" "$work" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
if grep -E '^(WARNING|FATAL)' "$work/log"; then
    echo "The Java machine found fault with the native half."
    exit 1
fi
