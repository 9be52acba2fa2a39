// Builds a problem report the way the crash path does, prints its text, reads
// the text back into a second report and prints what came back.
//
// Usage: report_roundtrip [file]   (with a file: also writes the text there, as UTF-8)
#include <norvane_1/norvane.h>

#include <fstream>
#include <iostream>
#include <string>

namespace {

// UTF-8 for the console and files; the report itself is wide text.
std::string toUtf8(std::wstring const& text) {
    std::string out;
    for (wchar_t wc : text) {
        auto c = static_cast<std::uint32_t>(wc);
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            out += static_cast<char>(0xE0 | ((c >> 12) & 0x0F));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out;
}

norvane_1::ProblemReportStorage makeSampleReport() {
    norvane_1::ProblemReportStorage report;
    norvane_1::Exception exception;
    exception.code = 0xC0000005;
    exception.description = L"EXCEPTION_ACCESS_VIOLATION";
    exception.address = 0x7ff6a1b23c40ULL;
    exception.module = L"sample tool.dll";
    report.setException(exception);
    report.setCrashedPid(4120);
    report.setCrashedTid(6632);
    report.setProcBitness(false);
    report.setReportPath(L"C:\\logs\\");
    report.setProductInfo(L"Package ID: N-A\nPackage Contents: Sample Tool\nBuild Number: 612345\n");
    report.setFailedProductName(report.getProductInfo());
    report.setSection(L"Process", L"Process Name: sample.exe\nVirtual Memory Size: 81920K\nWorking Set Size: 20480K\n");
    report.setDumpValue(L"Path", L"C:\\logs\\crash.dmp");
    report.setAppPropertyPool({{L"Theme", gavrel2::variant_t(L"dark")}});
    report.addPremortalLog({L"Last line of the log"});

    norvane_1::Context context;
    context.EIP = exception.address;
    context.ESP = 0x12f7a0;
    report.getContextMap()[6632] = context;

    norvane_1::StackFrame top;
    top.kind = 4;
    top.address = exception.address;
    top.module = exception.module;
    report.getStackFramesMap()[6632] = {top};
    report.getStackMap()[6632] = {{0x12f7a8, 0x7ff6a1b23d10ULL}};

    norvane_1::ModuleInfo module;
    module.FullName = L"C:\\Program Files\\Sample\\bin64\\sample tool.dll";
    module.Base = module.Begin = 0x7ff6a1b00000ULL;
    module.End = 0x7ff6a1c40000ULL;
    report.getModuleInfo() = {module};

    report.setSection(L"Device Info", L"Free text of a host program");
    return report;
}

}  // namespace

int main(int argc, char** argv) {
    norvane_1::ProblemReportStorage report = makeSampleReport();
    std::wstring const text = report.toString();
    std::cout << "---- report text ----\n" << toUtf8(text) << "---- end of report ----\n";
    if (argc > 1) std::ofstream(argv[1], std::ios::binary) << toUtf8(text);

    norvane_1::ProblemReportStorage readBack;
    readBack.fromString(text);
    auto const& exception = readBack.getException();
    std::cout << "Read back: " << toUtf8(exception.description) << " at "
              << toUtf8(norvane_1::string_traits::addrToString(exception.address)) << " in " << toUtf8(exception.module)
              << ", process " << readBack.getCrashedPid() << ", thread " << readBack.getCrashedTid() << ", "
              << readBack.getModuleInfo().size() << " module(s), " << readBack.getStackFramesMap().size()
              << " clean stack(s), product \"" << toUtf8(readBack.getFailedProductName()) << "\"\n";
    // Free text loses the line ends at its ends when it is read; from then on
    // writing and reading give the same text again and again.
    std::wstring const once = readBack.toString();
    norvane_1::ProblemReportStorage twice;
    twice.fromString(once);
    bool const stable = twice.toString() == once;
    std::cout << (stable ? "Read and written again, the text stays the same.\n"
                         : "Read and written again, the text changed!\n");
    return stable ? 0 : 1;
}
