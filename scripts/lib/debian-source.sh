# shellcheck shell=bash
# Fetching and unpacking Debian's source packages, and running logged build
# steps, for the scripts that build third-party libraries from them
# (scripts/setup/build-mingw-deps.sh, scripts/setup/build-native-deps.sh).
# Source it after common.sh, with `downloads` and `logs` set to directories
# of the cache; it defines functions and a few variables only.

deb_src_file=/etc/apt/sources.list.d/norvane-deb-src.sources

# Runs a step with its output in a log file; on failure shows the tail so
# CI logs are useful without the cache directory.
# The arguments of a build script: --force (sets force=1) or --help (prints
# the script's opening comment, from `self`, and exits).
read_build_arguments() {
    local self="$1" arg
    shift
    force=0
    for arg in "$@"; do
        case "$arg" in
            --force) force=1 ;;
            -h | --help)
                sed -n '2,/^set -e/{/^set -e/d;s/^# \{0,1\}//;p}' "$self"
                exit 0
                ;;
            *) norvane_die "unknown argument '$arg' (try --help)" ;;
        esac
    done
}

step() {
    local name="$1"
    shift
    local log="$logs/$name.log" start
    start="$(norvane_now)"
    norvane_log "$name ..."
    if ! "$@" >"$log" 2>&1; then
        echo "----- last lines of $log -----" >&2
        tail -n 40 "$log" >&2
        echo "------------------------------" >&2
        norvane_die "step '$name' failed (full log: $log)"
    fi
    norvane_log "$name done ($(norvane_elapsed "$start"))"
}

# Points the deb-src entry at the same mirror as the configured bookworm
# binaries (falls back to the main archive), so it works wherever the
# binary packages could be installed.
write_deb_src_entry() {
    local uri="" signed_by=""
    local line
    line="$(awk '
        BEGIN { RS = ""; FS = "\n" }
        {
            types = suites = uris = signed = ""
            for (i = 1; i <= NF; i++) {
                if ($i ~ /^Types:/)     types  = " " substr($i, 7) " "
                if ($i ~ /^Suites:/)    suites = " " substr($i, 8) " "
                if ($i ~ /^URIs:/)      uris   = substr($i, 6)
                if ($i ~ /^Signed-By:/) signed = substr($i, 11)
            }
            if (types ~ /[ \t]deb[ \t]/ && suites ~ /[ \t]bookworm[ \t]/ && uris != "") {
                split(uris, u, " ")
                gsub(/^[ \t]+|[ \t]+$/, "", signed)
                print u[1] "\t" signed
                exit
            }
        }' /etc/apt/sources.list.d/*.sources 2>/dev/null || true)"
    if [[ -n "$line" ]]; then
        uri="${line%%$'\t'*}"
        signed_by="${line#*$'\t'}"
    fi
    uri="${uri:-http://deb.debian.org/debian}"
    signed_by="${signed_by:-/usr/share/keyrings/debian-archive-keyring.gpg}"
    norvane_log "adding $deb_src_file ($uri bookworm main)"
    printf 'Types: deb-src\nURIs: %s\nSuites: bookworm\nComponents: main\nSigned-By: %s\n' \
        "$uri" "$signed_by" | norvane_as_root tee "$deb_src_file" >/dev/null
}

apt_updated=0
apt_update() {
    step apt-update norvane_as_root env DEBIAN_FRONTEND=noninteractive apt-get -q update
    apt_updated=1
}

ensure_deb_src_entry() {
    if [[ ! -f "$deb_src_file" ]]; then
        write_deb_src_entry
        apt_update
    fi
}

# Prints the .dsc file name apt would fetch for a source package.
dsc_name() {
    apt-get -q --print-uris source "$1" 2>/dev/null |
        awk '$1 ~ /\.dsc.$/ { print $2; exit }'
}

# Sets fetched_dsc to the .dsc of the downloaded source package. Not run in
# a command substitution: apt_update must be able to record that it ran.
fetched_dsc=""
fetch_source() {
    local pkg="$1" dsc
    dsc="$(dsc_name "$pkg")"
    if [[ -z "$dsc" && $apt_updated -eq 0 ]]; then
        # The entry exists but this machine never fetched its index.
        apt_update
        dsc="$(dsc_name "$pkg")"
    fi
    [[ -n "$dsc" ]] || norvane_die "apt knows no source package '$pkg' (is $deb_src_file set up?)"
    # apt skips files that are already present with the right checksum.
    # Running as root, apt would drop to its sandbox user, which cannot
    # write into a directory under root's home; it only warns, but noisily.
    # shellcheck disable=SC2016  # expanded by the inner bash
    step "fetch-$pkg" bash -c 'cd "$1" && apt-get -q -o APT::Sandbox::User=root source --download-only "$2"' \
        _ "$downloads" "$pkg"
    [[ -f "$downloads/$dsc" ]] || norvane_die "apt-get source $pkg did not produce $dsc"
    fetched_dsc="$dsc"
}

# Debian version (e.g. 1.81.0-5+deb12u1) -> upstream (1.81.0).
upstream_of_dsc() {
    local v
    v="$(sed -n 's/^Version: //p' "$1" | head -n1)"
    v="${v#*:}"
    printf '%s\n' "${v%-*}"
}

# Fetches source package $1, checks that it is upstream version $2 and
# unpacks it into directory $3.
fetch_and_extract() {
    local pkg="$1" want="$2" into="$3" got
    fetch_source "$pkg"
    got="$(upstream_of_dsc "$downloads/$fetched_dsc")"
    [[ "$got" == "$want" ]] || norvane_die "$fetched_dsc is upstream $got, expected $want; update the build script deliberately"
    step "extract-$pkg" dpkg-source --no-copy -x "$downloads/$fetched_dsc" "$into"
}

# log4cplus 2.0.8 as the project builds it on both platforms; the callers
# add what differs (toolchain, character width, position-independent code).
# The thread pool is off: it serves only asynchronous appenders, which the
# project never uses, and it would start four threads in a static
# initialiser, that is, in every process the moment it loads the library.
# On Windows those threads are also joined by a static destructor at DLL
# unload, which never returns once process exit has taken them away. The
# plain library name (no S/U decoration) keeps the exported target
# log4cplus::log4cplus, the name Debian's own package exports. Explicit
# initialisation: nothing of log4cplus runs when the library is loaded; the
# loggers are made, and log4cplus initialised, at install.
log4cplus_cmake_args=(
    -DLOG4CPLUS_ENABLE_THREAD_POOL=OFF
    -DLOG4CPLUS_REQUIRE_EXPLICIT_INITIALIZATION=ON
    -DLOG4CPLUS_BUILD_TESTING=OFF
    -DLOG4CPLUS_BUILD_LOGGINGSERVER=OFF
    -DWITH_UNIT_TESTS=OFF
    -DLOG4CPLUS_ENABLE_DECORATED_LIBRARY_NAME=OFF
)
