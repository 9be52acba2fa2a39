// Reports built in code, for tests, the benchmark and the demo.
#pragma once

#include <norvane_1/problem_report_storage.h>

#include <string>

namespace norvane_test {

// A report with one of everything: an exception, shared facts, a process
// section, products, app properties, dump values, a premortal log, a context,
// raw and clean stacks, two modules, custom sections with text outside ASCII,
// and a creation log. Its text is the same on every platform.
norvane_1::ProblemReportStorage makeRichReport();

// A report of realistic size, about 1 MB of text: 300 modules, 8 threads
// with contexts, clean stacks of 200 frames and raw stacks of 2500 slots, a
// 100-line premortal log and 20 custom sections.
norvane_1::ProblemReportStorage makeLargeReport();

// The text of a file as UTF-8 bytes, and back.
std::string toUtf8(std::wstring const& text);
std::wstring fromUtf8(std::string const& bytes);

// The text with every "\n" written as "\r\n", as a Windows editor saves it.
std::wstring withCrLf(std::wstring const& text);

}  // namespace norvane_test
