// A report file read for a person or a script: the commands that show a
// report refuse a file that holds none with one clear reason.
#pragma once

#include <norvane_1/norvane.h>

#include <string>

namespace kelmur_feedback {

// Reads the report at `path` into `report`; the reason it could not, for a
// message, or empty.
std::string loadReportFile(std::string const& path, norvane_1::ProblemReportStorage& report);

}  // namespace kelmur_feedback
