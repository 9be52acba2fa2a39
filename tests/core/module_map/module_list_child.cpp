// A child for the module enumeration tests: prints its own module list as
// its loader sees it, then waits to be looked at until it is ended.
#include "loaded_modules.h"

#include <chrono>
#include <iostream>
#include <thread>

int main() {
    norvane_test::writeModules(std::cout, norvane_test::listLoadedModules());
    std::this_thread::sleep_for(std::chrono::minutes(2));
    return 0;
}
