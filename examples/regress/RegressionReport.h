// examples/regress/RegressionReport.h
//
// Writers of a RegressionFit: a report for people (text), the coefficient
// table as CSV, and the whole fit as JSON. The machine-readable forms write
// every number with 17 significant digits, so a reader gets back the exact
// doubles; a missing value (an aliased term, an undefined statistic) is an
// empty CSV field or a JSON null.
//
// Thread-compatible: no state.
#ifndef KXCOMMONR_EXAMPLES_REGRESS_REGRESSIONREPORT_H
#define KXCOMMONR_EXAMPLES_REGRESS_REGRESSIONREPORT_H

#include <ostream>
#include <string>

#include "examples/regress/RegressionFit.h"

namespace kxregress {

enum class ReportFormat { kText, kCsv, kJson };

// The number in C's "%.<digits>g", or "NA" for the missing value.
std::string FormatNumber(double value, int digits);

// Cases, coefficient table (estimate, standard error, t value, two-sided
// p-value), residual standard error, R-squared and the overall F test.
void WriteTextReport(const RegressionFit& fit, std::ostream& out);

// Header "term,estimate,std_error,t_value,p_value,aliased", one line per term.
void WriteCsvTable(const RegressionFit& fit, std::ostream& out);

// One JSON object holding the cases, the coefficient table and the summary.
void WriteJsonReport(const RegressionFit& fit, std::ostream& out);

void WriteReport(const RegressionFit& fit, ReportFormat format, std::ostream& out);

}  // namespace kxregress

#endif  // KXCOMMONR_EXAMPLES_REGRESS_REGRESSIONREPORT_H
