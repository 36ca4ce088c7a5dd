// examples/regress/RegressionFit.cpp
#include "examples/regress/RegressionFit.h"

#include <cmath>
#include <cstdio>
#include <utility>

#include "kxcommonr/common/KXDistFun.h"
#include "kxcommonr/common/KXMV.h"
#include "kxcommonr/common/KXRectMatrix.h"

namespace kxregress {
namespace {

using KXCommon::KXBitSet;
using KXCommon::KXDistFun;
using KXCommon::KXMV;
using KXCommon::KXRectMatrix;
using KXCommon::KXSymMatrix;

bool Fail(FitError& error, FitErrorKind kind, std::string message) {
  error.kind = kind;
  error.message = std::move(message);
  return false;
}

std::string CountText(double count) {
  // Sums of frequency weights are usually whole numbers; print them so.
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.15g", count);
  return buffer;
}

// The columns of the model as the cross-product matrix orders them:
// predictors first, the target last.
struct Layout {
  std::vector<int> columns;
  int weight = -1;
};

// The case weight of a row, or a value <= 0 (0 when a cell is missing) when
// the row cannot take part; sets skippedForCell when a cell is the reason.
double CaseWeight(const double* row, const Layout& layout, bool& skippedForCell) {
  skippedForCell = false;
  for (const int column : layout.columns) {
    if (KXMV::IsMissing(row[column])) {
      skippedForCell = true;
      return 0.0;
    }
  }
  if (layout.weight < 0) return 1.0;
  const double w = row[layout.weight];
  if (KXMV::IsMissing(w)) {
    skippedForCell = true;
    return 0.0;
  }
  return w;
}

// Adds w z z' for every used case, z the case's model columns minus mean.
bool AccumulateCrossProducts(const CsvTable& table, const Layout& layout,
                             const std::vector<double>& weights, const std::vector<double>& mean,
                             int caseBlock, KXSymMatrix& cross) {
  const std::size_t order = layout.columns.size();
  const std::size_t numRows = table.NumRows();
  if (caseBlock <= 0) {
    std::vector<double> centred(order);
    for (std::size_t r = 0; r < numRows; ++r) {
      const double w = weights[r];
      if (w == 0.0) continue;
      const double* row = table.Row(r);
      for (std::size_t k = 0; k < order; ++k) centred[k] = row[layout.columns[k]] - mean[k];
      if (!cross.UpdateXX(centred, w)) return false;
    }
    return true;
  }

  // Blocks of cases: UpdateXXMat2 adds (second(p, i) * 1) * first(p, j) over
  // the cases p in order, so second = w z and first = z give the products
  // c * z_j with c = z_i * w that UpdateXX forms.
  const int numColumns = static_cast<int>(order);
  KXRectMatrix first(caseBlock, numColumns);
  KXRectMatrix second(caseBlock, numColumns);
  std::size_t filled = 0;
  auto flush = [&]() -> bool {
    if (filled == 0) return true;
    if (filled < static_cast<std::size_t>(caseBlock)) {
      // The last, partial block.
      const int rows = static_cast<int>(filled);
      if (!first.Resize(rows, numColumns) || !second.Resize(rows, numColumns)) return false;
    }
    filled = 0;
    return cross.UpdateXXMat2(first, second, 1.0);
  };
  for (std::size_t r = 0; r < numRows; ++r) {
    const double w = weights[r];
    if (w == 0.0) continue;
    const double* row = table.Row(r);
    double* z = first.AsVector().data() + filled * order;
    double* wz = second.AsVector().data() + filled * order;
    for (std::size_t k = 0; k < order; ++k) {
      z[k] = row[layout.columns[k]] - mean[k];
      wz[k] = z[k] * w;
    }
    if (++filled == static_cast<std::size_t>(caseBlock) && !flush()) return false;
  }
  return flush();
}

}  // namespace

bool FitRegression(const CsvTable& table, const RegressionModel& model, RegressionFit& fit,
                   FitError& error) {
  const int numColumns = table.NumColumns();
  auto validColumn = [numColumns](int c) { return c >= 0 && c < numColumns; };
  if (!validColumn(model.target)) return Fail(error, FitErrorKind::kBadModel, "no target column");
  if (model.weight != -1 && !validColumn(model.weight)) {
    return Fail(error, FitErrorKind::kBadModel, "the weight column does not exist");
  }
  for (const int c : model.predictors) {
    if (!validColumn(c)) return Fail(error, FitErrorKind::kBadModel, "a predictor column does not exist");
    if (c == model.target) {
      return Fail(error, FitErrorKind::kBadModel,
                  "the target '" + table.Names()[static_cast<std::size_t>(c)] +
                      "' is also a predictor");
    }
  }
  if (!(model.tol > 0.0)) return Fail(error, FitErrorKind::kBadModel, "the tolerance must be > 0");
  if (model.caseBlock < 0) return Fail(error, FitErrorKind::kBadModel, "the case block must be >= 0");
  if (model.predictors.empty() && !model.intercept) {
    return Fail(error, FitErrorKind::kBadModel, "a model without intercept needs a predictor");
  }

  const int p = static_cast<int>(model.predictors.size());
  const int order = p + 1;  // predictors, then the target
  const std::size_t targetSlot = static_cast<std::size_t>(p);
  Layout layout;
  layout.columns = model.predictors;
  layout.columns.push_back(model.target);
  layout.weight = model.weight;
  const std::size_t numRows = table.NumRows();

  RegressionFit result;
  result.targetName = table.Names()[static_cast<std::size_t>(model.target)];
  result.intercept = model.intercept;
  result.weighted = model.weight >= 0;
  if (result.weighted) result.weightName = table.Names()[static_cast<std::size_t>(model.weight)];

  // Which cases take part, and the sum of their weights.
  std::vector<double> weights(numRows, 0.0);
  double sumWeights = 0.0;
  for (std::size_t r = 0; r < numRows; ++r) {
    bool skippedForCell = false;
    const double w = CaseWeight(table.Row(r), layout, skippedForCell);
    if (skippedForCell) {
      ++result.casesSkippedCells;
    } else if (!(w > 0.0)) {
      ++result.casesSkippedWeight;
    } else {
      weights[r] = w;
      sumWeights += w;
      ++result.casesUsed;
    }
  }
  result.sumWeights = sumWeights;
  if (result.casesUsed == 0) {
    std::string message = "no usable cases";
    if (numRows > 0) {
      message += " (" + std::to_string(result.casesSkippedCells) +
                 " with an empty or non-numeric cell";
      if (result.weighted) {
        message += ", " + std::to_string(result.casesSkippedWeight) + " with a weight <= 0";
      }
      message += ")";
    } else {
      message += " (the file has no data rows)";
    }
    return Fail(error, FitErrorKind::kNoUsableCases, message);
  }
  const int numParameters = p + (model.intercept ? 1 : 0);
  if (sumWeights < numParameters) {
    return Fail(error, FitErrorKind::kTooFewCases,
                "fewer cases (" + CountText(sumWeights) + ") than parameters (" +
                    std::to_string(numParameters) + ")");
  }

  // Weighted means (zero without an intercept, so the same code forms raw
  // cross-products). A second pass adds the mean of the deviations from the
  // first estimate, which recovers the digits a plain sum loses.
  std::vector<double> mean(static_cast<std::size_t>(order), 0.0);
  if (model.intercept) {
    for (int correction = 0; correction < 2; ++correction) {
      std::vector<double> sum(static_cast<std::size_t>(order), 0.0);
      for (std::size_t r = 0; r < numRows; ++r) {
        const double w = weights[r];
        if (w == 0.0) continue;
        const double* row = table.Row(r);
        for (std::size_t k = 0; k < sum.size(); ++k) sum[k] += w * (row[layout.columns[k]] - mean[k]);
      }
      for (std::size_t k = 0; k < sum.size(); ++k) mean[k] += sum[k] / sumWeights;
    }
  }

  KXSymMatrix cross(order);
  if (!AccumulateCrossProducts(table, layout, weights, mean, model.caseBlock, cross)) {
    return Fail(error, FitErrorKind::kLibrary, "the cross-product update refused a case");
  }

  // Sweep the predictors in order; a refused sweep marks an aliased one.
  std::vector<double> origDiag;
  cross.GetDiagonal(origDiag);
  KXBitSet sweptRows(order);
  for (int j = 0; j < p; ++j) cross.Sweep(j, model.tol, origDiag, sweptRows, true);

  std::vector<double> beta(static_cast<std::size_t>(p), 0.0);
  for (int j = 0; j < p; ++j) {
    if (sweptRows.IsIn(j)) beta[static_cast<std::size_t>(j)] = cross.GetElem(p, j);
  }

  // Residuals from the data.
  double rss = 0.0;
  double tss = 0.0;
  for (std::size_t r = 0; r < numRows; ++r) {
    const double w = weights[r];
    if (w == 0.0) continue;
    const double* row = table.Row(r);
    const double y = row[layout.columns[targetSlot]] - mean[targetSlot];
    double fitted = 0.0;
    for (std::size_t k = 0; k < targetSlot; ++k) {
      fitted += beta[k] * (row[layout.columns[k]] - mean[k]);
    }
    const double residual = y - fitted;
    rss += w * residual * residual;
    tss += w * y * y;
  }

  int rank = 0;
  for (int j = 0; j < p; ++j) rank += sweptRows.IsIn(j) ? 1 : 0;
  const double residualDf = sumWeights - rank - (model.intercept ? 1 : 0);
  const double missing = KXMV::Missing();
  const double variance = residualDf > 0.0 ? rss / residualDf : missing;

  auto fillInference = [&](Coefficient& c, double unscaledVariance) {
    c.stdError = missing;
    c.tValue = missing;
    c.pValue = missing;
    if (variance == missing || !(unscaledVariance >= 0.0)) return;
    c.stdError = std::sqrt(variance * unscaledVariance);
    if (!(c.stdError > 0.0)) return;
    c.tValue = c.estimate / c.stdError;
    const double upper = KXDistFun::SigT(std::fabs(c.tValue), residualDf);
    if (!KXMV::IsMissing(upper)) c.pValue = 2.0 * upper;
  };

  if (model.intercept) {
    Coefficient c;
    c.term = "(Intercept)";
    double estimate = mean[targetSlot];
    double quadratic = 0.0;  // mean' (X'X)^-1 mean over the swept predictors
    for (int j = 0; j < p; ++j) {
      if (!sweptRows.IsIn(j)) continue;
      const std::size_t uj = static_cast<std::size_t>(j);
      estimate -= beta[uj] * mean[uj];
      for (int l = 0; l < p; ++l) {
        if (sweptRows.IsIn(l)) quadratic -= mean[uj] * cross.GetElem(j, l) * mean[static_cast<std::size_t>(l)];
      }
    }
    c.estimate = estimate;
    fillInference(c, 1.0 / sumWeights + quadratic);
    result.coefficients.push_back(c);
  }
  for (int j = 0; j < p; ++j) {
    Coefficient c;
    c.term = table.Names()[static_cast<std::size_t>(model.predictors[static_cast<std::size_t>(j)])];
    if (!sweptRows.IsIn(j)) {
      c.aliased = true;
      c.estimate = c.stdError = c.tValue = c.pValue = missing;
    } else {
      c.estimate = beta[static_cast<std::size_t>(j)];
      // The swept diagonal holds minus the inverse's diagonal.
      fillInference(c, -cross.GetElem(j, j));
    }
    result.coefficients.push_back(c);
  }

  result.rank = rank;
  result.residualDf = residualDf;
  result.rss = rss;
  result.tss = tss;
  result.residualSd = variance == missing ? missing : std::sqrt(variance);
  result.rSquared = tss > 0.0 ? 1.0 - rss / tss : missing;
  result.adjRSquared = missing;
  if (result.rSquared != missing && residualDf > 0.0) {
    const double totalDf = sumWeights - (model.intercept ? 1.0 : 0.0);
    result.adjRSquared = 1.0 - (1.0 - result.rSquared) * totalDf / residualDf;
  }
  result.fStatistic = missing;
  result.fPValue = missing;
  if (rank > 0 && residualDf > 0.0 && rss > 0.0) {
    result.fStatistic = ((tss - rss) / rank) / (rss / residualDf);
    result.fPValue = KXDistFun::SigF(result.fStatistic, rank, residualDf);
  }
  result.swept = std::move(cross);
  result.sweptRows = std::move(sweptRows);
  fit = std::move(result);
  return true;
}

}  // namespace kxregress
