# Read by the tests that build a host of examples/ against the installed packages. The programs are left among the
# artifacts, where somebody wants them: a folder each, with the libraries of the host's own.

work=${AUTOPKGTEST_TMP:-$(mktemp -d)}
kept=${AUTOPKGTEST_ARTIFACTS:-$work/artifacts}

# Runs FUNCTION COMPILER STANDARD FOLDER for each compiler and standard; it leaves what it builds in the folder.
for_each_compiler() { # FUNCTION
  local compiler standard place
  for compiler in g++ clang++; do
    for standard in 17 20; do
      place=$work/${1//_/-}-$compiler-$standard
      mkdir -p "$place"
      "$1" "$compiler" "$standard" "$place"
    done
  done
}

cmake_build() { # SOURCE COMPILER STANDARD FOLDER
  cmake -S "$1" -B "$4" -G Ninja -DCMAKE_CXX_COMPILER="$2" -DCMAKE_CXX_STANDARD="$3" \
    -DCMAKE_CXX_STANDARD_REQUIRED=ON -DCMAKE_BUILD_RPATH_USE_ORIGIN=ON -DBUILD_TESTING=OFF
  cmake --build "$4" --target "${1##*/}"
}

# Runs a program in an empty folder, and keeps it with the libraries beside it.
run_and_keep() { # FOLDER NAME
  local place kept_as=$kept/${1##*/}
  place=$(mktemp -d "$work/run-XXXXXX")
  mkdir -p "$kept_as"
  find "$1" -maxdepth 1 \( -name "$2" -o -name '*.so' \) -exec cp -t "$kept_as" {} +
  (cd "$place" && "$kept_as/$2")
  echo "${1##*/}: built and run"
}
