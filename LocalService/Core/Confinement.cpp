#include "Core/Confinement.h"

#include <array>
#include <cstdint>
#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace korvi::service {

namespace {

// Those of the first version, and what later ones have added; a kernel is not told of what it does not know.
constexpr std::uint64_t ofFirst = (std::uint64_t{1} << 13U) - 1;
constexpr std::uint64_t linking = std::uint64_t{1} << 13U;    // to and from other folders, of version 2
constexpr std::uint64_t truncating = std::uint64_t{1} << 14U; // of version 3

constexpr std::uint64_t reading =
    LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
/// What can be said of a file, not only of a folder.
constexpr std::uint64_t ofFiles =
    LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_WRITE_FILE | truncating;

/// Programs, their libraries and data, and what these are set to. Nobody's own files.
constexpr std::array systemPaths{"/usr", "/bin", "/sbin", "/lib", "/lib32", "/lib64", "/libx32", "/nix/store",
    "/gnu/store", "/etc/alternatives", "/etc/fonts", "/etc/ld.so.cache", "/etc/ld.so.conf", "/etc/ld.so.conf.d",
    "/etc/ld.so.preload", "/etc/libpaper.d", "/etc/localtime", "/etc/papersize", "/etc/paperspecs", "/etc/texmf",
    "/var/cache/fontconfig", "/var/cache/fonts", "/var/lib/texmf", "/dev/random", "/dev/urandom", "/dev/zero"};

long version() {
    return ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
}

std::uint64_t handled() {
    const long known = version();
    return known < 1 ? 0 : ofFirst | (known >= 2 ? linking : 0) | (known >= 3 ? truncating : 0);
}

}

Confinement::Confinement() {
    landlock_ruleset_attr attributes{};
    attributes.handled_access_fs = handled();
    if (attributes.handled_access_fs == 0)
        return;
    // Closed on exec, like all descriptors of this call.
    ruleset_ =
        static_cast<int>(::syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes.handled_access_fs, 0U));
    for (const char* path : systemPaths)
        allowReading(path);
    allowWriting("/dev/null");
}

Confinement::~Confinement() {
    if (ruleset_ >= 0)
        ::close(ruleset_);
}

void Confinement::allowReading(const std::filesystem::path& path) const {
    allow(path, reading);
}

void Confinement::allowWriting(const std::filesystem::path& path) const {
    allow(path, handled());
}

void Confinement::allow(const std::filesystem::path& path, unsigned long long access) const {
    const int descriptor = ruleset_ < 0 ? -1 : ::open(path.c_str(), O_PATH | O_CLOEXEC);
    if (descriptor < 0)
        return;
    struct stat status {};
    const bool isFolder = ::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
    landlock_path_beneath_attr rule{};
    rule.allowed_access = access & handled() & (isFolder ? ~std::uint64_t{0} : ofFiles);
    rule.parent_fd = descriptor;
    ::syscall(SYS_landlock_add_rule, ruleset_, LANDLOCK_RULE_PATH_BENEATH, &rule, 0U);
    ::close(descriptor);
}

bool Confinement::enter() const {
    return !isAvailable() ||
        (ruleset_ >= 0 && ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
            ::syscall(SYS_landlock_restrict_self, ruleset_, 0U) == 0);
}

bool Confinement::isAvailable() {
    return version() >= 1;
}

}
