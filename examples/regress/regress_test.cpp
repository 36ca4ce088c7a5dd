// examples/regress/regress_test.cpp
//
// The regression program against the NIST StRD certified values (read from
// examples/data/certified.json, measured by log relative error), properties of
// the fit checked against independent computations (replicated cases for
// frequency weights, shifted predictors for the centring, an exact linear
// combination for aliasing, closed-form p-values), the CSV reader, and the
// program's outputs and messages.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "examples/regress/CsvTable.h"
#include "examples/regress/RegressCommand.h"
#include "examples/regress/RegressionFit.h"
#include "examples/regress/RegressionReport.h"
#include "examples/regress/TestJson.h"
#include "kxcommonr/common/foundation/KXMV.h"

namespace kxregress {
namespace {

using KXCommon::KXMV;
using kxtestjson::Value;

std::string DataPath(const std::string& name) {
  return std::string(KX_TEST_DATA_DIR) + "/examples/data/" + name;
}

// The certified values of one dataset (null when certified.json lacks it).
const Value& Certified(const std::string& dataset) {
  static const Value root = [] {
    std::ifstream in(DataPath("certified.json"), std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    Value parsed;
    if (!Value::Parse(text.str(), parsed)) parsed = Value();
    return parsed;
  }();
  return root["datasets"][dataset];
}

// Log relative error: the number of significant digits on which the value
// agrees with the certified one (capped at 15; absolute error for a zero).
double Lre(double value, double certified) {
  if (KXMV::IsMissing(value) || !std::isfinite(value)) return 0.0;
  const double error = certified == 0.0 ? std::fabs(value)
                                        : std::fabs(value - certified) / std::fabs(certified);
  return error == 0.0 ? 15.0 : std::min(15.0, -std::log10(error));
}

CsvTable Read(const std::string& name) {
  CsvTable table;
  std::string error;
  EXPECT_TRUE(table.ReadFile(DataPath(name), error)) << error;
  return table;
}

CsvTable Parsed(const std::string& text) {
  CsvTable table;
  std::string error;
  EXPECT_TRUE(table.Parse(text, error)) << error;
  return table;
}

RegressionModel Model(int target, std::vector<int> predictors, int weight = -1) {
  RegressionModel model;
  model.target = target;
  model.predictors = std::move(predictors);
  model.weight = weight;
  return model;
}

// The model of a certified dataset as the program takes it.
RegressionModel CertifiedModel(const CsvTable& table, const Value& certified) {
  RegressionModel model = Model(table.FindColumn("y"), {});
  for (const std::string& name : certified["model"]["columns"].Strings()) {
    model.predictors.push_back(table.FindColumn(name));
  }
  model.intercept = certified["model"]["intercept"].Bool();
  return model;
}

::testing::AssertionResult Fits(const CsvTable& table, const RegressionModel& model,
                                RegressionFit& fit) {
  FitError error;
  if (FitRegression(table, model, fit, error)) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << error.message;
}

CsvTable Table(std::vector<std::string> names, std::vector<double> cells) {
  CsvTable table;
  EXPECT_TRUE(table.Assign(std::move(names), std::move(cells)));
  return table;
}

// Bit for bit the same coefficients, standard errors and residual sum of squares.
void ExpectSameFit(const RegressionFit& a, const RegressionFit& b) {
  ASSERT_EQ(a.coefficients.size(), b.coefficients.size());
  for (std::size_t k = 0; k < a.coefficients.size(); ++k) {
    EXPECT_EQ(a.coefficients[k].estimate, b.coefficients[k].estimate) << a.coefficients[k].term;
    EXPECT_EQ(a.coefficients[k].stdError, b.coefficients[k].stdError) << a.coefficients[k].term;
  }
  EXPECT_EQ(a.rss, b.rss);
}

// A 64-bit LCG: uniform doubles in [0, 1), the same on every platform.
struct Lcg {
  std::uint64_t state;
  std::uint64_t Next() { return state = state * 6364136223846793005ULL + 1442695040888963407ULL; }
  double Uniform() { return static_cast<double>(Next() >> 11) * 0x1.0p-53; }
};

struct Accuracy {
  const char* dataset;
  double coefficientDigits, stdErrorDigits, summaryDigits;  // summary: SD, R-squared, RSS
};

class CertifiedFit : public ::testing::TestWithParam<Accuracy> {};

// Case by case through UpdateXX, and through UpdateXXMat2 in blocks of 5
// cases (the last block partial), which adds the same products in the same
// order: the same fit bit for bit.
TEST_P(CertifiedFit, MatchesCertifiedValues) {
  const Accuracy& target = GetParam();
  const Value& certified = Certified(target.dataset);
  ASSERT_FALSE(certified.IsNull()) << "certified.json lacks " << target.dataset;
  const CsvTable table = Read(certified["csv"].String());
  ASSERT_EQ(table.NumRows(), static_cast<std::size_t>(certified["observations"].Number()));
  const std::vector<double> coefficients = certified["coefficients"].Numbers();
  const std::vector<double> stdErrors = certified["std_errors"].Numbers();
  const Value& anova = certified["anova"];
  RegressionModel model = CertifiedModel(table, certified);
  RegressionFit fits[2];
  for (RegressionFit& fit : fits) {
    model.caseBlock = &fit == fits ? 0 : 5;
    SCOPED_TRACE("case block " + std::to_string(model.caseBlock));
    ASSERT_TRUE(Fits(table, model, fit));
    ASSERT_EQ(fit.coefficients.size(), coefficients.size());
    for (std::size_t k = 0; k < coefficients.size(); ++k) {
      const Coefficient& c = fit.coefficients[k];
      EXPECT_FALSE(c.aliased) << c.term;
      EXPECT_GE(Lre(c.estimate, coefficients[k]), target.coefficientDigits) << c.term;
      EXPECT_GE(Lre(c.stdError, stdErrors[k]), target.stdErrorDigits) << c.term;
    }
    EXPECT_GE(Lre(fit.residualSd, certified["residual_sd"].Number()), target.summaryDigits);
    EXPECT_GE(Lre(fit.rSquared, certified["r_squared"].Number()), target.summaryDigits);
    EXPECT_GE(Lre(fit.rss, anova["residual_ss"].Number()), target.summaryDigits);
    EXPECT_EQ(fit.residualDf, anova["residual_df"].Number());
    EXPECT_EQ(fit.rank, static_cast<int>(anova["regression_df"].Number()));
    if (!anova["f_statistic"].IsNull()) {
      EXPECT_GE(Lre(fit.fStatistic, anova["f_statistic"].Number()), target.summaryDigits - 1.0);
    }
    // The F p-value is the upper tail of the statistic, hence in [0, 1].
    EXPECT_TRUE(!KXMV::IsMissing(fit.fPValue) && fit.fPValue >= 0.0 && fit.fPValue <= 1.0);
  }
  ExpectSameFit(fits[1], fits[0]);
}

INSTANTIATE_TEST_SUITE_P(Nist, CertifiedFit,
                         ::testing::Values(Accuracy{"Longley", 11, 12, 12},
                                           Accuracy{"Norris", 12, 12, 12},
                                           Accuracy{"NoInt1", 14, 13, 13},
                                           Accuracy{"NoInt2", 14, 13, 13}),
                         [](const ::testing::TestParamInfo<Accuracy>& info) {
                           return std::string(info.param.dataset);
                         });

// The program run in-process: its exit code and what it wrote.
struct ProgramRun {
  int code;
  std::string out, err;
};
ProgramRun RunProgram(const std::vector<std::string>& args) {
  std::ostringstream out, err;
  const int code = RunRegress(args, out, err);
  return {code, out.str(), err.str()};
}

// The default model (target the first column, every other column a predictor)
// is Longley's certified one. JSON and CSV write 17 digits, which give back
// every double of the fit; the text report (with the library's displays)
// names every part.
TEST(RegressProgram, ReportsCarryTheFit) {
  const CsvTable longley = Read("Longley.csv");
  RegressionFit fit;
  ASSERT_TRUE(Fits(longley, CertifiedModel(longley, Certified("Longley")), fit));
  const ProgramRun json = RunProgram({DataPath("Longley.csv"), "--format", "json"});
  const ProgramRun csv = RunProgram({DataPath("Longley.csv"), "--format=csv"});
  ASSERT_EQ(json.code + csv.code, 0) << json.err << csv.err;
  Value report;
  ASSERT_TRUE(Value::Parse(json.out, report)) << json.out;
  const CsvTable table = Parsed(csv.out);
  EXPECT_EQ(report["target"].String(), "y");
  EXPECT_EQ(report["cases_used"].Number(), 16.0);
  const Value& rows = report["coefficients"];
  ASSERT_EQ(rows.Size(), fit.coefficients.size());
  ASSERT_EQ(table.NumRows(), fit.coefficients.size());
  const std::pair<const char*, double Coefficient::*> columns[] = {
      {"estimate", &Coefficient::estimate}, {"std_error", &Coefficient::stdError},
      {"t_value", &Coefficient::tValue}, {"p_value", &Coefficient::pValue}};
  for (std::size_t k = 0; k < rows.Size(); ++k) {
    EXPECT_EQ(rows[k]["term"].String(), fit.coefficients[k].term);
    for (const auto& [name, member] : columns) {
      EXPECT_EQ(rows[k][name].Number(), fit.coefficients[k].*member) << k << name;
      EXPECT_EQ(table.At(k, table.FindColumn(name)), fit.coefficients[k].*member) << k << name;
    }
  }
  const std::pair<const char*, double> summary[] = {{"residual_sd", fit.residualSd},
                                                    {"r_squared", fit.rSquared},
                                                    {"f_statistic", fit.fStatistic},
                                                    {"f_p_value", fit.fPValue}};
  for (const auto& [name, value] : summary) EXPECT_EQ(report[name].Number(), value) << name;

  const ProgramRun text = RunProgram({DataPath("Longley.csv"), "--display"});
  ASSERT_EQ(text.code, 0) << text.err;
  EXPECT_TRUE(text.err.empty()) << text.err;
  for (const char* expected :
       {"Cases used: 16, skipped: 0", "(Intercept)", "Residual standard error:",
        "on 9 degrees of freedom", "adjusted R-squared:", "F statistic:", "on 6 and 9",
        "KXSymMatrix full matrix display start", "KXBitSet display start"}) {
    EXPECT_NE(text.out.find(expected), std::string::npos) << expected << "\n" << text.out;
  }
  EXPECT_EQ(text.out.find("aliased"), std::string::npos);
}

TEST(RegressProgram, RefusesBadInputWithOneLineMessages) {
  const std::string longley = DataPath("Longley.csv");
  // Small files in the working directory (the test's build directory).
  const std::string noUsable = "regress_test_no_usable.csv", tooFew = "regress_test_too_few.csv",
                    textColumn = "regress_test_text_column.csv";
  std::ofstream(noUsable) << "y,x\n1,\n,2\nNA,3\n";
  std::ofstream(tooFew) << "y,a,b,c\n1,2,3,4\n2,3,5,7\n";
  std::ofstream(textColumn) << "id,y,x\nA,1,2\nB,3,4\nC,4,4\n";
  const struct { std::vector<std::string> args; int exitCode; const char* message; } cases[] = {
      {{DataPath("NoSuchFile.csv")}, 1, "cannot open"},
      {{longley, "-x", "x1,x9"}, 1, "unknown column 'x9'"},
      {{longley, "-y", "income"}, 1, "unknown column 'income'"},
      {{longley, "-w", "weights"}, 1, "unknown column 'weights'"},
      {{noUsable, "-x", "x"}, 1, "no usable cases (3 with an empty or non-numeric cell)"},
      {{textColumn}, 1, "column 'id' holds no numbers (the first column is the default target"},
      {{textColumn, "-y", "y", "-x", "id"}, 1, "column 'id' holds no numbers"},
      {{tooFew}, 1, "fewer cases (2) than parameters (4)"},
      {{DataPath("NoInt2.csv"), "--no-intercept", "-x", "x1", "-w", "y"}, 1, "weight"},
      {{longley, "--bogus"}, 2, "unknown option '--bogus'"},
      {{longley, "--tol", "-1"}, 2, "--tol"},
      {{longley, "--format", "xml"}, 2, "--format"},
      {{}, 2, "no input file"},
      {{longley, "-x", "x1,y"}, 1, "cannot also be a predictor"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.args.empty() ? std::string("(none)") : c.args.back());
    const ProgramRun run = RunProgram(c.args);
    EXPECT_EQ(run.code, c.exitCode);
    EXPECT_EQ(run.err.rfind("kxregress: ", 0), 0u) << run.err;
    EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_TRUE(run.out.empty()) << run.out;
  }
  const ProgramRun help = RunProgram({"--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_EQ(help.out.rfind("Usage: kxregress", 0), 0u);
  for (const std::string& file : {noUsable, tooFew, textColumn}) std::remove(file.c_str());
}

// Every refusal names its kind, and a failed fit leaves the result alone.
TEST(RegressFit, RefusesUnfittableData) {
  const struct { const char* csv; int block; FitErrorKind kind; const char* message; } cases[] = {
      {"y,x,w\n1,,1\n2,abc,1\n3,4,0\n", 0, FitErrorKind::kNoUsableCases,
       "2 with an empty or non-numeric cell, 1 with a weight <= 0"},
      // Weights count cases: one case of weight 1.5 is fewer than 2 parameters.
      {"y,x,w\n1,2,1.5\n", 0, FitErrorKind::kTooFewCases, "fewer cases (1.5)"},
      // Squares beyond the double range are refused, not reported as aliasing.
      {"y,x,w\n1,1e200,1\n2,3e200,1\n4,2e200,1\n", 0, FitErrorKind::kOverflow, "column 'x'"},
      {"y,x,w\n1,1,1\n2,3,1\n4,2,1\n", -1, FitErrorKind::kBadModel, "case block"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.csv);
    RegressionModel model = Model(0, {1}, 2);
    model.caseBlock = c.block;
    RegressionFit fit;
    fit.casesUsed = 77;
    FitError error;
    EXPECT_FALSE(FitRegression(Parsed(c.csv), model, fit, error));
    EXPECT_EQ(error.kind, c.kind);
    EXPECT_NE(error.message.find(c.message), std::string::npos) << error.message;
    EXPECT_TRUE(fit.coefficients.empty() && fit.casesUsed == 77);
  }
}

// Variants of Norris that must give Norris's fit: whole frequency weights that
// of each case repeated that many times (to the rounding of either); blocks of
// weighted cases through UpdateXXMat2 the case-by-case fit bit for bit, as do
// incomplete cases and non-positive weights, skipped and counted; and x times
// 10 plus 1e9 (a large mean, a small spread, as a year) a tenth of the slope:
// the cross-products are centred, so it does not look like a multiple of the
// intercept (from raw cross-products its residual share would be about 1e-11,
// below the tolerance).
TEST(RegressFit, NorrisVariantsGiveNorrisFit) {
  const CsvTable norris = Read("Norris.csv");
  std::vector<double> weightedCells, replicatedCells, shiftedCells;
  std::ostringstream dirty;
  dirty << "y,x1,w,note\n";
  for (std::size_t r = 0; r < norris.NumRows(); ++r) {
    const double y = norris.At(r, 0), x = norris.At(r, 1), weight = static_cast<double>(1 + r % 3);
    weightedCells.insert(weightedCells.end(), {y, x, weight});
    for (int copy = 0; copy < static_cast<int>(weight); ++copy) {
      replicatedCells.insert(replicatedCells.end(), {y, x, 1.0});
    }
    // Norris's x has one decimal: 10 x is an integer and the sum is exact.
    const double scaled = std::round(x * 10.0);
    ASSERT_LT(std::fabs(scaled - x * 10.0), 1e-9);
    shiftedCells.insert(shiftedCells.end(), {y, scaled + 1e9, 1.0});
    dirty << FormatNumber(y, 17) << ',' << FormatNumber(x, 17) << ",1,ok\n";
    if (r % 5 == 0) dirty << "7,,1,empty x\n";
    if (r % 7 == 0) dirty << "NA,3,1,text y\n";
    if (r % 9 == 0) dirty << "5,3,0,zero weight\n";
    if (r % 11 == 0) dirty << "5,3,-2,negative weight\n";
  }
  const CsvTable weightedTable = Table({"y", "x1", "w"}, weightedCells);
  RegressionModel model = Model(0, {1}, 2);
  RegressionFit weighted, replicated, skipped, clean, shifted;
  ASSERT_TRUE(Fits(weightedTable, model, weighted));
  ASSERT_TRUE(Fits(Table({"y", "x1", "w"}, replicatedCells), model, replicated));
  ASSERT_TRUE(Fits(Parsed(dirty.str()), model, skipped));
  ASSERT_TRUE(Fits(norris, Model(0, {1}), clean));
  ASSERT_TRUE(Fits(Table({"y", "x1", "w"}, shiftedCells), Model(0, {1}), shifted));

  EXPECT_EQ(weighted.casesUsed, norris.NumRows());
  EXPECT_EQ(weighted.sumWeights, static_cast<double>(replicated.casesUsed));
  EXPECT_EQ(weighted.residualDf, replicated.residualDf);
  // Norris's small intercept is the most sensitive value (the unweighted fit
  // gets it to about 12.8 digits), so the two agree to somewhat fewer digits
  // than each has.
  for (std::size_t k = 0; k < weighted.coefficients.size(); ++k) {
    const Coefficient &a = weighted.coefficients[k], &b = replicated.coefficients[k];
    EXPECT_GE(Lre(a.estimate, b.estimate), 11.5) << a.term;
    EXPECT_GE(Lre(a.stdError, b.stdError), 12.0) << a.term;
    EXPECT_GE(Lre(a.pValue, b.pValue), 10.0) << a.term;
  }
  EXPECT_GE(Lre(weighted.residualSd, replicated.residualSd), 12.0);
  EXPECT_GE(Lre(weighted.fStatistic, replicated.fStatistic), 10.0);
  for (const int caseBlock : {1, 7, 5000}) {
    SCOPED_TRACE(caseBlock);
    model.caseBlock = caseBlock;
    RegressionFit byBlock;
    ASSERT_TRUE(Fits(weightedTable, model, byBlock));
    ExpectSameFit(byBlock, weighted);
  }

  EXPECT_EQ(skipped.casesUsed, norris.NumRows());
  EXPECT_EQ(skipped.casesSkippedCells, 8u + 6u);
  EXPECT_EQ(skipped.casesSkippedWeight, 4u + 4u);
  ExpectSameFit(skipped, clean);

  ASSERT_FALSE(shifted.coefficients[1].aliased);
  const Value& certified = Certified("Norris");
  EXPECT_GE(Lre(shifted.coefficients[1].estimate * 10.0, certified["coefficients"][1].Number()),
            12.0);
  EXPECT_GE(Lre(shifted.coefficients[1].stdError * 10.0, certified["std_errors"][1].Number()),
            12.0);
  EXPECT_GE(Lre(shifted.residualSd, certified["residual_sd"].Number()), 12.0);
  EXPECT_GE(Lre(shifted.rSquared, certified["r_squared"].Number()), 12.0);
}

// A constant column has a zero centred sum of squares, up to the rounding of
// its mean: whatever that rounding, the column alone is aliased and the
// other predictor is estimated.
TEST(RegressFit, ConstantColumnIsAliasedWhateverItsRounding) {
  Lcg rng{7};
  for (int trial = 0; trial < 400; ++trial) {
    const double constant = (rng.Uniform() - 0.5) * std::pow(10.0, trial % 13 - 6);
    std::vector<double> cells;
    for (int r = 0; r < 3 + trial % 9; ++r) {
      cells.insert(cells.end(), {rng.Uniform(), static_cast<double>(r) + rng.Uniform(), constant,
                                 1.0 + std::floor(rng.Uniform() * 3.0)});
    }
    RegressionFit fit;
    ASSERT_TRUE(Fits(Table({"y", "x", "c", "w"}, cells), Model(0, {1, 2}, trial % 2 ? -1 : 3),
                     fit));
    EXPECT_TRUE(!fit.coefficients[1].aliased && fit.coefficients[2].aliased && fit.rank == 1)
        << "constant " << constant << " trial " << trial;
  }
}

// With 1 and 2 residual degrees of freedom the t distribution has closed
// forms: P(|T| > t) = 1 - 2 atan(t) / pi and 1 - t / sqrt(2 + t^2). With one
// predictor the F test is the square of its t test, with the same p-value.
TEST(RegressFit, PValuesMatchClosedForms) {
  const double pi = 3.14159265358979323846;
  const std::pair<const char*, double> cases[] = {{"y,x\n1,1\n2,2.5\n4,3\n", 1.0},
                                                  {"y,x\n1,1\n2,2.5\n4,3\n3,4.5\n", 2.0}};
  for (const auto& [csv, df] : cases) {
    RegressionFit fit;
    ASSERT_TRUE(Fits(Parsed(csv), Model(0, {1}), fit));
    ASSERT_EQ(fit.residualDf, df);
    for (const Coefficient& coefficient : fit.coefficients) {
      const double t = std::fabs(coefficient.tValue);
      const double expected = df == 1.0 ? 1.0 - 2.0 * std::atan(t) / pi
                                        : 1.0 - t / std::sqrt(2.0 + t * t);
      EXPECT_NEAR(coefficient.pValue, expected, 1e-13) << coefficient.term << " df " << df;
    }
    EXPECT_NEAR(fit.fStatistic, fit.coefficients[1].tValue * fit.coefficients[1].tValue,
                1e-12 * fit.fStatistic);
    EXPECT_NEAR(fit.fPValue, fit.coefficients[1].pValue, 1e-13);
  }
}

// Longley with x7 = x1 + x2 (exact in doubles) after them, and a constant
// column: both refused by the sweep, reported aliased, and the rest of the fit
// is the certified one.
TEST(RegressFit, AliasedPredictorsAreReportedNotEstimated) {
  const CsvTable longley = Read("Longley.csv");
  std::vector<double> cells;
  for (std::size_t r = 0; r < longley.NumRows(); ++r) {
    for (int c = 0; c < longley.NumColumns(); ++c) cells.push_back(longley.At(r, c));
    cells.insert(cells.end(), {longley.At(r, 1) + longley.At(r, 2), 42.0});
  }
  std::vector<std::string> names = longley.Names();
  names.insert(names.end(), {"x7", "constant"});
  RegressionFit fit;
  ASSERT_TRUE(Fits(Table(names, cells), Model(0, {1, 2, 3, 7, 8, 4, 5, 6}), fit));
  EXPECT_EQ(fit.rank, 6);
  EXPECT_EQ(fit.residualDf, 9.0);
  ASSERT_EQ(fit.coefficients.size(), 9u);
  EXPECT_TRUE(fit.coefficients[4].aliased && fit.coefficients[5].aliased);
  EXPECT_TRUE(KXMV::IsMissing(fit.coefficients[4].estimate));
  EXPECT_FALSE(fit.sweptRows.IsIn(3) || fit.sweptRows.IsIn(4));
  const Value& certified = Certified("Longley");
  const std::size_t ours[] = {0, 1, 2, 3, 6, 7, 8};
  for (std::size_t k = 0; k < 7; ++k) {
    EXPECT_GE(Lre(fit.coefficients[ours[k]].estimate, certified["coefficients"][k].Number()), 11.0)
        << k;
    EXPECT_GE(Lre(fit.coefficients[ours[k]].stdError, certified["std_errors"][k].Number()), 11.0)
        << k;
  }
  std::ostringstream text;
  WriteTextReport(fit, text);
  EXPECT_NE(text.str().find("aliased"), std::string::npos);
}

TEST(CsvTable, ParsesQuotesMissingCellsAndLineEnds) {
  const CsvTable table = Parsed(
      "\xEF\xBB\xBF" "a, \"b,c\" ,d\r\n1, 2.5 ,\"3\"\r\n\r\n+4,x,\n-1e3,\"\"\"q\"\"\"\n5,6,7");
  ASSERT_EQ(table.NumColumns(), 3);
  ASSERT_EQ(table.NumRows(), 4u);
  EXPECT_EQ(table.Names()[0], "a");
  EXPECT_EQ(table.FindColumn("b,c"), 1);
  EXPECT_EQ(table.FindColumn("B,C"), -1);
  // The text x, the text "q" in quotes and a short row's end are missing.
  const double miss = KXMV::Missing();
  const std::vector<double> cells = {1, 2.5, 3, 4, miss, miss, -1000, miss, miss, 5, 6, 7};
  for (std::size_t i = 0; i < cells.size(); ++i) EXPECT_EQ(table.At(i / 3, i % 3), cells[i]) << i;
  EXPECT_EQ(std::vector<std::size_t>({table.NumericCount(1), table.NonNumericCount(1),
                                      table.NonNumericCount(2)}),
            std::vector<std::size_t>({2, 2, 0}));
}

// A refused text reports the line and leaves the table as it was; so does a
// file that cannot be read.
TEST(CsvTable, RejectsMalformedTextWithTheLine) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "empty"},
      {"\n\n", "empty"},
      {"a,,c\n1,2,3\n", "line 1: column 2 of the header has no name"},
      {"a,b,a\n", "line 1: column name 'a' appears twice"},
      {"a,b\n1,2\n\n3,4,5\n", "line 4: more fields than the 2 columns"},
      {"a,b\n1,\"2\n", "unterminated"},
      {"a,b\n1,\"2\"x\n", "line 2: unterminated or malformed"},
  };
  for (const auto& [text, message] : cases) {
    CsvTable table;
    ASSERT_TRUE(table.Assign({"keep"}, {1.0}));
    std::string error;
    EXPECT_FALSE(table.Parse(text, error)) << text;
    EXPECT_NE(error.find(message), std::string::npos) << error;
    EXPECT_TRUE(table.NumRows() == 1u && table.Names()[0] == "keep") << text;
  }
  CsvTable table;
  std::string error;
  EXPECT_FALSE(table.ReadFile(DataPath("does-not-exist.csv"), error));
  EXPECT_NE(error.find("cannot open '"), std::string::npos) << error;
  EXPECT_NE(error.find("no such file"), std::string::npos) << error;
  error.clear();
  EXPECT_FALSE(table.ReadFile(std::string(KX_TEST_DATA_DIR) + "/examples/data", error));
  EXPECT_FALSE(error.empty());
  EXPECT_EQ(table.NumColumns(), 0);
}

// Random text from the characters that matter to the parser: it either
// fails with a message or gives a rectangular table of numbers and missing
// values (run under the sanitizers, this also checks that no read strays).
TEST(CsvTable, ArbitraryTextNeverBreaksTheReader) {
  const char alphabet[] = {',', '"', '\n', '\r', ' ', '1', '.', 'e', '-', '+', 'a', '\t'};
  Lcg rng{99};
  for (int trial = 0; trial < 3000; ++trial) {
    std::string text;
    for (int i = 0; i < trial % 40; ++i) text += alphabet[(rng.Next() >> 33) % sizeof alphabet];
    CsvTable table;
    std::string error;
    if (!table.Parse(text, error)) {
      EXPECT_TRUE(!error.empty() && table.NumColumns() == 0) << text;
      continue;
    }
    ASSERT_GT(table.NumColumns(), 0) << text;
    for (std::size_t r = 0; r < table.NumRows(); ++r) {
      for (int c = 0; c < table.NumColumns(); ++c) {
        EXPECT_TRUE(KXMV::IsMissing(table.At(r, c)) || std::isfinite(table.At(r, c))) << text;
      }
    }
  }
}

TEST(CsvTable, NumbersRoundTripAndNonNumbersAreRefused) {
  const std::pair<const char*, double> good[] = {
      {"0.1", 0.1}, {" \t-2.5e-3 ", -2.5e-3}, {"+7", 7.0},
      {"4.9406564584124654e-324", 4.9406564584124654e-324}};
  for (const auto& [text, expected] : good) {
    double value = 0.0;
    EXPECT_TRUE(ParseNumber(text, value) && value == expected) << text;
  }
  double value = 9.0;
  for (const char* bad : {"", " ", "+", "+-1", "1.2.3", "1e", "abc", "0x10", "inf", "nan",
                          "-Infinity", "1e400", "1,5", "--1", "2 3"}) {
    EXPECT_FALSE(ParseNumber(bad, value)) << bad;
  }
  EXPECT_EQ(value, 9.0);
  // Every finite double written with 17 digits is read back exactly.
  Lcg rng{12345};
  for (int i = 0; i < 2000; ++i) {
    const std::uint64_t bits = (rng.Next() >> 2) & 0x7FEFFFFFFFFFFFFFULL;
    double x = 0.0, back = 0.0;
    std::memcpy(&x, &bits, sizeof x);
    ASSERT_TRUE(ParseNumber(FormatNumber(x, 17), back)) << FormatNumber(x, 17);
    EXPECT_EQ(back, x);
  }
}

}  // namespace
}  // namespace kxregress
