#!/usr/bin/env bash
# Compares the debug identity the library reads for a module file with what
# binutils reports for it. Runs on the build host; for a Windows build the
# printing program runs under the emulator.
#
#   check_debug_identity.sh pe  OBJDUMP PRINTER FILE EMULATOR
#   check_debug_identity.sh elf READELF PRINTER FILE
set -euo pipefail

kind=$1 tool=$2 printer=$3 file=$4 emulator=${5:-}

if [[ $kind == pe ]]; then
    windows_path="Z:${file//\//\\}"
    printed=$("$emulator" "$printer" "$windows_path" | tr -d '\r')
else
    printed=$("$printer" "$file")
fi

value() { sed -n "s/^$1=//p" <<<"$printed"; }
fail() {
    printf 'FAIL: %s\n--- printed:\n%s\n' "$*" "$printed" >&2
    exit 1
}
expect() {
    [[ "$2" == "$3" ]] || fail "$1: the library reads '$2', $(basename "$tool") reports '$3'"
    echo "ok   $1: $2"
}

[[ $(value read) == 1 ]] || fail "the file could not be read"

if [[ $kind == pe ]]; then
    dump=$(TZ=UTC "$tool" -p "$file")
    stamp=$(sed -n 's/^Time\/Date[[:space:]]*//p' <<<"$dump" | head -n 1)
    expect timestamp "$(TZ=UTC date -d "@$(value timestamp)" '+%a %b %e %H:%M:%S %Y')" "$stamp"
    expect size "$(printf '%08x' "$(value size)")" "$(sed -n 's/^SizeOfImage[[:space:]]*//p' <<<"$dump")"
    # "(format RSDS signature <32 hex> age <n> pdb <name or (none)>)"
    record=$(grep -m 1 -o 'format RSDS signature [0-9a-f]* age [0-9]* pdb .*)' <<<"$dump" || true)
    if [[ -z $record ]]; then
        echo "note: $(basename "$file") has no CodeView record"
        signature=00000000000000000000000000000000 age=0 pdb=""
    else
        read -r _ _ _ signature _ age _ pdb <<<"$record"
        pdb=${pdb%)}
        [[ $pdb == "(none)" ]] && pdb=""
    fi
    expect guid "$(value guid)" "$signature"
    expect age "$(value age)" "$age"
    expect debugfile "$(value debugfile)" "$pdb"
else
    id=$("$tool" -n "$file" | sed -n 's/^[[:space:]]*Build ID:[[:space:]]*//p' | head -n 1)
    [[ -n $id ]] || fail "$(basename "$file") has no build id"
    id=$(printf '%-32s' "$id" | tr ' ' 0 | cut -c 1-32)
    # The GUID's first three fields read the id's bytes as little-endian numbers.
    guid=${id:6:2}${id:4:2}${id:2:2}${id:0:2}${id:10:2}${id:8:2}${id:14:2}${id:12:2}${id:16:16}
    expect guid "$(value guid)" "$guid"
    expect age "$(value age)" 0
    if "$tool" -SW "$file" | grep -qE '\.symtab|\.debug_info'; then
        expect debugfile "$(value debugfile)" "$file"
    fi
fi
echo "debug identity of $(basename "$file") agrees"
