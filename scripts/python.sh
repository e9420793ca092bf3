#!/usr/bin/env bash
# Builds and installs the Python package as a user would, in a folder of its own.
#
#   scripts/python.sh install FOLDER   source package and wheel in FOLDER/dist, from a copy of the sources;
#                                      the wheel looked through, and installed in a fresh environment
#   scripts/python.sh asan FOLDER      installed from the sources, with the address sanitizer
#   scripts/python.sh cmake FOLDER     built by CMake against the shared library, and installed below FOLDER/prefix
#   scripts/python.sh arm64 FOLDER     a wheel for arm64, cross-compiled, tested under an emulator by Debian's Python
#   scripts/python.sh bench FOLDER     measures loading the sample, and writes the tables of docs/performance.md
#   scripts/python.sh run FOLDER CMD.. runs a command with that environment's Python first in the path
#
# Without Debian's build tools for Python (nothing is fetched) it ends with 77: skipped.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

python=${KALVISTA_PYTHON:-/usr/bin/python3}
action=${1:?what to do: install, asan, cmake, arm64, bench or run} folder=$(realpath -m "${2:?a folder}")
shift 2

require_modules() {
  "$python" -c "import $1" 2>/dev/null || {
    echo "skipped: $python lacks one of these modules: $1; have ${python_packages[*]} installed"
    exit 77
  }
}

# What a fresh clone has of it, so that nothing is built among the sources.
copy_sources() {
  rm -rf "$folder"/{tree,env,dist,wheel}
  mkdir -p "$folder/tree"
  tar -C "$root" --exclude='build' --exclude='*.egg-info' --exclude=__pycache__ -c \
    python include src cmake LICENSE | tar -C "$folder/tree" -x
  "$python" -m venv --system-site-packages "$folder/env"
}

pip_install() {
  "$folder/env/bin/python" -m pip install -q --no-build-isolation --no-deps "$1"
}

