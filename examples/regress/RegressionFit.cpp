// examples/regress/RegressionFit.cpp
#include "examples/regress/RegressionFit.h"

#include <cmath>
#include <utility>

#include "examples/regress/RegressionReport.h"
#include "kxcommonr/common/dist/KXDistFun.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/rectmatrix/KXRectMatrix.h"

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

// The columns of the model as the cross-product matrix orders them:
// predictors first, the target last.
struct Layout {
  std::vector<int> columns;
  int weight = -1;
};

// The case weight of a row, or a value <= 0 (0 when a cell is missing) when
// the row cannot take part; sets skippedForCell when a cell is the reason (a
// missing or non-finite value, which tables built in memory may hold).
double CaseWeight(const double* row, const Layout& layout, bool& skippedForCell) {
  skippedForCell = false;
  for (const int column : layout.columns) {
    if (KXMV::IsMissing(row[column]) || !std::isfinite(row[column])) {
      skippedForCell = true;
      return 0.0;
    }
  }
  if (layout.weight < 0) return 1.0;
  const double w = row[layout.weight];
  if (KXMV::IsMissing(w) || !std::isfinite(w)) {
    skippedForCell = true;
    return 0.0;
  }
  return w;
}

// Adds w z z' for every used case, z the case's model columns minus mean,
// and sets deviation to the sums of w z.
bool AccumulateCrossProducts(const CsvTable& table, const Layout& layout,
                             const std::vector<double>& weights, const std::vector<double>& mean,
                             int caseBlock, KXSymMatrix& cross, std::vector<double>& deviation) {
  const std::size_t order = layout.columns.size();
  const std::size_t numRows = table.NumRows();
  deviation.assign(order, 0.0);
  if (caseBlock <= 0) {
    std::vector<double> centred(order);
    for (std::size_t r = 0; r < numRows; ++r) {
      const double w = weights[r];
      if (w == 0.0) continue;
      const double* row = table.Row(r);
      for (std::size_t k = 0; k < order; ++k) {
        centred[k] = row[layout.columns[k]] - mean[k];
        deviation[k] += w * centred[k];
      }
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
      deviation[k] += w * z[k];
    }
    if (++filled == static_cast<std::size_t>(caseBlock) && !flush()) return false;
  }
  return flush();
}

// Refuses column indices outside the table and contradictory models.
bool CheckModel(const CsvTable& table, const RegressionModel& model, FitError& error) {
  const int numColumns = table.NumColumns();
  auto validColumn = [numColumns](int c) { return c >= 0 && c < numColumns; };
  if (!validColumn(model.target)) return Fail(error, FitErrorKind::kBadModel, "no target column");
  if (model.weight != -1 && !validColumn(model.weight)) {
    return Fail(error, FitErrorKind::kBadModel, "the weight column does not exist");
  }
  for (const int c : model.predictors) {
    if (!validColumn(c)) {
      return Fail(error, FitErrorKind::kBadModel, "a predictor column does not exist");
    }
    if (c == model.target) {
      return Fail(error, FitErrorKind::kBadModel,
                  "the target '" + table.Names()[static_cast<std::size_t>(c)] +
                      "' is also a predictor");
    }
  }
  if (!(model.tol > 0.0)) return Fail(error, FitErrorKind::kBadModel, "the tolerance must be > 0");
  if (model.caseBlock < 0) {
    return Fail(error, FitErrorKind::kBadModel, "the case block must be >= 0");
  }
  if (model.predictors.empty() && !model.intercept) {
    return Fail(error, FitErrorKind::kBadModel, "a model without intercept needs a predictor");
  }
  return true;
}

// Sets the weight of every usable case (0 for the others), counts the cases
// in fit, and returns the weighted sums of the model columns.
std::vector<double> SelectCases(const CsvTable& table, const Layout& layout,
                                std::vector<double>& weights, RegressionFit& fit) {
  const std::size_t order = layout.columns.size();
  std::vector<double> sum(order, 0.0);
  weights.assign(table.NumRows(), 0.0);
  double sumWeights = 0.0;
  for (std::size_t r = 0; r < table.NumRows(); ++r) {
    const double* row = table.Row(r);
    bool skippedForCell = false;
    const double w = CaseWeight(row, layout, skippedForCell);
    if (skippedForCell) {
      ++fit.casesSkippedCells;
    } else if (!(w > 0.0)) {
      ++fit.casesSkippedWeight;
    } else {
      weights[r] = w;
      sumWeights += w;
      ++fit.casesUsed;
      for (std::size_t k = 0; k < order; ++k) sum[k] += w * row[layout.columns[k]];
    }
  }
  fit.sumWeights = sumWeights;
  return sum;
}

