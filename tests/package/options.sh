#!/usr/bin/env bash
# The build by options: the engine without the packages of the rest; the tool from pages built before, without npm.
#   options.sh SOURCE PAGES
set -euo pipefail
source=$1 pages=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# configure NAME OPTION...: the log is said when the outcome is not the expected one.
configure() {
    cmake -S "$source" -B "$work/$1" -G Ninja "${@:2}" >"$work/$1.log" 2>&1
}
fail() {
    echo "$1"
    cat "$work"/*.log
    exit 1
}
without=()
for package in PkgConfig spdlog Eigen3 CLI11 nlohmann_json TBB GTest benchmark; do
    without+=(-DCMAKE_DISABLE_FIND_PACKAGE_$package=ON)
done

configure engine -DORBITWALK_BUILD_{HOST,REFINE,WEB,TOOL}=OFF "${without[@]}" || fail "The engine alone wants more than OpenCV."
targets=$(ninja -C "$work/engine" -t targets all)
grep -q '^libOrbitwalkEngine.so' <<<"$targets" || fail "The engine alone is not built."
grep -qE '^(orbitwalk:|lib(OrbitwalkPlatform|OrbitwalkMP4Writer|OrbitwalkRefine).so)' <<<"$targets" && fail "More than the engine is built."

configure tool -DORBITWALK_WEB_DIST="$pages" || fail "Given pages are not taken."
grep -qE 'npm (ci|run)' "$work/tool/build.ninja" && fail "The tool wants npm beside given pages."
cmake --build "$work/tool" --target orbitwalk_page_assets >"$work/assets.log" || fail "Given pages are not built in."

# In the same tree, where compilers and libraries are known already.
configure tool -DORBITWALK_BUILD_REFINE=OFF || fail "Without refine nothing is built."
grep -q "The tool is not built: it needs ORBITWALK_BUILD_REFINE" "$work/tool.log" || fail "Why the tool is off is not said."
IFS=: read -ra path <<<"$PATH"
configure tool -DORBITWALK_BUILD_REFINE=ON -DORBITWALK_WEB_DIST= -DORBITWALK_BUILD_WEB=ON -DCMAKE_IGNORE_PATH="$(printf '%s;' "${path[@]}")" &&
    fail "Without npm and pages the tool is built of nothing."
grep -q "npm was not found" "$work/tool.log" || fail "What is missing without npm is not said."
