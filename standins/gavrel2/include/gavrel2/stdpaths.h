// Well-known paths and directory creation of the general helper library.
#pragma once

#include <gavrel2/path.h>

namespace gavrel2 {
namespace stdpaths {

// The directory of the module (program or shared library) that holds `address`.
path_t get_module_dir(void const* address);
// The full path of the running program; empty if it can't be told.
path_t get_program_path();
// The directory for temporary files, without a trailing separator.
path_t get_temp_dir();

}  // namespace stdpaths

// Creates the directory and any missing parents. True if it exists afterwards.
bool create_directories(path_t const& directory);

}  // namespace gavrel2
