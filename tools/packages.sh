# Debian packages by purpose, and how to get the missing ones. Sourced by ./run, ./test and .ci/run.

PACKAGES_BUILD="g++ cmake ninja-build pkg-config python3 qt6-base-dev libgl-dev libpulse-dev libsamplerate0-dev"
# What the window looks and prints best with: a plain interface font, and a metric twin of the reports' font.
PACKAGES_WINDOW="fonts-dejavu-core fonts-crosextra-carlito"
# A virtual display and a person's hands on it.
PACKAGES_DESKTOP="xvfb openbox xdotool x11-utils imagemagick dbus at-spi2-core gir1.2-atspi-2.0 python3 python3-gi
  pulseaudio pulseaudio-utils poppler-utils"
# A memory card of its own for the manual's pictures.
PACKAGES_PICTURES="mount util-linux"
PACKAGES_TEST="libgtest-dev clang strace ffmpeg libimage-exiftool-perl qpdf poppler-utils pulseaudio pulseaudio-utils
  python3 util-linux e2fsprogs mount procps locales binutils
  appstream desktop-file-utils man-db mandoc dpkg-dev bash bash-completion zsh fish flatpak-builder
  jq sqlite3"
# To make a Debian package, and to check it.
PACKAGES_DEB="dpkg-dev"
PACKAGES_DEB_CHECK="lintian ccache"
PACKAGES_CI="ccache libbenchmark-dev libclang-rt-dev clang-format clang-tidy debootstrap"

as_root()
{
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# install_packages NAME...: installs what is not there yet, asking for nothing; silent when all is there.
install_packages()
{
    local missing=() name
    for name in "$@"; do
        dpkg-query -W -f '${db:Status-Status}\n' "$name" 2>/dev/null | grep -qx installed || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing: ${missing[*]}"
    as_root env DEBIAN_FRONTEND=noninteractive apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# A compiler cache is used where there is one.
use_compiler_cache()
{
    if command -v ccache >/dev/null; then
        export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache CMAKE_OBJCXX_COMPILER_LAUNCHER=ccache
    fi
}
