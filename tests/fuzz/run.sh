#!/usr/bin/env bash
# Builds the fuzz targets with clang and runs one after the other.
#
#   tests/fuzz/run.sh [SECONDS_EACH] [TARGET...]
#
# Corpora grow under build-fuzz/corpus/, beginning with the regression inputs. What breaks a target is left under
# build-fuzz/crashes/TARGET/: mend it, then keep the input in tests/fuzz/regressions/TARGET/.
set -euo pipefail
cd "$(dirname "$0")/../.."
seconds="${1:-600}"
shift || true
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(authoring picture assembly archive binary engine preset metadata dds imagefile)

cmake -S . -B build-fuzz -G Ninja -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g -Wno-unknown-warning-option" -DBUILD_TESTING=OFF -DVELLOR_FUZZ=ON > /dev/null
cmake --build build-fuzz --target "${targets[@]/#/fuzz_}"

failed=0
for target in "${targets[@]}"; do
    mkdir -p "build-fuzz/corpus/$target" "build-fuzz/crashes/$target"
    options=(-max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -max_len=65536 -print_final_stats=1
             -artifact_prefix="build-fuzz/crashes/$target/")
    [ ! -f "tests/fuzz/$target.dict" ] || options+=(-dict="tests/fuzz/$target.dict")
    echo "== $target for $seconds s"
    "build-fuzz/fuzz/fuzz_$target" "${options[@]}" "build-fuzz/corpus/$target" "tests/fuzz/regressions/$target" \
        > "build-fuzz/$target.log" 2>&1 || failed=1
    grep -E "^stat::|ERROR|SUMMARY|broken promise" "build-fuzz/$target.log" || true
done
exit $failed
