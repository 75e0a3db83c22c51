// Aligned memory with statistics, a peak and a limit. Every block carries its size and alignment in front
// of it, so that the statistics are exact and a resized block keeps its alignment. Freed blocks go back to
// the C library at once, but for a few small ones that wait for the thread's next request; it keeps them,
// and xkl_serv_free_buffers makes it give them back to the system.
#include "service/messages.h"
#include "service/service_entries.h"
#include "service/small_blocks.h"
#include "xkl_service_types.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>

using xkl::core::small_blocks;
using xkl::core::small_blocks_of_thread;

namespace {

constexpr uint16_t live_mark = 0x4b4c;
constexpr uint16_t freed_mark = 0x6465;
constexpr size_t default_alignment = 64;

struct block_header {
    size_t size;
    uint32_t offset; // of the block in the C library's one
    uint16_t log_alignment;
    uint16_t mark;

    size_t alignment() const { return size_t{1} << log_alignment; }
};
static_assert(sizeof(block_header) == 16);

// All counted without ordering: the numbers are statistics, and each is exact once the callers are at rest.
std::atomic<int64_t> bytes_in_use{0};
std::atomic<int> blocks_in_use{0};
// Written by xkl_serv_set_memory_limit: bytes, INT64_MAX for no limit.
std::atomic<int64_t> byte_limit{INT64_MAX};
// Written by xkl_serv_disable_fast_mm, once: false.
std::atomic<bool> keeps_small_blocks{true};
// Written by xkl_serv_peak_mem_usage and, while measuring, by every allocation.
std::atomic<bool> measuring_peak{false};
std::atomic<int64_t> peak_bytes{0};

void raise_peak(int64_t bytes)
{
    int64_t peak = peak_bytes.load(std::memory_order_relaxed);
    while (bytes > peak && !peak_bytes.compare_exchange_weak(peak, bytes, std::memory_order_relaxed)) {
    }
}

bool count_allocation(size_t size)
{
    const auto amount = static_cast<int64_t>(size);
    const int64_t now = bytes_in_use.fetch_add(amount, std::memory_order_relaxed) + amount;
    if (now > byte_limit.load(std::memory_order_relaxed)) {
        bytes_in_use.fetch_sub(amount, std::memory_order_relaxed);
        return false;
    }
    blocks_in_use.fetch_add(1, std::memory_order_relaxed);
    if (measuring_peak.load(std::memory_order_relaxed))
        raise_peak(now);
    return true;
}

void uncount_allocation(size_t size)
{
    bytes_in_use.fetch_sub(static_cast<int64_t>(size), std::memory_order_relaxed);
    blocks_in_use.fetch_sub(1, std::memory_order_relaxed);
}

size_t usable_alignment(int alignment)
{
    const auto bytes = static_cast<size_t>(std::max(alignment, 0));
    const bool power_of_two = bytes != 0 && (bytes & (bytes - 1)) == 0;
    return power_of_two ? std::max(bytes, sizeof(block_header)) : default_alignment;
}

block_header *header_of(void *block)
{
    return static_cast<block_header *>(block) - 1;
}

// The C library keeps freed small blocks at hand, but not those that it was asked to align: so the alignment
// is made here. Its blocks are aligned to a header's size, which leaves room for one in front of ours.
void *allocate_block(size_t size, size_t alignment)
{
    static_assert(alignof(std::max_align_t) >= sizeof(block_header));
    if (size > static_cast<size_t>(PTRDIFF_MAX) - alignment || !count_allocation(size))
        return nullptr;
    const size_t needed = size + alignment;
    auto *const start = static_cast<char *>(needed <= small_blocks::size ? small_blocks_of_thread().get()
                                                                         : std::malloc(needed));
    if (!start) {
        uncount_allocation(size);
        return nullptr;
    }
    const size_t beyond = reinterpret_cast<uintptr_t>(start) & (alignment - 1);
    const size_t offset = alignment - beyond;
    void *block = start + offset;
    const auto log_alignment = static_cast<uint16_t>(std::countr_zero(alignment));
    *header_of(block) = {size, static_cast<uint32_t>(offset), log_alignment, live_mark};
    return block;
}

bool is_live(void *block)
{
    if (header_of(block)->mark == live_mark)
        return true;
    char address[24];
    std::snprintf(address, sizeof address, "%p", block);
    xkl_serv_print(1, xkl::core::message_not_our_block, 1, address);
    return false;
}

} // namespace

