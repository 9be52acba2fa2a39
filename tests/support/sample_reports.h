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

struct LargeReportShape {
    int modules = 300;
    int threads = 8;
    int cleanFrames = 200;
    int rawSlots = 2500;
    int premortalLines = 100;
    int customSections = 20;
};

// A report of realistic size (about 1 MB of text with the default shape).
norvane_1::ProblemReportStorage makeLargeReport(LargeReportShape const& shape = {});

// The text of a file as UTF-8 bytes, and back.
std::string toUtf8(std::wstring const& text);
std::wstring fromUtf8(std::string const& bytes);

// The text with every "\n" written as "\r\n", as a Windows editor saves it.
std::wstring withCrLf(std::wstring const& text);

}  // namespace norvane_test
