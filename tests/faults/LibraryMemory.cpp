#include "LibraryMemory.h"

#include <execinfo.h>
#include <link.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace dcftest {

namespace {

LibraryMemory* g_watching = nullptr;
long g_live = 0;

enum class Owner : std::uint64_t { Other = 0x6f74686572, Library = 0x6c6962 };

/// Stands in front of every block.
struct alignas(16) Header {
    Owner owner;
};

/// Where a loaded object lies in memory.
struct Range {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;

    bool Has(const void* address) const {
        const auto at = reinterpret_cast<std::uintptr_t>(address);
        return at >= begin && at < end;
    }
};

struct Objects {
    Range program;  ///< The first object that is told of.
    Range fileList; ///< The library that is tested.
};

int NoteObject(dl_phdr_info* info, std::size_t /*size*/, void* data) {
    Objects& objects = *static_cast<Objects*>(data);
    Range range;
    range.begin = info->dlpi_addr;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        if (info->dlpi_phdr[i].p_type == PT_LOAD) {
            range.end = std::max<std::uintptr_t>(range.end, info->dlpi_addr + info->dlpi_phdr[i].p_vaddr +
                                                                info->dlpi_phdr[i].p_memsz);
        }
    }
    if (objects.program.end == 0) {
        objects.program = range;
    } else if (std::strstr(info->dlpi_name, "libdcffilelist") != nullptr) {
        objects.fileList = range;
    }
    return 0;
}

const Objects& LoadedObjects() {
    static const Objects objects = [] {
        Objects found;
        (void)dl_iterate_phdr(NoteObject, &found); // gives what the callback gives
        return found;
    }();
    return objects;
}

/// Whether a request comes from the library. The standard library's code may take memory for anybody, so the code
/// that called it is looked for.
bool IsLibrarys(const void* caller) {
    const Objects& objects = LoadedObjects();
    if (objects.fileList.Has(caller) || objects.program.Has(caller)) {
        return objects.fileList.Has(caller);
    }
    std::array<void*, 24> frames{};
    const int count = backtrace(frames.data(), static_cast<int>(frames.size()));
    const auto end = frames.begin() + count;
    const auto user = std::find_if(std::find(frames.begin(), end, caller), end, [&](const void* frame) {
        return objects.fileList.Has(frame) || objects.program.Has(frame);
    });
    return user != end && objects.fileList.Has(*user);
}

/// @return null when it is refused.
void* Take(std::size_t size, const void* caller) {
    Owner owner = Owner::Other;
    LibraryMemory* const watching = g_watching;
    if (watching != nullptr) {
        g_watching = nullptr; // what the search itself takes is nobody's
        const bool librarys = IsLibrarys(caller);
        g_watching = watching;
        if (librarys && !watching->Request()) {
            return nullptr;
        }
        owner = librarys ? Owner::Library : Owner::Other;
    }
    void* const block = std::malloc(sizeof(Header) + size);
    if (block == nullptr) {
        return nullptr;
    }
    g_live += owner == Owner::Library ? 1 : 0;
    return new (block) Header{owner} + 1;
}

void Give(void* data) {
    if (data == nullptr) {
        return;
    }
    Header* const header = static_cast<Header*>(data) - 1;
    if (header->owner != Owner::Library && header->owner != Owner::Other) {
        std::abort(); // never came from here
    }
    g_live -= header->owner == Owner::Library ? 1 : 0;
    header->owner = {};
    std::free(header);
}

void* TakeOrThrow(std::size_t size, const void* caller) {
    void* const data = Take(size, caller);
    if (data == nullptr) {
        throw std::bad_alloc();
    }
    return data;
}

} // namespace

LibraryMemory::LibraryMemory(int nth, bool persistent) : m_nth(nth), m_persistent(persistent) {
    std::array<void*, 1> frame{};
    (void)backtrace(frame.data(), 1); // the first one loads what it needs
    (void)LoadedObjects();
    g_watching = this;
}

LibraryMemory::~LibraryMemory() {
    g_watching = nullptr;
}

long LibraryMemory::Live() {
    return g_live;
}

LibraryMemory* LibraryMemory::Watching() {
    return g_watching;
}

bool LibraryMemory::Request() {
    ++m_requests;
    const bool refused = m_nth > 0 && (m_persistent ? m_requests >= m_nth : m_requests == m_nth);
    m_refused += refused ? 1 : 0;
    return !refused;
}

} // namespace dcftest

void* operator new(std::size_t size) {
    return dcftest::TakeOrThrow(size, __builtin_return_address(0));
}

void* operator new[](std::size_t size) {
    return dcftest::TakeOrThrow(size, __builtin_return_address(0));
}

void* operator new(std::size_t size, const std::nothrow_t& /*nothrow*/) noexcept {
    return dcftest::Take(size, __builtin_return_address(0));
}

void* operator new[](std::size_t size, const std::nothrow_t& /*nothrow*/) noexcept {
    return dcftest::Take(size, __builtin_return_address(0));
}

void operator delete(void* data) noexcept {
    dcftest::Give(data);
}

void operator delete[](void* data) noexcept {
    dcftest::Give(data);
}

void operator delete(void* data, std::size_t /*size*/) noexcept {
    dcftest::Give(data);
}

void operator delete[](void* data, std::size_t /*size*/) noexcept {
    dcftest::Give(data);
}

void operator delete(void* data, const std::nothrow_t& /*nothrow*/) noexcept {
    dcftest::Give(data);
}

void operator delete[](void* data, const std::nothrow_t& /*nothrow*/) noexcept {
    dcftest::Give(data);
}
