#include "tests/host/Registers.h"

#include <algorithm>
#include <climits>
#include <iterator>

#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>

namespace host {
namespace {

void change(pid_t thread, unsigned long long user_regs_struct::*which, unsigned long value) {
    user_regs_struct registers;
    if (ptrace(PTRACE_GETREGS, thread, nullptr, &registers) != 0)
        return;
    registers.*which = value;
    ptrace(PTRACE_SETREGS, thread, nullptr, &registers);
}

constexpr long ofDescriptors[] = {SYS_read,   SYS_write,      SYS_close, SYS_fstat, SYS_lseek,      SYS_pread64,
                                  SYS_ioctl,  SYS_fcntl,      SYS_flock, SYS_fsync, SYS_getdents64, SYS_fchmod,
                                  SYS_fchown, SYS_newfstatat, SYS_readv, SYS_writev};

} // namespace

void skipCall(pid_t thread) {
    change(thread, &user_regs_struct::orig_rax, static_cast<unsigned long>(-1));
}

void setArgument(pid_t thread, Argument which, unsigned long value) {
    change(thread, which == Argument::first ? &user_regs_struct::rdi : &user_regs_struct::rdx, value);
}

void setAnswer(pid_t thread, long answer) {
    change(thread, &user_regs_struct::rax, static_cast<unsigned long>(answer));
}

std::string textAt(pid_t thread, unsigned long address) {
    constexpr unsigned long page = 4096;
    char text[PATH_MAX + page] = {};
    // No further than to the end of a page: the next one may not be there.
    for (std::size_t got = 0; got < sizeof text - page;) {
        const std::size_t part = page - (address + got) % page;
        const iovec here{text + got, part};
        const iovec there{reinterpret_cast<void *>(address + got), part};
        if (process_vm_readv(thread, &here, 1, &there, 1, 0) <= 0 ||
            std::find(text + got, text + got + part, '\0') != text + got + part)
            break;
        got += part;
    }
    return text;
}

bool usesDescriptor(long call) {
    return std::find(std::begin(ofDescriptors), std::end(ofDescriptors), call) != std::end(ofDescriptors);
}

} // namespace host
