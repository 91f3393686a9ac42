// vell_print_backtrace for a workstation: the calling thread's stack on standard error, one frame a line. Called just
// before an assertion aborts: it writes past the streams' buffers, and a frame that nothing is known about gets its
// address. Any thread.
#include "vell-util.h"

#include <cxxabi.h>
#include <dlfcn.h>
#include <elfutils/libdwfl.h>
#include <execinfo.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "Line.h"

namespace {

constexpr int kMaxFrames = 128;

struct Release {
    void operator()(char* text) const {
        std::free(text);
    }
    void operator()(Dwfl* session) const {
        dwfl_end(session);
    }
};

// Symbols and source lines from the program and its libraries themselves. Separate files are not looked for: that can
// end in a question to a server, and this process is about to end.
int FindNoOtherFile(Dwfl_Module* /*module*/, void** /*data*/, const char* /*name*/, Dwarf_Addr /*base*/,
                    const char* /*file*/, const char* /*link*/, GElf_Word /*checksum*/, char** /*found*/) {
    return -1;
}

// Knows all functions, the ones that are not exported included, as long as the files have not been stripped.
class Symbols {
public:
    Symbols() : m_session(dwfl_begin(&kCallbacks)) {
        if (m_session && (dwfl_linux_proc_report(m_session.get(), ::getpid()) != 0 ||
                          dwfl_report_end(m_session.get(), nullptr, nullptr) != 0)) {
            m_session.reset();
        }
    }

    /// The function's name as the linker knows it, null when it is unknown; and where it begins.
    const char* Function(std::uintptr_t address, std::uintptr_t& start) const {
        GElf_Off offset = 0;
        GElf_Sym symbol{};
        Dwfl_Module* module = Module(address);
        const char* name = module == nullptr
                               ? nullptr
                               : dwfl_module_addrinfo(module, address, &offset, &symbol, nullptr, nullptr, nullptr);
        start = address - static_cast<std::uintptr_t>(offset);
        return name;
    }

    /// The source file, null when it is unknown; and the line in it.
    const char* Source(std::uintptr_t address, int& line) const {
        Dwfl_Module* module = Module(address);
        Dwfl_Line* found = module == nullptr ? nullptr : dwfl_module_getsrc(module, address);
        return found == nullptr ? nullptr : dwfl_lineinfo(found, nullptr, &line, nullptr, nullptr, nullptr);
    }

private:
    static constexpr Dwfl_Callbacks kCallbacks{dwfl_linux_proc_find_elf, FindNoOtherFile, nullptr, nullptr};

    Dwfl_Module* Module(std::uintptr_t address) const {
        return m_session ? dwfl_addrmodule(m_session.get(), address) : nullptr;
    }

    std::unique_ptr<Dwfl, Release> m_session;
};

void AddFunction(host::Line& line, const char* symbol, std::uintptr_t offset) {
    if (symbol == nullptr) {
        line.Add("??");
        return;
    }
    int status = 0;
    const std::unique_ptr<char, Release> name(abi::__cxa_demangle(symbol, nullptr, nullptr, &status));
    line.Add(name ? name.get() : symbol);
    line.Format("+0x%jx", static_cast<std::uintmax_t>(offset));
}

void Describe(host::Line& line, const Symbols& symbols, std::uintptr_t address) {
    // A return address: behind a call that never returns it may belong to the next function already.
    const std::uintptr_t call = address - 1;
    std::uintptr_t start = 0;
    const char* name = symbols.Function(call, start);
    AddFunction(line, name, address - start);
    int number = 0;
    const char* source = symbols.Source(call, number);
    if (source != nullptr) {
        line.Add(" at ").Add(source).Format(":%d", number);
    }
    // Where in which file: with it the symbols of a file that was stripped can be found elsewhere.
    Dl_info place{};
    if (::dladdr(reinterpret_cast<void*>(call), &place) != 0) {
        const auto base = reinterpret_cast<std::uintptr_t>(place.dli_fbase);
        line.Add(" (").Add(place.dli_fname).Format("+0x%jx)", static_cast<std::uintmax_t>(address - base));
    }
}

} // namespace

void vell_print_backtrace(void) {
    std::array<void*, kMaxFrames> frames{};
    const auto* const end = frames.data() + ::backtrace(frames.data(), kMaxFrames);
    // The stack as the caller sees it: not this function, nor what a sanitizer puts between it and backtrace().
    const auto* frame = std::find<void* const*>(frames.data(), end, __builtin_return_address(0));
    if (frame == end) {
        frame = frames.data();
    }
    const Symbols symbols;
    host::Line title;
    (void)title.Add("Backtrace, innermost call first:").WriteTo(STDERR_FILENO); // nowhere else to say it
    for (int number = 0; frame != end; ++frame, ++number) {
        const auto address = reinterpret_cast<std::uintptr_t>(*frame);
        host::Line line;
        line.Format("#%-3d 0x%0*jx in ", number, static_cast<int>(2 * sizeof address),
                    static_cast<std::uintmax_t>(address));
        Describe(line, symbols, address);
        (void)line.WriteTo(STDERR_FILENO);
    }
}
