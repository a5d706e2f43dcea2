#pragma once

namespace torvane::Updates {

/// The kind of machine that this is compiled for, as `uname -m` names it where kernel and programs are of one kind. The
/// kernel's own answer is no measure: programs of 32 bits run on kernels of 64 too.
inline constexpr char targetArchitecture[] =
#if defined(__x86_64__)
    "x86_64";
#elif defined(__i386__)
    "i686";
#elif defined(__aarch64__) && defined(__AARCH64EB__)
    "aarch64_be";
#elif defined(__aarch64__)
    "aarch64";
#elif defined(__arm__) && __ARM_ARCH >= 8
    "armv8l";
#elif defined(__arm__) && __ARM_ARCH == 7
    "armv7l";
#elif defined(__arm__) && __ARM_ARCH == 6
    "armv6l";
#elif defined(__arm__)
    "armv5tel";
#elif defined(__riscv) && __riscv_xlen == 64
    "riscv64";
#elif defined(__riscv)
    "riscv32";
#elif defined(__powerpc64__) && defined(__LITTLE_ENDIAN__)
    "ppc64le";
#elif defined(__powerpc64__)
    "ppc64";
#elif defined(__powerpc__)
    "ppc";
#elif defined(__s390x__)
    "s390x";
#elif defined(__loongarch64)
    "loongarch64";
#elif defined(__mips64)
    "mips64";
#elif defined(__mips__)
    "mips";
#else
#error "Say here how uname -m names this machine."
#endif

} // namespace torvane::Updates
