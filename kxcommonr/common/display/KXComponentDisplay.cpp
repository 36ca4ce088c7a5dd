#include "kxcommonr/common/display/KXComponentDisplay.h"

#include <cstdio>
#include <ctime>
#include <iostream>
#include <ostream>
#include <utility>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/packed/KXPackedLayout.h"

namespace KXComponentDisplay {

namespace {

// The installed diagnostic stream; standard output until replaced.
std::ostream* gOutStream = &std::cout;

// Writes one line: a line break first, then the text, then a flush.
void EmitLine(const std::string& line) {
  *gOutStream << std::endl << line << std::flush;
}

// Appends printf-style text to `line` through a fixed local buffer.
template <typename... Args>
void AppendFormatted(std::string& line, const char* format, Args... args) {
  char buffer[64];
  int written = std::snprintf(buffer, sizeof buffer, format, args...);
  if (written < 0) return;
  if (static_cast<std::size_t>(written) < sizeof buffer) {
    line.append(buffer, static_cast<std::size_t>(written));
    return;
  }
  std::string large(static_cast<std::size_t>(written) + 1, '\0');
  std::snprintf(&large[0], large.size(), format, args...);
  line.append(large.data(), static_cast<std::size_t>(written));
}

// " %g", or " miss" for the missing value.
void AppendShortDouble(std::string& line, double v) {
  if (KXCommon::KXMV::IsMissing(v)) {
    line += " miss";
  } else {
    AppendFormatted(line, " %g", v);
  }
}

// "name (size = n)".
void EmitSizeHeader(const std::string& name, int size) {
  std::string line = name;
  line += " (size =";
  AppendFormatted(line, " %d", size);
  line += ")";
  EmitLine(line);
}

void EmitSizeHeader(const std::string& name, std::size_t size) {
  EmitSizeHeader(name, static_cast<int>(size));
}

// Emits the element texts produced by `append(line, k)` for k < count,
// `batch` elements per line, each line starting with one space.
template <typename AppendElement>
void EmitBatched(std::size_t count, std::size_t batch, AppendElement append) {
  std::string line = " ";
  std::size_t onLine = 0;
  for (std::size_t k = 0; k < count; ++k) {
    append(line, k);
    if (++onLine == batch) {
      EmitLine(line);
      line = " ";
      onLine = 0;
    }
  }
  if (onLine > 0) EmitLine(line);
}

void AppendIntPair(std::string& line, int key, int value) {
  AppendFormatted(line, " (%d,%d)", key, value);
}

// "name = <value in format>", or "name = miss" for the missing value.
void EmitNamedDouble(std::string name, double v, const char* format) {
  if (KXCommon::KXMV::IsMissing(v)) {
    name += " = miss";
  } else {
    AppendFormatted(name, format, v);
  }
  EmitLine(name);
}

// "name <none>" for no vectors; otherwise "name", then each vector shown by
// `show` under the label "vec[i]".
template <typename Inner, typename ShowVector>
void EmitNested(const std::string& name, const std::vector<Inner>& v, ShowVector show) {
  if (v.empty()) {
    EmitLine(name + " <none>");
    return;
  }
  EmitLine(name);
  for (std::size_t i = 0; i < v.size(); ++i) {
    std::string label;
    AppendFormatted(label, "vec[%d]", static_cast<int>(i));
    show(label, v[i]);
  }
}

}  // namespace

void SetOutStream(std::ostream& s) { gOutStream = &s; }

std::ostream* GetOutStream() { return gOutStream; }

void DisplayText(const long& breaks, const char* text) {
  if (text == nullptr) return;
  for (long k = 0; k < breaks; ++k) *gOutStream << std::endl;
  *gOutStream << text << std::flush;
}

void DisplayText(const long& breaks, const std::string& text) {
  DisplayText(breaks, text.c_str());
}

void DisplayB(std::string name, bool b) {
  EmitLine(name + (b ? " = true" : " = false"));
}

void DisplayI(std::string name, int v) {
  AppendFormatted(name, " = %d", v);
  EmitLine(name);
}

void DisplayD(std::string name, double v) { EmitNamedDouble(std::move(name), v, " = %g"); }

void DisplayDF(std::string name, double v) { EmitNamedDouble(std::move(name), v, " = %.17g"); }

void DisplayS(std::string name, std::string v) {
  EmitLine(name + " = " + v);
}

void DisplayDA(std::string name, const double* a, int n, bool showSize) {
  if (showSize) {
    EmitSizeHeader(name, n);  // the count as given, even a negative one
  } else {
    EmitLine(name);
  }
  if (a == nullptr || n < 1) return;
  EmitBatched(static_cast<std::size_t>(n), 10,
              [a](std::string& line, std::size_t k) {
                AppendShortDouble(line, a[k]);
              });
}

void DisplayDV(std::string name, const std::vector<double>& v,
               bool onePerLine) {
  EmitSizeHeader(name, v.size());
  if (!onePerLine) {
    EmitBatched(v.size(), 10, [&v](std::string& line, std::size_t k) {
      AppendShortDouble(line, v[k]);
    });
    return;
  }
  // One value per line. The two texts differ in spacing ("  = 0.1..." and
  // " miss"); both are kept as they are.
  for (double value : v) {
    std::string line = " ";
    if (KXCommon::KXMV::IsMissing(value)) {
      line += "miss";
    } else {
      AppendFormatted(line, " = %.17g", value);
    }
    EmitLine(line);
  }
}

void DisplayDVV(std::string name, const std::vector<std::vector<double>>& v,
                bool onePerLine) {
  EmitNested(name, v, [onePerLine](const std::string& label, const std::vector<double>& inner) {
    DisplayDV(label, inner, onePerLine);
  });
}

void DisplayIV(std::string name, const std::vector<int>& v) {
  EmitSizeHeader(name, v.size());
  EmitBatched(v.size(), 25, [&v](std::string& line, std::size_t k) {
    AppendFormatted(line, " %d", v[k]);
  });
}

void DisplayUV(std::string name, const std::vector<unsigned int>& v) {
  EmitSizeHeader(name, v.size());
  EmitBatched(v.size(), 25, [&v](std::string& line, std::size_t k) {
    AppendFormatted(line, " %u", v[k]);
  });
}

void DisplayBV(std::string name, const std::vector<bool>& v) {
  EmitSizeHeader(name, v.size());
  EmitBatched(v.size(), 35, [&v](std::string& line, std::size_t k) {
    line += v[k] ? " t" : " f";
  });
}

void DisplayBVV(std::string name, const std::vector<std::vector<bool>>& m,
                const std::string& falseMark, const std::string& trueMark) {
  name += " ( number of rows =";
  AppendFormatted(name, " %d", static_cast<int>(m.size()));
  if (!m.empty()) {
    name += ", number of columns =";
    AppendFormatted(name, " %d", static_cast<int>(m[0].size()));
  }
  name += " )";
  EmitLine(name);
  for (const std::vector<bool>& row : m) {
    std::string line;
    for (bool cell : row) line += cell ? trueMark : falseMark;
    EmitLine(line);
  }
}

void DisplaySV(std::string name, const std::vector<std::string>& v) {
  EmitSizeHeader(name, v.size());
  EmitBatched(v.size(), 10, [&v](std::string& line, std::size_t k) {
    line += " \"";
    line += v[k];
    line += "\"";
  });
}

void DisplaySVV(std::string name,
                const std::vector<std::vector<std::string>>& v) {
  EmitNested(name, v, [](const std::string& label, const std::vector<std::string>& inner) {
    DisplaySV(label, inner);
  });
}

void DisplaySLDM(std::string name,
                 const std::map<std::vector<std::string>, double>& m) {
  if (m.empty()) {
    EmitLine(name + " <none>");
    return;
  }
  EmitLine(name);
  for (const auto& entry : m) {
    DisplaySV("Map's StringList:", entry.first);
    DisplayD("Map's double", entry.second);
  }
}

void DisplayIntVecDVecMap(
    std::string name, const std::map<std::vector<int>, std::vector<double>>& m) {
  EmitLine(name);
  for (const auto& entry : m) {
    DisplayIV("Map key", entry.first);
    DisplayDV("Map value", entry.second, false);
  }
}

void DisplayIntVecIntMap(std::string name,
                         const std::map<std::vector<int>, int>& m) {
  EmitLine(name);
  for (const auto& entry : m) {
    DisplayIV("Map key", entry.first);
    DisplayI("Map value", entry.second);
  }
}

void DisplayIIM(std::string name, const std::map<int, int>& m) {
  DisplayI("map size", static_cast<int>(m.size()));
  // The first pairs share the line with the name. An empty map adds " <none>"
  // to a line that is never emitted: only the "map size" line shows.
  std::string line = name;
  if (m.empty()) line += " <none>";
  int onLine = 0;
  for (const auto& entry : m) {
    AppendIntPair(line, entry.first, entry.second);
    if (++onLine == 10) {
      EmitLine(line);
      line = " ";
      onLine = 0;
    }
  }
  if (onLine > 0) EmitLine(line);
}

void DisplayVIM(std::string name, const std::map<int, int>& m) {
  if (m.empty()) name += " <none>";
  for (const auto& entry : m) AppendIntPair(name, entry.first, entry.second);
  EmitLine(name);
}

void DisplayDVTR(std::string name, const std::vector<double>& v, int rows) {
  name += " (number of elements =";
  AppendFormatted(name, " %d", static_cast<int>(v.size()));
  name += ", ";
  name += "number of rows =";
  AppendFormatted(name, " %d", rows);
  name += ")";
  EmitLine(name);
  for (int i = 0; i < rows; ++i) {
    const std::size_t start = KXCommon::KXPacked::RowStart(i);
    if (start >= v.size()) break;
    const std::size_t rowLength = static_cast<std::size_t>(i) + 1;
    const std::size_t available = v.size() - start;
    const std::size_t shown = available < rowLength ? available : rowLength;
    DisplayRowDA("row  ", i, v.data() + start, static_cast<int>(shown));
    if (shown < rowLength) break;
  }
}

void DisplayRowDA(const std::string& prefix, int row, const double* a, int n) {
  std::string label = prefix;
  AppendFormatted(label, "%d", row);
  label += ": ";
  DisplayDA(label, a, n, false);
}

void DisplayVPD(std::string name,
                const std::vector<std::pair<double, double>>& v) {
  EmitSizeHeader(name, v.size());
  for (const auto& pair : v) {
    std::string line = " ";
    AppendShortDouble(line, pair.first);
    line += " ";
    AppendShortDouble(line, pair.second);
    EmitLine(line);
  }
}

void DisplayVPDI(std::string name,
                 const std::vector<std::pair<double, int>>& v) {
  EmitSizeHeader(name, v.size());
  for (const auto& pair : v) {
    std::string line = " ";
    AppendShortDouble(line, pair.first);
    line += " ";
    AppendFormatted(line, "%d", pair.second);
    EmitLine(line);
  }
}

void DisplayVPII(std::string name,
                 const std::vector<std::pair<int, int>>& v) {
  EmitSizeHeader(name, v.size());
  EmitBatched(v.size(), 10, [&v](std::string& line, std::size_t k) {
    AppendFormatted(line, "(%d,%d) ", v[k].first, v[k].second);
  });
}

void DisplayTimeStamp(std::string name) {
  std::time_t now = std::time(nullptr);
  std::tm local{};
#if defined(_WIN32)
  localtime_s(&local, &now);
#else
  localtime_r(&now, &local);
#endif
  name += ": ";
  AppendFormatted(name, "%d-%02d-%02d-%02d-%02d-%02d", local.tm_year + 1900,
                  local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                  local.tm_sec);
  EmitLine(name);
}

}  // namespace KXComponentDisplay
