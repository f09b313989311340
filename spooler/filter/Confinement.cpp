// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/Confinement.h"

#include "platform/SecretMemory.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <sched.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <system_error>

namespace torka::filter {

namespace {

// Splicing gigabytes takes minutes and works in blocks; a ticket has 64 MB at most.
constexpr rlim_t maximumProcessorSeconds = 2 * 60 * 60;
constexpr rlim_t maximumMemory = rlim_t{2} * 1024 * 1024 * 1024;
constexpr rlim_t maximumFiles = 256;

std::string failureText(const char* what, int error) {
    return std::string(what) + ": " + std::generic_category().message(error);
}

// `grace`: the difference between the soft limit, which sends a signal, and the hard limit, which ends the
// process.
void limit(__rlimit_resource_t resource, rlim_t most, const char* what, std::vector<std::string>& problems,
           rlim_t grace = 0) {
    rlimit now{};
    if (::getrlimit(resource, &now) != 0) {
        problems.push_back(failureText(what, errno));
        return;
    }
    // Keeps a lower limit that the server set.
    const rlimit wanted{std::min(now.rlim_cur, most), std::min(now.rlim_max, most + grace)};
    if (::setrlimit(resource, &wanted) != 0) {
        problems.push_back(failureText(what, errno));
    }
}

// A filter needs none of these calls. Each has been used to escape from a confined process.
constexpr int refusedCalls[] = {
    // other programs and processes
    SCMP_SYS(execve), SCMP_SYS(execveat), SCMP_SYS(fork), SCMP_SYS(vfork), SCMP_SYS(ptrace),
    SCMP_SYS(process_vm_readv), SCMP_SYS(process_vm_writev), SCMP_SYS(process_madvise), SCMP_SYS(pidfd_getfd),
    SCMP_SYS(pidfd_open), SCMP_SYS(kcmp),
    // other views of the system
    SCMP_SYS(unshare), SCMP_SYS(setns), SCMP_SYS(chroot), SCMP_SYS(pivot_root), SCMP_SYS(mount),
    SCMP_SYS(umount2), SCMP_SYS(open_tree), SCMP_SYS(move_mount), SCMP_SYS(fsopen), SCMP_SYS(fsconfig),
    SCMP_SYS(fsmount), SCMP_SYS(fspick), SCMP_SYS(mount_setattr), SCMP_SYS(open_by_handle_at),
    SCMP_SYS(mknod), SCMP_SYS(mknodat),
    // parts of the kernel
    SCMP_SYS(bpf), SCMP_SYS(io_uring_setup), SCMP_SYS(io_uring_enter), SCMP_SYS(io_uring_register),
    SCMP_SYS(perf_event_open), SCMP_SYS(userfaultfd), SCMP_SYS(add_key), SCMP_SYS(request_key),
    SCMP_SYS(keyctl), SCMP_SYS(init_module), SCMP_SYS(finit_module), SCMP_SYS(delete_module),
    SCMP_SYS(kexec_load), SCMP_SYS(kexec_file_load), SCMP_SYS(reboot), SCMP_SYS(swapon), SCMP_SYS(swapoff),
    SCMP_SYS(acct), SCMP_SYS(quotactl), SCMP_SYS(syslog), SCMP_SYS(iopl), SCMP_SYS(ioperm),
    SCMP_SYS(modify_ldt),
    // user and group identity, and the clock
    SCMP_SYS(setuid), SCMP_SYS(setgid), SCMP_SYS(setreuid), SCMP_SYS(setregid), SCMP_SYS(setresuid),
    SCMP_SYS(setresgid), SCMP_SYS(setfsuid), SCMP_SYS(setfsgid), SCMP_SYS(setgroups), SCMP_SYS(capset),
    SCMP_SYS(settimeofday), SCMP_SYS(clock_settime), SCMP_SYS(clock_adjtime), SCMP_SYS(adjtimex),
    SCMP_SYS(personality)};

// For SCMP_CMP_MASKED_EQ `value` is the mask, and the masked argument has to be 0. The library's own macros
// are compound literals, which C++ does not have.
scmp_arg_cmp argument(unsigned position, scmp_compare how, scmp_datum_t value) {
    return {position, how, value, 0};
}

int addRules(scmp_filter_ctx list, Network network) {
    int failure = 0;
    const auto add = [&failure](int result) {
        if (failure == 0) {
            failure = result;
        }
    };
    for (const int call : refusedCalls) {
        // The library skips calls that this machine does not have.
        add(::seccomp_rule_add(list, SCMP_ACT_ERRNO(EPERM), call, 0));
    }
#if defined(__s390__)
    constexpr unsigned cloneFlags = 1; // position of the argument
#else
    constexpr unsigned cloneFlags = 0;
#endif
    // A thread is a clone with CLONE_THREAD. A list of system calls cannot inspect the arguments of clone3,
    // which lie in memory; the C library falls back to clone.
    add(::seccomp_rule_add(list, SCMP_ACT_ERRNO(EPERM), SCMP_SYS(clone), 1,
                           argument(cloneFlags, SCMP_CMP_MASKED_EQ, CLONE_THREAD)));
    add(::seccomp_rule_add(list, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0));
    const auto refuseFamilies = [&](scmp_arg_cmp which) {
        add(::seccomp_rule_add(list, SCMP_ACT_ERRNO(EAFNOSUPPORT), SCMP_SYS(socket), 1, which));
    };
    if (network == Network::none) {
        refuseFamilies(argument(0, SCMP_CMP_NE, AF_UNIX));
        return failure;
    }
    for (scmp_datum_t family = 0; family < AF_MAX; ++family) {
        // A resolver uses AF_NETLINK to read the machine's own addresses.
        if (family != AF_UNIX && family != AF_INET && family != AF_INET6 && family != AF_NETLINK) {
            refuseFamilies(argument(0, SCMP_CMP_EQ, family));
        }
    }
    refuseFamilies(argument(0, SCMP_CMP_GE, AF_MAX));
    return failure;
}

// Returns 0 or an error number.
int refuseCalls(Network network) {
    const std::unique_ptr<void, decltype(&::seccomp_release)> list(::seccomp_init(SCMP_ACT_ALLOW),
                                                                   &::seccomp_release);
    if (!list) {
        return ENOMEM;
    }
    ::seccomp_attr_set(list.get(), SCMP_FLTATR_CTL_TSYNC, 1);
    const int failure = addRules(list.get(), network);
    return -(failure != 0 ? failure : ::seccomp_load(list.get()));
}

} // namespace

std::vector<std::string> confine(Network network) {
    std::vector<std::string> problems;
    platform::protectProcess();
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) {
        problems.push_back(failureText("new rights cannot be ruled out", errno));
    }
    // SIGXCPU comes first and gives the job a reason to stop; SIGKILL follows a minute later without one.
    constexpr rlim_t grace = 60;
    limit(RLIMIT_CPU, maximumProcessorSeconds, "processor time cannot be limited", problems, grace);
    limit(RLIMIT_NOFILE, maximumFiles, "open files cannot be limited", problems);
    if constexpr (platform::hasAddressSanitizer) {
        return problems;
    }
    limit(RLIMIT_DATA, maximumMemory, "memory cannot be limited", problems);
    if (const int error = refuseCalls(network); error != 0) {
        problems.push_back(failureText("system calls cannot be refused", error));
    }
    return problems;
}

} // namespace torka::filter
