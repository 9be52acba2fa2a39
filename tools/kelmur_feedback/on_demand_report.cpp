#include "on_demand_report.h"

#include "report_summary.h"

#include <iostream>

namespace kelmur_feedback {

int completeOnDemandReport(CollectCommand const& command) {
    if (!readReportText(command.crashInfoFile)) {
        std::cerr << "kelmur-feedback: no report could be read at " << command.crashInfoFile << '\n';
        return 1;
    }
    return 0;
}

}  // namespace kelmur_feedback