# The wheel holds licence, stubs and the mark of typed packages, and needs the C++ run-time only.
look_through_wheel() {
  local part
  unzip -qo "$folder"/dist/*.whl -d "$folder/wheel"
  for part in kalvista/_kalvista.pyi kalvista/py.typed 'kalvista-*.dist-info/LICENSE'; do
    compgen -G "$folder/wheel/$part" >/dev/null || die "the wheel has no $part"
  done
  local module=("$folder"/wheel/kalvista/_kalvista*.so) others
  others=$(objdump -p "${module[0]}" | awk '/NEEDED/ { print $2 }' |
    grep -vE '^(libstdc\+\+|libgcc_s|libm|libc|ld-linux.*)\.so' || true)
  [[ -z $others ]] || die "the module needs $others"
  echo "newest symbol: $(objdump -T "${module[0]}" | grep -o 'GLIBC_[0-9.]*' | sort -uV | tail -1)"
}

# This machine's setuptools, told by the other Python's own description how that one builds. Only what
# needs no second process of the package, and no library of that processor, is tested.
arm64_wheel() {
  local sysroot=$folder/sysroot triplet=aarch64-linux-gnu headers
  headers=$(compgen -G "$sysroot/usr/include/python3.*")
  mkdir -p "$folder/description"
  cp "$sysroot/usr/lib/$(basename "$headers")/_sysconfigdata__$triplet.py" "$folder/description"
  rm -rf "$folder"/{dist,wheel}
  (cd "$folder/tree/python" && PYTHONPATH=$folder/description _PYTHON_HOST_PLATFORM=linux-aarch64 \
    _PYTHON_SYSCONFIGDATA_NAME=_sysconfigdata__$triplet CC=$triplet-gcc CXX=$triplet-g++ \
    CFLAGS="--sysroot=$sysroot -I$headers" LDFLAGS="--sysroot=$sysroot" \
    "$python" -m build --wheel --no-isolation -o "$folder/dist" .) >"$folder/build.log" 2>&1 || { cat "$folder/build.log" && die "no wheel"; }
  look_through_wheel
  export PYTHONHOME=$sysroot/usr PYTHONPATH=$folder/wheel:/usr/lib/python3/dist-packages PYTHONDONTWRITEBYTECODE=1
  "${emulator[@]}" "$sysroot/usr/bin/python3" "$root/examples/python/check_camera.py" "$root"/examples/repository/12/1234/Cali* 12345678
  (cd "$folder" && "${emulator[@]}" "$sysroot/usr/bin/python3" -m pytest -q -p no:cacheprovider "$root/tests/python" \
    -k "not every_value and not threads and not resident and not page and not attached and not ascii and not pictures")
}

case $action in
  install)
    require_modules "pybind11, setuptools, wheel, venv, ensurepip, build, pytest, mypy"
    copy_sources
    (cd "$folder/tree/python" && "$folder/env/bin/python" -m build --no-isolation -o "$folder/dist" .) >"$folder/build.log" ||
      { cat "$folder/build.log" && die "no packages"; }
    look_through_wheel
    pip_install "$folder"/dist/*.whl
    ;;
  asan)
    require_modules "pybind11, setuptools, wheel, venv, ensurepip, pytest"
    copy_sources
    CFLAGS="-fsanitize=address -fno-omit-frame-pointer" LDFLAGS="-fsanitize=address" pip_install "$folder/tree/python"
    ;;
  cmake)
    require_modules "pybind11, venv, ensurepip, pytest"
    "$python" -m venv --clear --system-site-packages "$folder/env"
    cmake -S "$root" -B "$folder/build" -DKALVISTA_BUILD_PYTHON=ON -DKALVISTA_BUILD_{TOOL,EXAMPLES}=OFF \
      -DPython_EXECUTABLE="$folder/env/bin/python" -DKALVISTA_WARNINGS_AS_ERRORS=ON
    cmake --build "$folder/build" --parallel "$(nproc)"
    cmake --install "$folder/build" --prefix "$folder/prefix"
    echo "$folder"/prefix/lib/python3*/site-packages >"$("$folder/env/bin/python" -c 'import site; print(site.getsitepackages()[0])')/prefix.pth"
    ;;
  arm64)
    need_packages "${python_packages[@]}" binutils
    copy_sources
    # shellcheck disable=SC2034  # what make_sysroot fetches
    sysroot_packages=(libc6-dev libstdc++6 libpython3-dev libpython3-stdlib python3-minimal)
    make_sysroot arm64 "$folder"
    arm64_wheel
    ;;
  bench)
    need_packages "${build_packages[@]}" "${python_packages[@]}"
    copy_sources
    pip_install "$folder/tree/python"
    cmake -S "$root" -B "$folder/library" -DCMAKE_BUILD_TYPE=Release -DKALVISTA_BUILD_{TOOL,EXAMPLES}=OFF >"$folder/build.log"
    cmake --build "$folder/library" --target kalvista --parallel "$(nproc)" >>"$folder/build.log"
    g++ -std=c++17 -O3 -shared -fPIC -I "$root/include" "$root/bench/python/LibraryLoad.cpp" -o "$folder/libload.so" \
      -L "$folder/library" -lkalvista -Wl,-rpath,"$folder/library"
    "$folder/env/bin/python" "$root/bench/python/load.py" "$folder/libload.so" \
      "$root"/examples/repository/12/1234/Cali* 12345678 "$root/docs/performance.md"
    ;;
  run)
    [[ -x $folder/env/bin/python ]] || { echo "skipped: nothing is installed in $folder" && exit 77; }
    if [[ $folder == *asan ]]; then
      LD_PRELOAD="$(g++ -print-file-name=libasan.so) $(g++ -print-file-name=libstdc++.so)"
      # The interpreter itself keeps memory to its end.
      export LD_PRELOAD ASAN_OPTIONS=detect_leaks=0 PYTHONMALLOC=malloc
    fi
    PATH=$folder/env/bin:$PATH exec "$folder/env/bin/python" "$@"
    ;;
  *) die "unknown action $action; there are install, asan, cmake, arm64, bench and run" ;;
esac
