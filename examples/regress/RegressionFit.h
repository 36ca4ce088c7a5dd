// examples/regress/RegressionFit.h
//
// Weighted least-squares fit of one column of a CsvTable on other columns,
// computed the way a statistical component does it with kxcommonr:
//
//   1. weighted means of the predictors and the target (first pass; skipped
//      without an intercept);
//   2. a KXSymMatrix of order p+1 (predictors, then the target) accumulated
//      case by case with UpdateXX(case, weight) on the values minus those
//      means (the raw values without an intercept), then corrected for the
//      rounding left in the means by one UpdateXXPosNegW(delta, -sum of
//      weights), delta the weighted mean deviation summed in the same pass;
//   3. Sweep of the predictor rows in column order, with the diagonal before
//      sweeping as the initial diagonal and a KXBitSet of swept rows; a
//      refused sweep leaves that predictor out of the model, reported as
//      aliased (it is a linear combination of earlier predictors, or
//      constant);
//   4. the coefficients read from the target row of the swept matrix, their
//      covariance from minus the swept predictor block times the residual
//      variance, and the residual sum of squares recomputed from the
//      residuals in a last pass (the swept target diagonal holds it too, but
//      loses digits when the fit is tight).
//
// Centring matters: the cross-products of raw data carry the square of each
// mean, and a predictor with a large mean relative to its spread (a year)
// then looks like a multiple of the intercept and is refused at ordinary
// tolerances.
//
// A case takes part when its target, predictor and weight cells are all
// numbers and its weight is strictly positive; the weight is a frequency
// weight (a case of weight 3 counts as three identical cases).
//
// Thread-compatible: the functions keep no state.
#ifndef KXCOMMONR_EXAMPLES_REGRESS_REGRESSIONFIT_H
#define KXCOMMONR_EXAMPLES_REGRESS_REGRESSIONFIT_H

#include <cstddef>
#include <string>
#include <vector>

#include "examples/regress/CsvTable.h"
#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"

namespace kxregress {

// What to fit.
struct RegressionModel {
  int target = -1;              // column index of the response
  std::vector<int> predictors;  // column indices, in model order
  int weight = -1;              // column index of the frequency weight, -1 for none
  bool intercept = true;
  // A predictor is refused when its residual sum of squares, after the
  // predictors before it, is at or below tol times its own (centred) sum of
  // squares. Must be > 0.
  double tol = 1e-10;
  // 0: one UpdateXX call per case. Otherwise the cases go to UpdateXXMat2 in
  // blocks of this many (the weights folded into one of the two blocks):
  // the same products added in the same case order, faster on long files.
  int caseBlock = 0;
};

// One row of the coefficient table. For an aliased term every number is the
// missing value.
struct Coefficient {
  std::string term;  // "(Intercept)" or the column name
  bool aliased = false;
  double estimate = 0.0;
  double stdError = 0.0;
  double tValue = 0.0;
  double pValue = 0.0;  // two-sided, 2 * SigT(|t|, residualDf)
};

struct RegressionFit {
  std::string targetName;
  std::string weightName;  // empty when unweighted
  bool intercept = true;
  bool weighted = false;
  std::size_t casesUsed = 0;
  std::size_t casesSkippedCells = 0;   // an empty or non-numeric cell in a used column
  std::size_t casesSkippedWeight = 0;  // a weight <= 0
  double sumWeights = 0.0;             // the number of cases that the fit counts
  std::vector<Coefficient> coefficients;  // intercept first, then predictors in order
  int rank = 0;                  // estimated predictor coefficients (intercept not counted)
  double residualDf = 0.0;       // sumWeights - rank - intercept
  double rss = 0.0;              // residual sum of squares (weighted)
  double tss = 0.0;              // total sum of squares: about the mean, or about 0 without intercept
  double residualSd = 0.0;       // sqrt(rss / residualDf); missing when residualDf <= 0
  double rSquared = 0.0;         // 1 - rss/tss (uncentred without an intercept)
  double adjRSquared = 0.0;
  double fStatistic = 0.0;       // ((tss - rss)/rank) / (rss/residualDf); missing when undefined
  double fPValue = 0.0;          // SigF(fStatistic, rank, residualDf)
  KXCommon::KXSymMatrix swept;   // the cross-product matrix after the sweeps
  KXCommon::KXBitSet sweptRows;  // the predictor rows that were swept
};

// Ways a fit can fail, each with its message in FitError::message.
enum class FitErrorKind {
  kNone,
  kBadModel,
  kNoUsableCases,
  kTooFewCases,
  kOverflow,  // sums of squares beyond the range of a double
  kLibrary,
};

struct FitError {
  FitErrorKind kind = FitErrorKind::kNone;
  std::string message;
};

// Fits the model. Returns true and fills fit; on failure returns false, fills
// error and leaves fit unchanged. Fails for column indices outside the table,
// a target among the predictors, tol <= 0, caseBlock < 0, no usable case,
// fewer cases (sum of weights) than parameters, or sums of squares that
// overflow a double.
bool FitRegression(const CsvTable& table, const RegressionModel& model, RegressionFit& fit,
                   FitError& error);

}  // namespace kxregress

#endif  // KXCOMMONR_EXAMPLES_REGRESS_REGRESSIONFIT_H
