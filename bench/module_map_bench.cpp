// Speed of the module map: enumerating the modules of this process, with
// its own modules and again with 200 more loaded, and inserting 10,000
// ranges in random and in ascending order. A plain program that prints its
// figures, so that it runs on both platforms:
//
//   module_map_bench [repetitions]
//
// The extra modules are copies of module_map_bench_module, made beside a
// scratch folder at run time, each under its own name so that the loader
// takes each for a module of its own.
#include "module_map_ptr.h"

#include <gavrel2/shared_lib.h>
#include <gavrel2/stdpaths.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <filesystem>
#include <functional>
#include <memory>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int kExtraModules = 200;

using norvane_test::MapPtr;

// Median and fastest of `repetitions` runs, in milliseconds.
void report(char const* what, int repetitions, std::function<void()> const& run) {
    std::vector<double> times;
    for (int i = 0; i < repetitions; ++i) {
        Clock::time_point const start = Clock::now();
        run();
        times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    std::sort(times.begin(), times.end());
    std::printf("%-52s median %9.3f ms   fastest %9.3f ms\n", what, times[times.size() / 2], times.front());
}

// Modules and entries one enumeration of this process finds.
void describeOwnProcess(char const* when) {
    MapPtr map = norvane_test::newMap();
    norvane_1::loadModuleMap(map.get(), 0);
    std::set<std::uint64_t> bases;
    for (std::uint32_t i = 0; i < map->count; ++i) bases.insert(map->ranges[i].base);
    std::printf("%s: %zu modules with code, %u entries\n", when, bases.size(), map->count);
}

void timeOwnProcess(char const* what, int repetitions) {
    report(what, repetitions, [] {
        MapPtr map = norvane_test::newMap();
        norvane_1::loadModuleMap(map.get(), 0);
    });
}

wchar_t* heapName(std::size_t index) {
    std::wstring const name = L"C:\\product\\bin\\module" + std::to_wstring(index) + L".dll";
    std::size_t const bytes = (name.size() + 1) * sizeof(wchar_t);
    auto* copy = static_cast<wchar_t*>(std::malloc(bytes));
    std::memcpy(copy, name.c_str(), bytes);
    return copy;
}

void insertAll(std::vector<std::uint64_t> const& order) {
    MapPtr map = norvane_test::newMap();
    for (std::uint64_t index : order) {
        norvane_1::MinidumpAddressRange range{heapName(index), index * 0x10000, index * 0x10000 + 0x1000,
                                              index * 0x10000 + 0x8000, 0};
        norvane_1::insertAddressRange(map.get(), &range);
    }
}

void timeInsertions(std::size_t count, int repetitions) {
    std::vector<std::uint64_t> ascending(count);
    std::iota(ascending.begin(), ascending.end(), 0);
    std::vector<std::uint64_t> shuffled = ascending;
    std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(42));
    std::string const random = "insert " + std::to_string(count) + " ranges, random order";
    std::string const inOrder = "insert " + std::to_string(count) + " ranges, ascending order";
    report(random.c_str(), repetitions, [&] { insertAll(shuffled); });
    report(inOrder.c_str(), repetitions, [&] { insertAll(ascending); });
}

// Loads copies of the bench module; they stay loaded until the program ends.
std::vector<std::unique_ptr<gavrel2::shared_lib_t>> loadCopies(fs::path const& scratch) {
    fs::path const program = fs::path(gavrel2::stdpaths::get_program_path().as_string());
    fs::path const original = program.parent_path() / MODULE_MAP_BENCH_MODULE;
    std::vector<std::unique_ptr<gavrel2::shared_lib_t>> modules;
    fs::create_directories(scratch);
    for (int i = 0; i < kExtraModules; ++i) {
        std::string const stem = "mmb_" + std::to_string(i);
        fs::copy_file(original, scratch / (stem + original.extension().string()), fs::copy_options::overwrite_existing);
        auto module = std::make_unique<gavrel2::shared_lib_t>();
        if (!module->initialize(std::wstring(stem.begin(), stem.end()), gavrel2::path_t(scratch.wstring()))) {
            std::fprintf(stderr, "could not load copy %d of %s\n", i, original.string().c_str());
            std::exit(1);
        }
        modules.push_back(std::move(module));
    }
    return modules;
}

}  // namespace

int main(int argc, char** argv) {
    int const repetitions = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
    describeOwnProcess("this process");
    timeOwnProcess("loadModuleMap, this process", repetitions);

    fs::path const scratch = fs::temp_directory_path() / ("module_map_bench_" + std::to_string(std::random_device()()));
    {
        auto const modules = loadCopies(scratch);
        describeOwnProcess("with the copies loaded");
        timeOwnProcess("loadModuleMap, 200 more modules loaded", repetitions);
        for (auto const& module : modules) module->uninitialize();
    }
    std::error_code ignored;
    fs::remove_all(scratch, ignored);

    // Each insertion rewrites the whole list into the other half, so the
    // cost grows with the square of the count: the three sizes show how.
    for (std::size_t count : {2500, 5000, 10000}) timeInsertions(count, std::max(1, repetitions / 4));
    return 0;
}
