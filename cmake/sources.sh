# For scripts that build libraries from Debian's source packages: they set `work` (a folder of their own) and `prefix`.

# fetch PACKAGE ...: unpacks the original sources below $work/sources.
# Debian's own entries among the machine's package sources are asked for sources instead of packages. The machine's apt
# is left as it is: lists and cache are in the work folder.
fetch() {
    mkdir -p "$work"/{sources.list.d,lists/partial,cache/archives/partial,sources}
    local entries entry archive
    entries=$(apt-get indextargets --format '$(ORIGIN) $(SOURCESENTRY)' | sed -n 's/^Debian \(.*\):[0-9]*$/\1/p' | sort -u)
    if [ -z "$entries" ]; then
        entries=$(ls /etc/apt/sources.list /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources 2>/dev/null || true)
    fi
    for entry in $entries; do
        sed -E 's/^Types:.*/Types: deb-src/; s/^[[:space:]]*deb[[:space:]]/deb-src /' "$entry" \
            >"$work/sources.list.d/$(basename "$entry")"
    done
    sources_apt update || true # of several, one may be out of reach; what is missing shows below
    cd "$work/sources"
    sources_apt source --download-only "$@"
    for archive in *.orig.tar.*; do tar xf "$archive"; done
}

sources_apt() {
    apt-get -q -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts="$work/sources.list.d" \
        -o Dir::State::lists="$work/lists" -o Dir::Cache="$work/cache" -o APT::Sandbox::User="$(id -un)" "$@"
}

# make SOURCES [OPTION ...]: builds and installs into $prefix.
made=0
make() {
    local name=build-$((++made)) sources=$1
    shift
    cmake -G Ninja -S "$sources" -B "$work/$name" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" "$@"
    cmake --build "$work/$name" -j "${ZO_JOBS:-$(nproc)}"
    cmake --install "$work/$name"
}

# A private heap: its names stay inside the library, and the process's malloc stays the system's.
mimalloc=(-DMI_OVERRIDE=OFF -DMI_BUILD_SHARED=OFF -DMI_BUILD_OBJECT=OFF -DMI_BUILD_TESTS=OFF
    -DCMAKE_POSITION_INDEPENDENT_CODE=ON)