std::string NoUsableCasesMessage(const RegressionFit& fit, std::size_t numRows) {
  if (numRows == 0) return "no usable cases (the file has no data rows)";
  std::string message = "no usable cases (" + std::to_string(fit.casesSkippedCells) +
                        " with an empty or non-numeric cell";
  if (fit.weighted) {
    message += ", " + std::to_string(fit.casesSkippedWeight) + " with a weight <= 0";
  }
  return message + ")";
}

// Weighted residual and total sums of squares of the centred (or raw) target.
// Cases go four at a time, each case's fitted value summed in predictor
// order on its own: the same arithmetic as one case at a time, without one
// long chain of dependent additions.
void ResidualSums(const CsvTable& table, const Layout& layout, const std::vector<double>& weights,
                  const std::vector<double>& mean, const std::vector<double>& beta, double& rss,
                  double& tss) {
  constexpr int kLanes = 4;
  const std::size_t targetSlot = beta.size();
  const int targetColumn = layout.columns[targetSlot];
  const double targetMean = mean[targetSlot];
  const double* rows[kLanes] = {};
  double caseWeights[kLanes] = {};
  rss = 0.0;
  tss = 0.0;
  auto addCases = [&](int count) {
    double fitted[kLanes] = {};
    for (std::size_t k = 0; k < targetSlot; ++k) {
      const int column = layout.columns[k];
      for (int c = 0; c < count; ++c) fitted[c] += beta[k] * (rows[c][column] - mean[k]);
    }
    for (int c = 0; c < count; ++c) {
      const double y = rows[c][targetColumn] - targetMean;
      const double residual = y - fitted[c];
      rss += caseWeights[c] * residual * residual;
      tss += caseWeights[c] * y * y;
    }
  };
  int filled = 0;
  for (std::size_t r = 0; r < table.NumRows(); ++r) {
    if (weights[r] == 0.0) continue;
    rows[filled] = table.Row(r);
    caseWeights[filled] = weights[r];
    if (++filled == kLanes) {
      addCases(filled);
      filled = 0;
    }
  }
  addCases(filled);
}

// Standard error, t value and two-sided p-value of an estimate whose
// variance is variance * unscaledVariance; missing where undefined.
void FillInference(Coefficient& c, double variance, double unscaledVariance, double residualDf) {
  const double missing = KXMV::Missing();
  c.stdError = missing;
  c.tValue = missing;
  c.pValue = missing;
  if (KXMV::IsMissing(variance) || !(unscaledVariance >= 0.0)) return;
  c.stdError = std::sqrt(variance * unscaledVariance);
  if (!(c.stdError > 0.0)) return;
  c.tValue = c.estimate / c.stdError;
  const double upper = KXDistFun::SigT(std::fabs(c.tValue), residualDf);
  if (!KXMV::IsMissing(upper)) c.pValue = 2.0 * upper;
}

}  // namespace

