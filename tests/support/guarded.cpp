// SPDX-License-Identifier: MIT
#include "support/guarded.h"

#include <sys/mman.h>
#include <unistd.h>

#include <csetjmp>
#include <csignal>
#include <stdexcept>

namespace orvgen::test {
namespace {

thread_local sigjmp_buf resume;
thread_local volatile std::uintptr_t faultAddress;
thread_local volatile int faultSignal;
thread_local volatile sig_atomic_t catching;

struct sigaction& previous(int signal) {
    static struct sigaction segv, bus, fpe;
    return signal == SIGSEGV ? segv : signal == SIGBUS ? bus : fpe;
}

extern "C" void onFault(int signal, siginfo_t* info, void*) {
    if (!catching) {
        // The fault happens again, for whoever was here before.
        sigaction(signal, &previous(signal), nullptr);
        return;
    }
    faultAddress = reinterpret_cast<std::uintptr_t>(info->si_addr);
    faultSignal = signal;
    siglongjmp(resume, 1);
}

// Once for the process: system calls would take most of the time of a short kernel's test. No
// signal is blocked in the handler, which is left by a jump.
bool handle() {
    struct sigaction ours = {};
    ours.sa_sigaction = onFault;
    ours.sa_flags = SA_SIGINFO | SA_NODEFER;
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE}) sigaction(signal, &ours, &previous(signal));
    return true;
}

// Whether the work ends by itself. A function of its own, so that no variable lives across the
// jump.
bool finishes(const std::function<void()>& work) {
    catching = 1;
    const auto stop = [](bool result) {
        catching = 0;
        return result;
    };
    if (sigsetjmp(resume, 0) != 0) return stop(false);
    work();
    return stop(true);
}

}  // namespace

GuardedMemory::GuardedMemory(std::size_t bytes) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    length = (bytes + page - 1) / page * page;
    mapped = length + 2 * page;
    void* m = mmap(nullptr, mapped, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (m == MAP_FAILED) throw std::runtime_error("no memory");
    mapping = static_cast<std::uint8_t*>(m);
    memory = mapping + page;
    setReadOnly(false);
}

GuardedMemory::~GuardedMemory() { munmap(mapping, mapped); }

void GuardedMemory::setReadOnly(bool readOnly) {
    if (mprotect(memory, length, readOnly ? PROT_READ : PROT_READ | PROT_WRITE) != 0) {
        throw std::runtime_error("cannot protect memory");
    }
}

std::string catchFault(const std::function<void()>& work, const void* origin) {
    [[maybe_unused]] static const bool handled = handle();
    if (finishes(work)) return "";
    if (faultSignal == SIGFPE) return "trap of the arithmetic";
    // What the processor reports for an aligned access off its boundary.
    if (faultAddress == 0) return "general protection fault (misaligned access or null)";
    const auto distance = static_cast<std::int64_t>(faultAddress) -
                          static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(origin));
    return "forbidden access at byte " + std::to_string(distance);
}

}  // namespace orvgen::test
