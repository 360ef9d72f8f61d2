#include "commands/check/trial/Confinement.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

#include "system/Descriptor.h"
#include "system/LastError.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

// ---- By Landlock, for which the C library has no functions

constexpr std::uint64_t kCut = std::uint64_t{1} << 14;  // LANDLOCK_ACCESS_FS_TRUNCATE, which older headers lack
constexpr long kVersionWithCut = 3;
constexpr std::uint64_t kWriting =
    LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR | LANDLOCK_ACCESS_FS_REMOVE_FILE |
    LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
    LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_MAKE_BLOCK |
    LANDLOCK_ACCESS_FS_MAKE_SYM | LANDLOCK_ACCESS_FS_REFER | kCut;
constexpr const char* kHarmlessDevices[] = {"/dev/null",   "/dev/zero",    "/dev/full",
                                            "/dev/random", "/dev/urandom", "/dev/tty"};

// A missing path needs no permission.
void allow(const Descriptor& rules, const char* path, std::uint64_t access) {
    const Descriptor place(open(path, O_PATH | O_CLOEXEC));
    if (!place.isOpen()) return;
    landlock_path_beneath_attr rule{};
    rule.allowed_access = access;
    rule.parent_fd = place.get();
    if (syscall(SYS_landlock_add_rule, rules.get(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0) != 0) throwLastError();
}

// ---- By mounts

void writeFile(const char* path, const std::string& text) {
    if (!(std::ofstream(path) << text << std::flush)) throwLastError(path);
}

// A user who is not root can have separate mounts only inside a user namespace. The namespace keeps all user ids.
void takeMounts() {
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    if (unshare(CLONE_NEWNS) == 0) return;
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) throwLastError("cannot create separate mounts");
    writeFile("/proc/self/setgroups", "deny");
    writeFile("/proc/self/uid_map", user + ' ' + user + " 1");
    writeFile("/proc/self/gid_map", group + ' ' + group + " 1");
}

void setReadOnly(const char* path, bool isReadOnly, unsigned flags) {
    mount_attr change{};
    (isReadOnly ? change.attr_set : change.attr_clr) = MOUNT_ATTR_RDONLY;
    if (syscall(SYS_mount_setattr, AT_FDCWD, path, flags, &change, sizeof change) != 0) throwLastError(path);
}

}  // namespace

void confineByLandlock(const fs::path& folder) {
    const long version = syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 0) throwLastError("Landlock");
    if (version < kVersionWithCut)
        throw std::system_error(ENOSYS, std::generic_category(), "Landlock cannot refuse truncation");
    landlock_ruleset_attr handled{};
    handled.handled_access_fs = kWriting;
    const Descriptor rules(syscall(SYS_landlock_create_ruleset, &handled, sizeof handled, 0));
    if (!rules.isOpen()) throwLastError("Landlock");
    allow(rules, folder.c_str(), kWriting);
    for (const char* device : kHarmlessDevices) allow(rules, device, LANDLOCK_ACCESS_FS_WRITE_FILE | kCut);
    const bool isConfined =
        prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && syscall(SYS_landlock_restrict_self, rules.get(), 0) == 0;
    if (!isConfined) throwLastError("Landlock");
}

void confineByMounts(const fs::path& folder) {
    const fs::path current = fs::current_path();
    takeMounts();
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) throwLastError("private mounts");
    if (mount(folder.c_str(), folder.c_str(), nullptr, MS_BIND, nullptr) != 0) throwLastError(folder.c_str());
    setReadOnly("/", true, AT_RECURSIVE);
    setReadOnly(folder.c_str(), false, 0);
    fs::current_path(current);  // by its name, because the process is still in the mount that is now read-only
}

Confinement::Counter* Confinement::enteredCounter = nullptr;

Confinement::Confinement(fs::path folder, fs::path temporary)
    : m_folder(std::move(folder)), m_temporary(std::move(temporary)) {}

void Confinement::enter() const {
    try {
        confineByLandlock(m_folder);
    } catch (const std::system_error&) {
        confineByMounts(m_folder);
    }
    setenv("TMPDIR", m_temporary.c_str(), 1);
    enteredCounter = &*m_refusals;
}

void Confinement::noteFailure(int error) noexcept {
    const bool isRefusal = error == EACCES || error == EROFS || error == EXDEV;
    if (isRefusal && enteredCounter != nullptr) ++enteredCounter->value;
}

}  // namespace vexa::runner