bool FitRegression(const CsvTable& table, const RegressionModel& model, RegressionFit& fit,
                   FitError& error) {
  if (!CheckModel(table, model, error)) return false;

  const int p = static_cast<int>(model.predictors.size());
  const int order = p + 1;  // predictors, then the target
  const std::size_t targetSlot = static_cast<std::size_t>(p);
  Layout layout;
  layout.columns = model.predictors;
  layout.columns.push_back(model.target);
  layout.weight = model.weight;
  const auto columnName = [&table](int c) { return table.Names()[static_cast<std::size_t>(c)]; };

  RegressionFit result;
  result.targetName = columnName(model.target);
  result.intercept = model.intercept;
  result.weighted = model.weight >= 0;
  if (result.weighted) result.weightName = columnName(model.weight);

  std::vector<double> weights;
  const std::vector<double> sums = SelectCases(table, layout, weights, result);
  const double sumWeights = result.sumWeights;
  if (result.casesUsed == 0) {
    return Fail(error, FitErrorKind::kNoUsableCases, NoUsableCasesMessage(result, table.NumRows()));
  }
  const int numParameters = p + (model.intercept ? 1 : 0);
  if (sumWeights < numParameters) {
    return Fail(error, FitErrorKind::kTooFewCases,
                "fewer cases (" + FormatNumber(sumWeights, 15) + ") than parameters (" +
                    std::to_string(numParameters) + ")");
  }
  if (!std::isfinite(sumWeights)) {
    return Fail(error, FitErrorKind::kOverflow, "the sum of the weights overflows");
  }

  // Cross-products about the first pass's means (about 0 without an
  // intercept: raw cross-products). Those means carry the rounding of a
  // plain sum; the deviations from them, summed in the same pass, give the
  // correction delta, and since the weighted deviations from the corrected
  // means sum to zero,
  //   sum w (x - m0)(x - m0)' = sum w (x - m)(x - m)' + W delta delta',
  // a rank-one downdate with weight -W centres the matrix on the corrected
  // means.
  std::vector<double> mean(static_cast<std::size_t>(order), 0.0);
  if (model.intercept) {
    for (std::size_t k = 0; k < mean.size(); ++k) mean[k] = sums[k] / sumWeights;
  }
  KXSymMatrix cross(order);
  std::vector<double> deviation;
  if (!AccumulateCrossProducts(table, layout, weights, mean, model.caseBlock, cross, deviation)) {
    return Fail(error, FitErrorKind::kLibrary, "the cross-product update refused a case");
  }
  if (model.intercept) {
    std::vector<double> delta(mean.size());
    for (std::size_t k = 0; k < mean.size(); ++k) {
      delta[k] = deviation[k] / sumWeights;
      mean[k] += delta[k];
    }
    if (!cross.UpdateXXPosNegW(delta, -sumWeights)) {
      return Fail(error, FitErrorKind::kLibrary, "the centring correction was refused");
    }
  }

  // Sweep the predictors in order; a refused sweep marks an aliased one.
  std::vector<double> origDiag;
  cross.GetDiagonal(origDiag);
  for (int k = 0; k < order; ++k) {
    // A sum of squares is never negative; the centring correction can leave
    // one a rounding error below 0 for a constant column. It is then 0 (and
    // the sweep refuses a zero pivot).
    if (origDiag[static_cast<std::size_t>(k)] < 0.0) {
      origDiag[static_cast<std::size_t>(k)] = 0.0;
      cross.SetElem(k, k, 0.0);
    }
    if (!std::isfinite(origDiag[static_cast<std::size_t>(k)])) {
      return Fail(error, FitErrorKind::kOverflow,
                  "the sums of squares of column '" +
                      columnName(layout.columns[static_cast<std::size_t>(k)]) +
                      "' overflow: its values are too large, rescale it");
    }
  }
  KXBitSet sweptRows(order);
  std::vector<int> predictors(static_cast<std::size_t>(p));
  for (int j = 0; j < p; ++j) predictors[static_cast<std::size_t>(j)] = j;
  if (cross.SweepRows(predictors, model.tol, origDiag, sweptRows, true) < 0) {
    return Fail(error, FitErrorKind::kLibrary, "the sweep of the predictors was refused");
  }

  int rank = 0;
  std::vector<double> beta(static_cast<std::size_t>(p), 0.0);
  for (int j = 0; j < p; ++j) {
    if (!sweptRows.IsIn(j)) continue;
    beta[static_cast<std::size_t>(j)] = cross.GetElem(p, j);
    ++rank;
  }
  double rss = 0.0;
  double tss = 0.0;
  ResidualSums(table, layout, weights, mean, beta, rss, tss);

  const double residualDf = sumWeights - rank - (model.intercept ? 1 : 0);
  const double missing = KXMV::Missing();
  const double variance = residualDf > 0.0 ? rss / residualDf : missing;

  // The swept predictor block holds minus the inverse of the predictors'
  // cross-products: the unscaled covariance of the estimates, negated.
  if (model.intercept) {
    Coefficient c;
    c.term = "(Intercept)";
    c.estimate = mean[targetSlot];
    double quadratic = 0.0;  // mean' (X'X)^-1 mean over the swept predictors
    for (int j = 0; j < p; ++j) {
      if (!sweptRows.IsIn(j)) continue;
      const std::size_t uj = static_cast<std::size_t>(j);
      c.estimate -= beta[uj] * mean[uj];
      for (int l = 0; l < p; ++l) {
        if (!sweptRows.IsIn(l)) continue;
        quadratic -= mean[uj] * cross.GetElem(j, l) * mean[static_cast<std::size_t>(l)];
      }
    }
    FillInference(c, variance, 1.0 / sumWeights + quadratic, residualDf);
    result.coefficients.push_back(c);
  }
  for (int j = 0; j < p; ++j) {
    Coefficient c;
    c.term = columnName(model.predictors[static_cast<std::size_t>(j)]);
    if (sweptRows.IsIn(j)) {
      c.estimate = beta[static_cast<std::size_t>(j)];
      FillInference(c, variance, -cross.GetElem(j, j), residualDf);
    } else {
      c.aliased = true;
      c.estimate = c.stdError = c.tValue = c.pValue = missing;
    }
    result.coefficients.push_back(c);
  }

  result.rank = rank;
  result.residualDf = residualDf;
  result.rss = rss;
  result.tss = tss;
  result.residualSd = KXMV::IsMissing(variance) ? missing : std::sqrt(variance);
  result.rSquared = tss > 0.0 ? 1.0 - rss / tss : missing;
  result.adjRSquared = missing;
  if (!KXMV::IsMissing(result.rSquared) && residualDf > 0.0) {
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
