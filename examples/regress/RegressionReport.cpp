// examples/regress/RegressionReport.cpp
#include "examples/regress/RegressionReport.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "kxcommonr/common/foundation/KXMV.h"

namespace kxregress {
namespace {

using KXCommon::KXMV;

// 17 significant digits read back as the same double.
constexpr int kExactDigits = 17;

std::string JsonString(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          char buffer[8];
          std::snprintf(buffer, sizeof buffer, "\\u%04x", static_cast<unsigned>(c));
          out += buffer;
        } else {
          out += c;
        }
    }
  }
  return out + "\"";
}

// A JSON number, or null for the missing value and non-finite values.
std::string JsonNumber(double value) {
  if (KXMV::IsMissing(value) || !std::isfinite(value)) return "null";
  return FormatNumber(value, kExactDigits);
}

// A CSV field: quoted when it holds a comma, quote or line break.
std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"') out += '"';
    out += c;
  }
  return out + "\"";
}

std::string CsvNumber(double value) {
  return KXMV::IsMissing(value) ? std::string() : FormatNumber(value, kExactDigits);
}

std::string CaseCount(double count) { return FormatNumber(count, 15); }

}  // namespace

std::string FormatNumber(double value, int digits) {
  if (KXMV::IsMissing(value)) return "NA";
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.*g", digits, value);
  return buffer;
}

void WriteTextReport(const RegressionFit& fit, std::ostream& out) {
  const std::size_t numPredictors = fit.coefficients.size() - (fit.intercept ? 1 : 0);
  out << "Linear regression of " << fit.targetName << " on " << numPredictors
      << (numPredictors == 1 ? " predictor" : " predictors")
      << (fit.intercept ? ", with intercept" : ", without intercept") << "\n";
  out << "Cases used: " << fit.casesUsed << ", skipped: "
      << fit.casesSkippedCells + fit.casesSkippedWeight << " (" << fit.casesSkippedCells
      << " with an empty or non-numeric cell";
  if (fit.weighted) out << ", " << fit.casesSkippedWeight << " with a weight <= 0";
  out << ")\n";
  if (fit.weighted) {
    out << "Frequency weight: " << fit.weightName << ", sum of weights " << CaseCount(fit.sumWeights)
        << "\n";
  }
  out << "\n";

  // The coefficient table, columns aligned: term left, numbers right.
  std::vector<std::vector<std::string>> rows;
  rows.push_back({"Term", "Estimate", "Std. Error", "t value", "Pr(>|t|)"});
  for (const Coefficient& c : fit.coefficients) {
    if (c.aliased) {
      rows.push_back({c.term, "aliased", "", "", ""});
    } else {
      rows.push_back({c.term, FormatNumber(c.estimate, 15), FormatNumber(c.stdError, 15),
                      FormatNumber(c.tValue, 6), FormatNumber(c.pValue, 4)});
    }
  }
  std::vector<std::size_t> widths(rows.front().size(), 0);
  for (const auto& row : rows) {
    for (std::size_t k = 0; k < row.size(); ++k) widths[k] = std::max(widths[k], row[k].size());
  }
  for (const auto& row : rows) {
    std::string line = row[0] + std::string(widths[0] - row[0].size(), ' ');
    for (std::size_t k = 1; k < row.size(); ++k) {
      line += "  " + std::string(widths[k] - row[k].size(), ' ') + row[k];
    }
    while (!line.empty() && line.back() == ' ') line.pop_back();
    out << line << "\n";
  }
  bool anyAliased = false;
  for (const Coefficient& c : fit.coefficients) anyAliased = anyAliased || c.aliased;
  if (anyAliased) {
    out << "(aliased: a linear combination of the predictors before it, left out of the model)\n";
  }
  out << "\n";

  out << "Residual standard error: " << FormatNumber(fit.residualSd, 15) << " on "
      << CaseCount(fit.residualDf) << " degrees of freedom\n";
  out << (fit.intercept ? "R-squared: " : "R-squared (uncentred): ")
      << FormatNumber(fit.rSquared, 15)
      << ", adjusted R-squared: " << FormatNumber(fit.adjRSquared, 15) << "\n";
  if (KXMV::IsMissing(fit.fStatistic)) {
    out << "F statistic: NA\n";
  } else {
    out << "F statistic: " << FormatNumber(fit.fStatistic, 10) << " on " << fit.rank << " and "
        << CaseCount(fit.residualDf) << " degrees of freedom, p-value: "
        << FormatNumber(fit.fPValue, 4) << "\n";
  }
}

void WriteCsvTable(const RegressionFit& fit, std::ostream& out) {
  out << "term,estimate,std_error,t_value,p_value,aliased\n";
  for (const Coefficient& c : fit.coefficients) {
    out << CsvField(c.term) << ',' << CsvNumber(c.estimate) << ',' << CsvNumber(c.stdError) << ','
        << CsvNumber(c.tValue) << ',' << CsvNumber(c.pValue) << ','
        << (c.aliased ? "true" : "false") << "\n";
  }
}

void WriteJsonReport(const RegressionFit& fit, std::ostream& out) {
  out << "{\n";
  out << "  \"target\": " << JsonString(fit.targetName) << ",\n";
  out << "  \"intercept\": " << (fit.intercept ? "true" : "false") << ",\n";
  out << "  \"weight\": " << (fit.weighted ? JsonString(fit.weightName) : "null") << ",\n";
  out << "  \"cases_used\": " << fit.casesUsed << ",\n";
  out << "  \"cases_skipped_cells\": " << fit.casesSkippedCells << ",\n";
  out << "  \"cases_skipped_weight\": " << fit.casesSkippedWeight << ",\n";
  out << "  \"sum_weights\": " << JsonNumber(fit.sumWeights) << ",\n";
  out << "  \"coefficients\": [";
  for (std::size_t k = 0; k < fit.coefficients.size(); ++k) {
    const Coefficient& c = fit.coefficients[k];
    out << (k == 0 ? "\n" : ",\n");
    out << "    {\"term\": " << JsonString(c.term)
        << ", \"aliased\": " << (c.aliased ? "true" : "false")
        << ", \"estimate\": " << JsonNumber(c.estimate)
        << ", \"std_error\": " << JsonNumber(c.stdError)
        << ", \"t_value\": " << JsonNumber(c.tValue)
        << ", \"p_value\": " << JsonNumber(c.pValue) << "}";
  }
  out << "\n  ],\n";
  out << "  \"rank\": " << fit.rank << ",\n";
  out << "  \"residual_df\": " << JsonNumber(fit.residualDf) << ",\n";
  out << "  \"residual_ss\": " << JsonNumber(fit.rss) << ",\n";
  out << "  \"total_ss\": " << JsonNumber(fit.tss) << ",\n";
  out << "  \"residual_sd\": " << JsonNumber(fit.residualSd) << ",\n";
  out << "  \"r_squared\": " << JsonNumber(fit.rSquared) << ",\n";
  out << "  \"adj_r_squared\": " << JsonNumber(fit.adjRSquared) << ",\n";
  out << "  \"f_statistic\": " << JsonNumber(fit.fStatistic) << ",\n";
  out << "  \"f_p_value\": " << JsonNumber(fit.fPValue) << "\n";
  out << "}\n";
}

void WriteReport(const RegressionFit& fit, ReportFormat format, std::ostream& out) {
  switch (format) {
    case ReportFormat::kText: WriteTextReport(fit, out); break;
    case ReportFormat::kCsv: WriteCsvTable(fit, out); break;
    case ReportFormat::kJson: WriteJsonReport(fit, out); break;
  }
}

}  // namespace kxregress
