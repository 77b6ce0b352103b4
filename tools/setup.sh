# Sourced by run, test and .ci/run: Debian packages and build folders.

BUILD_PACKAGES=(g++ cmake ninja-build pkg-config
	qt6-base-dev qt6-translations-l10n libgl-dev libxcb1-dev libmpv-dev libtag1-dev libsystemd-dev libarchive-dev libgtest-dev libgmock-dev
	fonts-ipafont-gothic fonts-noto-color-emoji)
TEST_PACKAGES=(python3 libglib2.0-bin x11-apps clang-format-14 xvfb xauth openbox xdotool x11-utils x11-xserver-utils dbus at-spi2-core
	binutils desktop-file-utils appstream shared-mime-info mandoc groff-base mpv mpv-mpris)
PACKAGE_PACKAGES=(dpkg-dev file gzip lintian)
PACKAGE_TEST_PACKAGES=(file mmdebstrap xvfb x11-utils)
FUZZ_PACKAGES=(clang-14 libclang-rt-14-dev)
BENCH_PACKAGES=(libbenchmark-dev libsimpleini-dev)

# ensure_packages NAME...: installs those that are missing, with sudo when not root.
ensure_packages() {
	local missing=() name
	for name in "$@"; do
		dpkg-query -W -f '${db:Status-Status}\n' "$name" 2>/dev/null | grep -qx installed || missing+=("$name")
	done
	[ ${#missing[@]} -eq 0 ] && return 0
	local sudo=()
	if [ "$(id -u)" -ne 0 ]; then
		command -v sudo >/dev/null || {
			echo "These packages are missing, and there is no sudo to install them: ${missing[*]}" >&2
			return 1
		}
		sudo=(sudo)
	fi
	echo "Installing Debian packages: ${missing[*]}"
	"${sudo[@]}" apt-get update -qq
	"${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# build_tree FOLDER TARGET... [-- CMAKE-OPTION...]: configures the folder if it has never been, and builds the targets.
build_tree() {
	local folder=$1 targets=()
	shift
	while [ $# -gt 0 ] && [ "$1" != -- ]; do
		targets+=("$1")
		shift
	done
	[ $# -gt 0 ] && shift
	if [ ! -f "$folder/build.ninja" ]; then
		echo "Configuring $folder"
		cmake -S . -B "$folder" -G Ninja "$@" >"$folder.log" 2>&1 || {
			cat "$folder.log" >&2
			return 1
		}
	fi
	echo "Building $folder"
	ninja -C "$folder" --quiet "${targets[@]}"
}
