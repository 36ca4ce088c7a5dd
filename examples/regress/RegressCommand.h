// examples/regress/RegressCommand.h
//
// The kxregress command line: options, reading the file, fitting, writing the
// report. main() only forwards to RunRegress, so the whole program (its
// messages and exit codes included) can be exercised in-process.
//
// Exit codes: 0 success (also for --help); 1 the data cannot be fitted
// (missing file, unknown column, no usable cases, fewer cases than
// parameters, malformed CSV); 2 a usage error (unknown option, bad value).
// Every error is one line "kxregress: <message>" on the error stream.
//
// Thread rule: --display prints through the library's process-wide diagnostic
// stream, so two RunRegress calls with --display must not run at once.
#ifndef KXCOMMONR_EXAMPLES_REGRESS_REGRESSCOMMAND_H
#define KXCOMMONR_EXAMPLES_REGRESS_REGRESSCOMMAND_H

#include <ostream>
#include <string>
#include <vector>

namespace kxregress {

// The --help text.
std::string UsageText();

// Runs the program on its arguments (without the program name).
int RunRegress(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace kxregress

#endif  // KXCOMMONR_EXAMPLES_REGRESS_REGRESSCOMMAND_H