extern "C" {

void *xkl_serv_malloc(size_t size, int alignment)
{
    return allocate_block(size, usable_alignment(alignment));
}

void *xkl_serv_calloc(size_t count, size_t size, int alignment)
{
    size_t bytes = 0;
    if (__builtin_mul_overflow(count, size, &bytes))
        return nullptr;
    void *block = xkl_serv_malloc(bytes, alignment);
    return block ? std::memset(block, 0, bytes) : nullptr;
}

void xkl_serv_free(void *block)
{
    if (!block || !is_live(block))
        return;
    block_header *header = header_of(block);
    header->mark = freed_mark;
    uncount_allocation(header->size);
    void *const start = static_cast<char *>(block) - header->offset;
    const bool small = header->size + header->alignment() <= small_blocks::size;
    if (small && keeps_small_blocks.load(std::memory_order_relaxed))
        small_blocks_of_thread().put(start);
    else
        std::free(start);
}

// As the C library's: a failure leaves the old block as it was, size 0 frees it.
void *xkl_serv_realloc(void *block, size_t size)
{
    if (!block)
        return allocate_block(size, default_alignment);
    if (size == 0) {
        xkl_serv_free(block);
        return nullptr;
    }
    if (!is_live(block))
        return nullptr;
    const block_header old = *header_of(block);
    void *resized = allocate_block(size, old.alignment());
    if (!resized)
        return nullptr;
    std::memcpy(resized, block, std::min(size, old.size));
    xkl_serv_free(block);
    return resized;
}

void *xkl_serv_allocate(size_t size, int alignment)
{
    return xkl_serv_malloc(size, alignment);
}

void xkl_serv_deallocate(void *block)
{
    xkl_serv_free(block);
}

void xkl_serv_free_buffers(void)
{
    small_blocks_of_thread().release();
    malloc_trim(0);
}

void xkl_serv_thread_free_buffers(void)
{
    small_blocks_of_thread().release();
    malloc_trim(0);
}

int64_t xkl_serv_mem_stat(int *buffers)
{
    if (buffers)
        *buffers = blocks_in_use.load(std::memory_order_relaxed);
    return bytes_in_use.load(std::memory_order_relaxed);
}

int64_t xkl_serv_peak_mem_usage(int mode)
{
    switch (mode) {
    case XKL_PEAK_MEM_DISABLE:
        measuring_peak.store(false, std::memory_order_relaxed);
        return peak_bytes.load(std::memory_order_relaxed);
    case XKL_PEAK_MEM_ENABLE:
        measuring_peak.store(true, std::memory_order_relaxed);
        raise_peak(bytes_in_use.load(std::memory_order_relaxed));
        return peak_bytes.load(std::memory_order_relaxed);
    case XKL_PEAK_MEM_QUERY:
        return peak_bytes.load(std::memory_order_relaxed);
    case XKL_PEAK_MEM_RESET:
        return peak_bytes.exchange(bytes_in_use.load(std::memory_order_relaxed), std::memory_order_relaxed);
    default:
        return -1;
    }
}

// What other threads keep goes with their next requests. 1: done.
int xkl_serv_disable_fast_mm(void)
{
    keeps_small_blocks.store(false, std::memory_order_relaxed);
    small_blocks_of_thread().release();
    return 1;
}

int xkl_serv_set_memory_limit(int type, size_t megabytes)
{
    constexpr size_t megabyte = size_t{1} << 20;
    if (type != XKL_MEM_ALL)
        return 0;
    const bool unlimited = megabytes == 0 || megabytes > static_cast<size_t>(INT64_MAX) / megabyte;
    byte_limit.store(unlimited ? INT64_MAX : static_cast<int64_t>(megabytes * megabyte),
                     std::memory_order_relaxed);
    return 1;
}

void xkl_serv_finalize(void)
{
    xkl_serv_verbose_output_file(nullptr);
    xkl_serv_free_buffers();
}
}
