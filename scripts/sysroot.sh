# Debian packages of another machine in a folder, sourced by the scripts beside it: nothing of the running system is
# touched, neither its list of architectures nor its packages.

# make_sysroot ARCHITECTURE TRIPLET DIRECTORY PACKAGE...: the packages with all that they depend on, unpacked.
make_sysroot() {
    local architecture=$1 triplet=$2 root
    root=$(realpath -m "$3")
    shift 3
    local wanted="$architecture $*"
    [ "$(cat "$root/.packages" 2>/dev/null)" = "$wanted" ] && return
    local state=$root.apt
    # What lies in the archives is unpacked: packages of an earlier wish, or versions that have gone, must not.
    rm -rf "$state/archives"
    mkdir -p "$state/lists/partial" "$state/archives/partial"
    : >"$state/status"
    # The lists of packages are this machine's, so that a mirror is asked that it reaches.
    local apt=(apt-get -qq -o "Dir::State=$state" -o "Dir::State::Lists=$state/lists" -o "Dir::State::status=$state/status"
        -o "Dir::Cache=$state" -o "Dir::Cache::Archives=$state/archives" -o "APT::Architecture=$architecture"
        -o "APT::Architectures::=$architecture" -o APT::Get::List-Cleanup=false -o "APT::Sandbox::User=$(id -un)"
        -o DPkg::Post-Invoke= -o APT::Update::Post-Invoke=)
    "${apt[@]}" update || echo "Not every list of packages can be had: going on with the others."
    "${apt[@]}" install --download-only --yes --no-install-recommends "$@"
    rm -rf "$root"
    mkdir -p "$root"
    local package
    for package in "$state"/archives/*.deb; do
        dpkg -x "$package" "$root"
    done
    make_links_relative "$root"
    link_alternatives "$root/usr/lib/$triplet"
    echo "$wanted" >"$root/.packages"
}

# An absolute link would lead out of the folder.
make_links_relative() {
    local root=$1 link target
    while IFS= read -r link; do
        target=$(readlink "$link")
        ln -sfn "$(realpath -ms --relative-to="$(dirname "$link")" "$root$target")" "$link"
    done < <(find "$root" -type l -lname '/*')
}

# What the packages' own scripts would choose.
link_alternatives() {
    local library
    for library in blas lapack; do
        [ ! -e "$1/$library/lib$library.so.3" ] || ln -sf "$library/lib$library.so.3" "$1/lib$library.so.3"
    done
}
