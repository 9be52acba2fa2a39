#include <norvane_1/norvane.h>

#include <iostream>

int main() {
    norvane_1::ProblemReportStorage report;
    norvane_1::Exception exception;
    exception.code = 0xC0000005;
    exception.description = L"EXCEPTION_ACCESS_VIOLATION";
    report.setException(exception);
    report.setDumpValue(L"Path", L"crash.dmp");

    norvane_1::ProblemReportStorage copy;
    copy.fromString(report.toString());
    bool const same = copy.getException().code == exception.code && copy.getDumpValue(L"Path") == L"crash.dmp" &&
                      norvane_1::string_traits::addrToString(16) == L"0x0000000000000010";
    std::cout << (same ? "consumer: report read back" : "consumer: report differs") << std::endl;
    return same ? 0 : 1;
}
