// Opens the protected codecs of ProblemReportStorage to the tests.
#pragma once

#include <norvane_1/problem_report_storage.h>

namespace norvane_test {

class ReportProbe : public norvane_1::ProblemReportStorage {
public:
    using ProblemReportStorage::findNextSection;
    using ProblemReportStorage::getModulePath;
    using ProblemReportStorage::removeModule;
    using ProblemReportStorage::getSection;
    using ProblemReportStorage::guidToString;
    using ProblemReportStorage::parseModuleMap;
    using ProblemReportStorage::processAssertionToString;
    using ProblemReportStorage::processContextsToString;
    using ProblemReportStorage::processExceptionToString;
    using ProblemReportStorage::processModuleMapToSections;
    using ProblemReportStorage::processProcessDumpToString;
    using ProblemReportStorage::processStacksToString;
    using ProblemReportStorage::processStringToAssertion;
    using ProblemReportStorage::processStringToContexts;
    using ProblemReportStorage::processStringToException;
    using ProblemReportStorage::processStringToProcessDump;
    using ProblemReportStorage::processStringToStacks;
    using ProblemReportStorage::stringToGuid;
};

}  // namespace norvane_test
