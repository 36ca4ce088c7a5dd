// examples/regress/RegressCommand.cpp
#include "examples/regress/RegressCommand.h"

#include <cmath>

#include "examples/regress/CsvTable.h"
#include "examples/regress/RegressionFit.h"
#include "examples/regress/RegressionReport.h"
#include "kxcommonr/common/display/KXComponentDisplay.h"

namespace kxregress {
namespace {

constexpr int kExitOk = 0;
constexpr int kExitDataError = 1;
constexpr int kExitUsage = 2;

struct Options {
  std::string file;
  std::string target;                   // empty: the first column
  std::vector<std::string> predictors;  // empty: every other numeric column
  std::string weight;
  bool intercept = true;
  double tol = 1e-10;
  bool display = false;
  ReportFormat format = ReportFormat::kText;
  bool help = false;
};

int Report(std::ostream& err, int code, const std::string& message) {
  err << "kxregress: " << message << "\n";
  return code;
}

void SplitList(const std::string& list, std::vector<std::string>& out) {
  std::size_t start = 0;
  for (;;) {
    const std::size_t comma = list.find(',', start);
    const std::string item = list.substr(start, comma == std::string::npos ? std::string::npos
                                                                           : comma - start);
    if (!item.empty()) out.push_back(item);
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
}

// Parses the arguments; returns an empty string or a usage error.
std::string ParseArguments(const std::vector<std::string>& args, Options& options) {
  for (std::size_t i = 0; i < args.size(); ++i) {
    std::string arg = args[i];
    std::string value;
    bool hasInlineValue = false;
    if (arg.size() > 2 && arg.compare(0, 2, "--") == 0) {
      const std::size_t equals = arg.find('=');
      if (equals != std::string::npos) {
        value = arg.substr(equals + 1);
        arg = arg.substr(0, equals);
        hasInlineValue = true;
      }
    }
    auto takeValue = [&](std::string& into) -> bool {
      if (hasInlineValue) {
        into = value;
        return true;
      }
      if (i + 1 >= args.size()) return false;
      into = args[++i];
      return true;
    };
    auto needsValue = [&arg]() { return "option " + arg + " needs a value"; };

    if (arg == "-h" || arg == "--help") {
      options.help = true;
    } else if (arg == "-y" || arg == "--target") {
      if (!takeValue(options.target)) return needsValue();
    } else if (arg == "-x" || arg == "--predictors") {
      std::string list;
      if (!takeValue(list)) return needsValue();
      SplitList(list, options.predictors);
    } else if (arg == "-w" || arg == "--weight") {
      if (!takeValue(options.weight)) return needsValue();
    } else if (arg == "--no-intercept") {
      options.intercept = false;
    } else if (arg == "--tol") {
      std::string text;
      if (!takeValue(text)) return needsValue();
      double tol = 0.0;
      if (!ParseNumber(text, tol) || !(tol > 0.0) || !(tol < 1.0)) {
        return "--tol needs a number between 0 and 1, got '" + text + "'";
      }
      options.tol = tol;
    } else if (arg == "--display") {
      options.display = true;
    } else if (arg == "--format") {
      std::string text;
      if (!takeValue(text)) return needsValue();
      if (text == "text") {
        options.format = ReportFormat::kText;
      } else if (text == "csv") {
        options.format = ReportFormat::kCsv;
      } else if (text == "json") {
        options.format = ReportFormat::kJson;
      } else {
        return "--format must be text, csv or json, got '" + text + "'";
      }
    } else if (arg.size() > 1 && arg[0] == '-') {
      return "unknown option '" + arg + "' (see --help)";
    } else if (options.file.empty()) {
      options.file = arg;
    } else {
      return "one input file expected, got '" + options.file + "' and '" + arg + "'";
    }
  }
  if (!options.help && options.file.empty()) return "no input file (see --help)";
  return std::string();
}

// The first column names, for messages.
std::string ColumnList(const CsvTable& table) {
  constexpr std::size_t kShown = 12;
  const std::vector<std::string>& names = table.Names();
  std::string list;
  for (std::size_t i = 0; i < names.size() && i < kShown; ++i) {
    list += (i == 0 ? "" : ", ") + names[i];
  }
  if (names.size() > kShown) list += ", ... (" + std::to_string(names.size()) + " in all)";
  return list;
}

// Looks up the model's columns; returns an error message or "".
std::string BuildModel(const Options& options, const CsvTable& table, RegressionModel& model) {
  auto find = [&table](const std::string& name, int& column) -> std::string {
    column = table.FindColumn(name);
    if (column < 0) return "unknown column '" + name + "' (columns: " + ColumnList(table) + ")";
    return std::string();
  };
  std::string message;
  if (options.target.empty()) {
    model.target = 0;
  } else if (!(message = find(options.target, model.target)).empty()) {
    return message;
  }
  if (!options.weight.empty()) {
    if (!(message = find(options.weight, model.weight)).empty()) return message;
    if (model.weight == model.target) return "the weight column cannot be the target";
  }
  if (options.predictors.empty()) {
    // Every other column holding numbers and nothing else.
    for (int c = 0; c < table.NumColumns(); ++c) {
      if (c == model.target || c == model.weight) continue;
      if (table.NumericCount(c) > 0 && table.NonNumericCount(c) == 0) model.predictors.push_back(c);
    }
    if (model.predictors.empty() && !options.intercept) {
      return "no numeric predictor column besides the target";
    }
  } else {
    for (const std::string& name : options.predictors) {
      int column = -1;
      if (!(message = find(name, column)).empty()) return message;
      if (column == model.target) return "the target '" + name + "' cannot also be a predictor";
      if (column == model.weight) return "the weight '" + name + "' cannot also be a predictor";
      for (const int earlier : model.predictors) {
        if (earlier == column) return "predictor '" + name + "' is named twice";
      }
      model.predictors.push_back(column);
    }
  }
  // A used column without a single number would only show up as "no usable
  // cases"; name it instead.
  if (table.NumRows() > 0) {
    std::vector<int> used = model.predictors;
    used.push_back(model.target);
    if (model.weight >= 0) used.push_back(model.weight);
    for (const int c : used) {
      if (table.NumericCount(c) == 0) {
        const std::string& name = table.Names()[static_cast<std::size_t>(c)];
        return "column '" + name + "' holds no numbers" +
               (c == model.target && options.target.empty()
                    ? " (the first column is the default target; choose one with -y)"
                    : "");
      }
    }
  }
  model.intercept = options.intercept;
  model.tol = options.tol;
  return std::string();
}

void DisplaySweptMatrix(const RegressionFit& fit, std::ostream& stream) {
  std::ostream* previous = KXComponentDisplay::GetOutStream();
  KXComponentDisplay::SetOutStream(stream);
  stream << "\nSwept cross-product matrix (rows: the predictors in model order, then "
         << fit.targetName << "):";
  fit.swept.DisplayF();
  stream << "\nSwept predictor rows:";
  fit.sweptRows.Display();
  stream << "\n";
  KXComponentDisplay::SetOutStream(*previous);
}

}  // namespace

std::string UsageText() {
  return
      "Usage: kxregress [options] FILE.csv\n"
      "\n"
      "Fits a linear regression by weighted least squares with kxcommonr: the\n"
      "cross-products of the centred data are accumulated case by case and the\n"
      "predictor rows swept; a predictor that is a linear combination of earlier\n"
      "ones is reported as aliased. The file needs a header row of column names.\n"
      "Cases with an empty or non-numeric cell in a used column are skipped.\n"
      "\n"
      "Options:\n"
      "  -y, --target NAME       response column (default: the first column)\n"
      "  -x, --predictors LIST   comma-separated predictor columns, in model order\n"
      "                          (default: every other column holding only numbers)\n"
      "  -w, --weight NAME       frequency-weight column; cases with a weight <= 0\n"
      "                          are skipped\n"
      "      --no-intercept      fit through the origin (uncentred R-squared)\n"
      "      --tol VALUE         refuse a predictor whose residual sum of squares is at\n"
      "                          or below VALUE times its own (default 1e-10)\n"
      "      --format FORMAT     text (default), csv (coefficient table) or json\n"
      "      --display           also print the swept matrix through the library's\n"
      "                          Display (to standard error with csv or json)\n"
      "  -h, --help              this text\n"
      "\n"
      "Exit status: 0 success, 1 the data cannot be fitted, 2 a usage error.\n";
}

int RunRegress(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  Options options;
  const std::string usageError = ParseArguments(args, options);
  if (options.help) {
    out << UsageText();
    return kExitOk;
  }
  if (!usageError.empty()) return Report(err, kExitUsage, usageError);

  CsvTable table;
  std::string message;
  if (!table.ReadFile(options.file, message)) return Report(err, kExitDataError, message);

  RegressionModel model;
  message = BuildModel(options, table, model);
  if (!message.empty()) return Report(err, kExitDataError, message);

  RegressionFit fit;
  FitError fitError;
  if (!FitRegression(table, model, fit, fitError)) {
    return Report(err, kExitDataError, fitError.message);
  }
  WriteReport(fit, options.format, out);
  if (options.display) DisplaySweptMatrix(fit, options.format == ReportFormat::kText ? out : err);
  return kExitOk;
}

}  // namespace kxregress
