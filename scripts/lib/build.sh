# bash: sourced by the scripts that build. The working directory is the root of the project.

# Builds of different checkouts share what ccache has.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros

build_preset() {  # build_preset PRESET [-DOPTION=VALUE...] [TARGET...]: configures and builds
    local preset=$1 options=() targets=()
    shift
    while [[ ${1:-} == -D* ]]; do options+=("$1"); shift; done
    [ $# -eq 0 ] || targets=(--target "$@")
    mkdir -p build
    if ! cmake --preset "$preset" "${options[@]}" >"build/$preset-configure.log" 2>&1; then
        cat "build/$preset-configure.log" >&2
        return 1
    fi
    cmake --build --preset "$preset" --parallel "$(nproc)" "${targets[@]}"
}
