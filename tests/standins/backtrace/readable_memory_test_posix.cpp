// What the walk may read: pages are asked of the system, so the pages a list
// of mappings calls readable but that fault when read are refused too.
#include "readable_memory_posix.h"

#include <sys/mman.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>

namespace {

std::uint64_t page() { return static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)); }

TEST(ReadableMemory, AnswersPageByPage) {
    std::size_t const pages = 40;  // more than one system call asks about
    auto* const base = static_cast<unsigned char*>(
        ::mmap(nullptr, pages * page(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(base, MAP_FAILED);
    auto const at = [&](std::uint64_t offset) { return reinterpret_cast<std::uint64_t>(base) + offset; };
    ASSERT_EQ(::mprotect(base + 2 * page(), page(), PROT_NONE), 0);  // a guard page
    ASSERT_EQ(::munmap(base + 30 * page(), page()), 0);              // a hole

    // A file mapped two pages long but one page in size: the second faults.
    std::FILE* const file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    ASSERT_EQ(::ftruncate(::fileno(file), static_cast<off_t>(page())), 0);
    void* const mapped = ::mmap(nullptr, 2 * page(), PROT_READ, MAP_PRIVATE, ::fileno(file), 0);
    ASSERT_NE(mapped, MAP_FAILED);
    auto const fileAt = reinterpret_cast<std::uint64_t>(mapped);

    bt::ReadableMemory const memory = bt::ReadableMemory::ofThisProcess();
    ASSERT_FALSE(memory.empty());
    EXPECT_TRUE(memory.holds(at(0), 8));
    EXPECT_TRUE(memory.holds(at(page() - 8), 8));
    EXPECT_FALSE(memory.holds(at(2 * page() - 4), 8)) << "into the guard page";
    EXPECT_FALSE(memory.holds(at(2 * page()), 1));
    EXPECT_TRUE(memory.holds(at(3 * page()), 8)) << "past the guard page";
    EXPECT_TRUE(memory.holds(at(3 * page()), 20 * page())) << "across the pages of two asks";
    EXPECT_FALSE(memory.holds(at(29 * page()), 2 * page())) << "into the hole";
    EXPECT_FALSE(memory.holds(at(30 * page()), 8));
    EXPECT_TRUE(memory.holds(fileAt, 8));
    EXPECT_FALSE(memory.holds(fileAt + page(), 8)) << "past the file's end";
    EXPECT_FALSE(memory.holds(~std::uint64_t{0} - 4, 8)) << "around the end of the address space";

    ::munmap(mapped, 2 * page());
    std::fclose(file);
    ::munmap(base, pages * page());
}

}  // namespace
