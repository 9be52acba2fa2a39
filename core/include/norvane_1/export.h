// The one export macro of the library.
//
// NORVANE_API marks every symbol that belongs to the library's public
// interface. The library is built with NORVANE_BUILDING_LIBRARY; consumers
// get the import side. On Linux the library is compiled with hidden
// visibility, so an unmarked symbol stays internal there too.
#pragma once

#if defined(_WIN32)
#if defined(NORVANE_BUILDING_LIBRARY)
#define NORVANE_API __declspec(dllexport)
#else
#define NORVANE_API __declspec(dllimport)
#endif
#else
#define NORVANE_API __attribute__((visibility("default")))
#endif
