# shellcheck shell=bash
# The processors of receivers, by Debian's names for them.

processors=(armhf arm64 mipsel)

# Debian's name of the platform in file names and commands.
triplet_of() {
    case $1 in
        armhf) echo arm-linux-gnueabihf ;;
        arm64) echo aarch64-linux-gnu ;;
        mipsel) echo mipsel-linux-gnu ;;
    esac
}

# The emulator's name of the processor.
emulator_of() {
    case $1 in
        armhf) echo qemu-arm ;;
        arm64) echo qemu-aarch64 ;;
        mipsel) echo qemu-mipsel ;;
    esac
}
