#include "sample_reports.h"

#include <vantix_2_18/utf.h>

namespace norvane_test {

using namespace norvane_1;

namespace {

StackFrame makeFrame(std::uint32_t kind, std::uint64_t slot, std::uint64_t address, std::wstring module) {
    StackFrame frame;
    frame.kind = kind;
    frame.stackAddress = slot;
    frame.address = address;
    frame.module = std::move(module);
    return frame;
}

ModuleInfo makeModule(int index) {
    ModuleInfo module;
    module.Base = 0x7ff600000000ULL + static_cast<std::uint64_t>(index) * 0x1000000ULL;
    module.Begin = module.Base + 0x1000;
    module.End = module.Base + 0x800000;
    module.FullName = L"C:\\Program Files\\Sample\\bin64\\module_" + std::to_wstring(index) + L".dll";
    module.SymbolName = L"C:\\symbols\\module_" + std::to_wstring(index) + L".pdb";
    module.Timestamp = 0x5a000000u + static_cast<std::uint64_t>(index);
    module.Size = 0x800000;
    module.Guid.Data1 = 0x3f250000u + static_cast<std::uint32_t>(index);
    module.Guid.Data4[7] = static_cast<std::uint8_t>(index);
    module.Age = 1;
    return module;
}

}  // namespace

ProblemReportStorage makeRichReport() {
    ProblemReportStorage report;
    Exception exception;
    exception.code = 0xC0000005;
    exception.description = L"EXCEPTION_ACCESS_VIOLATION";
    exception.address = 0x7ff6a1b23c40ULL;
    exception.module = L"sample tool.dll";
    report.setException(exception);
    report.setCrashedPid(4120);
    report.setCrashedTid(0x19e8);
    report.setProcBitness(false);
    report.setReportPath(L"C:\\logs\\crash 1\\");
    report.setProductInfo(L"Package ID: N-A\r\nPackage Contents: Sample Tool\r\nBuild Number: 612345\r\n");
    report.setFailedProductName(report.getProductInfo());
    report.setSection(L"Process", L"Process Name: sample.exe\nVirtual Memory Size: 81920K\nWorking Set Size: 20480K\n");
    report.setAppPropertyPool({{L"Theme", gavrel2::variant_t(L"dark")},
                               {L"Zoom", gavrel2::variant_t(1.25)},
                               {L"Tabs", gavrel2::variant_t(3)}});
    report.setDumpValue(L"Path", L"C:\\logs\\crash 1\\crash.dmp");
    report.addPremortalLog({L"first line", fromUtf8(u8"вторая строка")});

    Context context;
    context.EIP = exception.address;
    context.ESP = 0x12f7a0;
    context.R15 = 0xffffffffffffffffULL;
    report.getContextMap()[0x19e8] = context;
    report.getStackMap()[0x19e8] = {{0x12f7a8, 0x7ff6a1b23d10ULL}, {0x12f820, 0x7ff6a1b20004ULL}};
    report.getStackFramesMap()[0x19e8] = {
        makeFrame(4, 0, exception.address, L"sample tool.dll"),
        makeFrame(2, 0x12f7a8, 0x7ff6a1b23d10ULL, L"sample tool.dll"),
        makeFrame(1, 0x12f820, 0x7ff6a1b20004ULL, L""),
    };
    report.getModuleInfo() = {makeModule(0), makeModule(1)};
    report.getModuleInfo()[1].FullName = fromUtf8(u8"C:\\テスト\\модуль.dll");

    report.setSection(L"Aardvark", L"first custom section");
    report.setSection(L"Device Info", fromUtf8(u8"GPU: 中文 😀\nDriver: 1.2"));
    report.setSection(L"CreationLog",
                      L"norvane_1::HandlerState::exportCrashInfo : 2016-03-01-10-22-31-417 : Set crash dump info\n");
    return report;
}

ProblemReportStorage makeLargeReport() {
    struct {
        int modules = 300, threads = 8, cleanFrames = 200, rawSlots = 2500, premortalLines = 100, customSections = 20;
    } const shape;
    ProblemReportStorage report = makeRichReport();
    auto& modules = report.getModuleInfo();
    modules.clear();
    for (int i = 0; i < shape.modules; ++i) modules.push_back(makeModule(i));
    for (int t = 0; t < shape.threads; ++t) {
        auto const tid = static_cast<std::uint32_t>(0x1000 + t);
        Context context;
        context.EIP = 0x7ff6a1b23c40ULL + static_cast<std::uint64_t>(t);
        context.ESP = 0x12f000ULL * static_cast<std::uint64_t>(t + 1);
        report.getContextMap()[tid] = context;
        auto& frames = report.getStackFramesMap()[tid];
        for (int f = 0; f < shape.cleanFrames; ++f) {
            auto const slot = context.ESP + static_cast<std::uint64_t>(f) * 0x28;
            frames.push_back(makeFrame(f == 0 ? 4 : 2, slot, 0x7ff600001000ULL + static_cast<std::uint64_t>(f) * 0x123,
                                       L"module_" + std::to_wstring(f % shape.modules) + L".dll"));
        }
        auto& raw = report.getStackMap()[tid];
        for (int s = 0; s < shape.rawSlots; ++s) {
            raw[context.ESP + static_cast<std::uint64_t>(s) * 8] = 0x7ff600001000ULL +
                                                                   static_cast<std::uint64_t>(s) * 0x77;
        }
    }
    std::vector<std::wstring> lines;
    for (int i = 0; i < shape.premortalLines; ++i) {
        lines.push_back(L"2026-11-22 10:00:00.000 INFO  [main] processing item " + std::to_wstring(i) +
                        L" of the queue, state ok");
    }
    report.addPremortalLog(lines);
    for (int i = 0; i < shape.customSections; ++i) {
        report.setSection(L"Custom " + std::to_wstring(i),
                          L"Key: value " + std::to_wstring(i) + L"\nMore: free text of a host program\n");
    }
    return report;
}

std::string toUtf8(std::wstring const& text) { return VANTIX_2_18::utf::to_utf8(text); }
std::wstring fromUtf8(std::string const& bytes) { return VANTIX_2_18::utf::from_utf8(bytes); }

std::wstring withCrLf(std::wstring const& text) {
    std::wstring out;
    out.reserve(text.size() + text.size() / 16);
    for (wchar_t c : text) {
        if (c == L'\n') out += L'\r';
        out += c;
    }
    return out;
}

}  // namespace norvane_test
