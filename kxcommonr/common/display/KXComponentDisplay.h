// kxcommonr/common/display/KXComponentDisplay.h
//
// The diagnostic display: free functions that print named values, vectors,
// matrices and maps as human-readable lines on one process-wide stream. Every
// Display() operation of the library prints through these functions, so the
// line formats here are the library's single diagnostic format.
//
// Line rule: each line is written as std::endl first, then the text, then a
// flush. A line break therefore comes BEFORE each line and the last line stays
// open; this order is deliberate and shared by every function (do not "fix"
// it). Numbers use the classic "%g" family; the system-missing value prints
// as "miss", any other value (NaN included) as a number.
//
// Threads: the stream pointer is one plain process-wide global, neither locked
// nor atomic. Install it once (SetOutStream) before diagnostics are written;
// lines from concurrent callers may interleave. No function reports an error
// and stream errors are ignored.
#ifndef KXCOMMONR_COMMON_DISPLAY_KXCOMPONENTDISPLAY_H
#define KXCOMMONR_COMMON_DISPLAY_KXCOMPONENTDISPLAY_H

#include <iosfwd>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "kxcommonr/config.h"

namespace KXComponentDisplay {

// Installs &s as the target of all later output. The stream is not owned: the
// caller keeps it alive while it is installed. Initially std::cout.
KXCOMMONR_API void SetOutStream(std::ostream& s);
// Returns the installed stream.
KXCOMMONR_API std::ostream* GetOutStream();

// `breaks` line breaks, then `text`, then a flush; no line break after the
// text. Prints nothing at all when text is null.
KXCOMMONR_API void DisplayText(const long& breaks, const char* text);
KXCOMMONR_API void DisplayText(const long& breaks, const std::string& text);

// Scalar lines: name followed by the value part.
// "name = true" / "name = false".
KXCOMMONR_API void DisplayB(std::string name, bool b);
// "name = %d".
KXCOMMONR_API void DisplayI(std::string name, int v);
// "name = %g", or "name = miss" for the missing value.
KXCOMMONR_API void DisplayD(std::string name, double v);
// "name = %.17g" (full precision), or "name = miss".
KXCOMMONR_API void DisplayDF(std::string name, double v);
// "name = v".
KXCOMMONR_API void DisplayS(std::string name, std::string v);

// n doubles from a: a header line (name, plus " (size = n)" when showSize),
// then " %g" / " miss" values, 10 per line. Nothing beyond the header when
// a is null or n < 1.
KXCOMMONR_API void DisplayDA(std::string name, const double* a, int n,
                             bool showSize);
// Header "name (size = n)", then either 10 values per line (" %g"/" miss") or,
// with onePerLine, one line per value: "  = %.17g" or " miss".
KXCOMMONR_API void DisplayDV(std::string name, const std::vector<double>& v,
                             bool onePerLine);
// "name <none>" when empty; else the name line, then each inner vector by
// DisplayDV under the name "vec[i]".
KXCOMMONR_API void DisplayDVV(std::string name,
                              const std::vector<std::vector<double>>& v,
                              bool onePerLine);
// Header with size, values " %d", 25 per line.
KXCOMMONR_API void DisplayIV(std::string name, const std::vector<int>& v);
// Header with size, values " %u", 25 per line.
KXCOMMONR_API void DisplayUV(std::string name,
                             const std::vector<unsigned int>& v);
// Header with size, values " t" / " f", 35 per line.
KXCOMMONR_API void DisplayBV(std::string name, const std::vector<bool>& v);
// "name ( number of rows = r, number of columns = c )" (columns from the first
// row, omitted when there is none), then one line per row: the concatenated
// marks of its cells.
KXCOMMONR_API void DisplayBVV(std::string name,
                              const std::vector<std::vector<bool>>& m,
                              const std::string& falseMark,
                              const std::string& trueMark);
// Header with size, values as ` "text"`, 10 per line.
KXCOMMONR_API void DisplaySV(std::string name,
                             const std::vector<std::string>& v);
// "name <none>" when empty; else the name line, then each inner vector by
// DisplaySV under the name "vec[i]".
KXCOMMONR_API void DisplaySVV(std::string name,
                              const std::vector<std::vector<std::string>>& v);
// "name <none>" when empty; else the name line, then per entry the key by
// DisplaySV ("Map's StringList:") and the value by DisplayD ("Map's double").
KXCOMMONR_API void DisplaySLDM(
    std::string name, const std::map<std::vector<std::string>, double>& m);
// The name line, then per entry "Map key" by DisplayIV and "Map value" by
// DisplayDV (batched layout).
KXCOMMONR_API void DisplayIntVecDVecMap(
    std::string name, const std::map<std::vector<int>, std::vector<double>>& m);
// The name line, then per entry "Map key" by DisplayIV and "Map value" by
// DisplayI.
KXCOMMONR_API void DisplayIntVecIntMap(
    std::string name, const std::map<std::vector<int>, int>& m);
// DisplayI("map size", size), then the name followed by " (k,v)" pairs, 10 per
// line. An empty map prints only the "map size" line (unlike DisplayVIM; this
// asymmetry is intended).
KXCOMMONR_API void DisplayIIM(std::string name, const std::map<int, int>& m);
// One line: the name, then " (k,v)" for every pair, or " <none>".
KXCOMMONR_API void DisplayVIM(std::string name, const std::map<int, int>& m);
// One labelled row of a matrix: the label line "<prefix><row>: " (row as
// "%d"), then the n values of a as DisplayDA prints them (" %g" / " miss",
// 10 per line). The matrix displays print every row through this, e.g.
// DisplayRowDA("row ", 2, a, 3) gives "row 2: " and "  a0 a1 a2". Nothing
// beyond the label when a is null or n < 1.
KXCOMMONR_API void DisplayRowDA(const std::string& prefix, int row,
                                const double* a, int n);
// A packed lower triangle of `rows` rows: header "name (number of elements =
// n, number of rows = r)", then each row by DisplayRowDA labelled "row  i: " (two
// spaces).
// A vector ending inside a row prints the remaining elements and stops.
KXCOMMONR_API void DisplayDVTR(std::string name, const std::vector<double>& v,
                               int rows);
// Header with size, one line per pair: "  a b" with " %g"/" miss" values.
KXCOMMONR_API void DisplayVPD(std::string name,
                              const std::vector<std::pair<double, double>>& v);
// Header with size, one line per pair: "  a k" (the int as "%d").
KXCOMMONR_API void DisplayVPDI(std::string name,
                               const std::vector<std::pair<double, int>>& v);
// Header with size, then "(%d,%d) " per pair, 10 per line.
KXCOMMONR_API void DisplayVPII(std::string name,
                               const std::vector<std::pair<int, int>>& v);
// "name: YYYY-MM-DD-hh-mm-ss" in local time.
KXCOMMONR_API void DisplayTimeStamp(std::string name);

}  // namespace KXComponentDisplay

#endif  // KXCOMMONR_COMMON_DISPLAY_KXCOMPONENTDISPLAY_H
