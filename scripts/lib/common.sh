# SPDX-FileCopyrightText: The parkomat-plugin authors
# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# What the scripts have in common. To be sourced; the caller has set -euo pipefail.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
me=$0
jobs=$(nproc)

# The same messages, sorting and encoding everywhere; a minimal system has this locale too.
export LC_ALL=C.UTF-8
# ccache must not make paths relative, whatever its own settings say: the file names in log lines are cut out of whole ones.
export CCACHE_BASEDIR=

die()
{
    echo "$me: $*" >&2
    exit 2
}

section()
{
    echo
    echo "== $*"
}

# git, also where the tree belongs to somebody else, as in a container.
tree_git()
{
    git -c safe.directory="$root" -C "$root" "$@"
}

# tracked PATTERN...: the tracked files of these patterns that are there, one a line, relative to the root.
tracked()
{
    local file
    while IFS= read -r file; do
        if [[ -e $root/$file ]]; then
            echo "$file"
        fi
    done < <(tree_git ls-files -- "$@")
}

is_installed()
{
    [[ $(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

# missing_packages GROUP...: those that dpkg does not know as installed.
missing_packages()
{
    local group package
    while read -r group package _; do
        if [[ " $* " == *" $group "* ]] && ! is_installed "$package"; then
            echo "$package"
        fi
    done < <(sed 's/#.*//' "$root/scripts/lib/packages")
}

# need_packages GROUP...: installs what is missing; apt-get runs only if something is.
need_packages()
{
    local missing as_root=()
    command -v dpkg-query >/dev/null ||
        die "this system has no dpkg; the packages of scripts/lib/packages can only be installed on Debian"
    mapfile -t missing < <(missing_packages "$@")
    if ((${#missing[@]} == 0)); then
        return
    fi
    if ((EUID != 0)); then
        command -v sudo >/dev/null ||
            die "missing packages: ${missing[*]}." \
                "Installing them needs root or sudo, and there is neither; as root: apt-get install ${missing[*]}"
        as_root=(sudo)
    fi
    section "Installing ${missing[*]}"
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -o Dpkg::Use-Pty=0 install -y -qq \
        --no-install-recommends "${missing[@]}"
}

# configure_preset PRESET: the same configuration, whichever script comes first. Benchmarks are built by who runs them.
# CMake's options in PARKOMAT_CMAKE_OPTIONS, separated by blanks, win.
configure_preset()
{
    local options
    read -ra options <<<"-DBUILD_TESTING=ON -DPARKOMAT_BENCHMARKS=OFF ${PARKOMAT_CMAKE_OPTIONS:-}"
    section "Configuring ($1)"
    (cd "$root" && cmake --preset "$1" "${options[@]}")
}

# build_preset PRESET [TARGET...]
build_preset()
{
    local preset=$1
    shift
    section "Building ($preset)"
    (cd "$root" && cmake --build --preset "$preset" -j "$jobs" ${1:+--target "$@"})
}
