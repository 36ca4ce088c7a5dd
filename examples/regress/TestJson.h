// examples/regress/TestJson.h
//
// A small JSON reader for the tests: it reads the certified values checked in
// as examples/data/certified.json and the program's own --format json output.
// Numbers are converted with std::from_chars, so a 17-digit number reads back
// as the exact double that was written. Not for untrusted input: on malformed
// text Parse returns false and the value is undefined.
#ifndef KXCOMMONR_EXAMPLES_REGRESS_TESTJSON_H
#define KXCOMMONR_EXAMPLES_REGRESS_TESTJSON_H

#include <charconv>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kxtestjson {

class Value {
 public:
  enum class Kind { kNull, kBool, kNumber, kString, kArray, kObject };

  Kind kind() const { return kind_; }
  bool IsNull() const { return kind_ == Kind::kNull; }
  double Number() const { return number_; }
  bool Bool() const { return boolean_; }
  const std::string& String() const { return string_; }
  const std::vector<Value>& Array() const { return array_; }
  std::size_t Size() const { return array_.size(); }
  const Value& operator[](std::size_t i) const { return array_.at(i); }
  // The member named key; a shared null value when there is none.
  const Value& operator[](const std::string& key) const {
    static const Value null;
    if (kind_ != Kind::kObject) return null;
    for (std::size_t i = 0; i < keys_.size(); ++i) {
      if (keys_[i] == key) return array_[i];
    }
    return null;
  }
  bool Has(const std::string& key) const {
    for (const std::string& k : keys_) {
      if (k == key) return true;
    }
    return false;
  }
  std::vector<double> Numbers() const {
    std::vector<double> out;
    for (const Value& v : array_) out.push_back(v.number_);
    return out;
  }
  std::vector<std::string> Strings() const {
    std::vector<std::string> out;
    for (const Value& v : array_) out.push_back(v.string_);
    return out;
  }

  // Parses a whole document.
  static bool Parse(std::string_view text, Value& out) {
    Parser parser{text, 0};
    if (!parser.ParseValue(out)) return false;
    parser.SkipSpace();
    return parser.pos == text.size();
  }

 private:
  struct Parser {
    std::string_view text;
    std::size_t pos;

    void SkipSpace() {
      while (pos < text.size() && (text[pos] == ' ' || text[pos] == '\n' || text[pos] == '\r' ||
                                   text[pos] == '\t')) {
        ++pos;
      }
    }
    bool Consume(std::string_view word) {
      if (text.substr(pos, word.size()) != word) return false;
      pos += word.size();
      return true;
    }
    bool ParseString(std::string& out) {
      if (pos >= text.size() || text[pos] != '"') return false;
      ++pos;
      out.clear();
      while (pos < text.size() && text[pos] != '"') {
        char c = text[pos++];
        if (c == '\\') {
          if (pos >= text.size()) return false;
          const char e = text[pos++];
          switch (e) {
            case 'n': c = '\n'; break;
            case 't': c = '\t'; break;
            case 'r': c = '\r'; break;
            case 'b': c = '\b'; break;
            case 'f': c = '\f'; break;
            case 'u': {
              if (pos + 4 > text.size()) return false;
              unsigned code = 0;
              const auto r = std::from_chars(text.data() + pos, text.data() + pos + 4, code, 16);
              if (r.ptr != text.data() + pos + 4 || code > 0x7F) return false;  // ASCII only
              c = static_cast<char>(code);
              pos += 4;
              break;
            }
            default: c = e;  // '"', '\\', '/'
          }
        }
        out.push_back(c);
      }
      if (pos >= text.size()) return false;
      ++pos;
      return true;
    }
    bool ParseValue(Value& out) {
      SkipSpace();
      if (pos >= text.size()) return false;
      const char c = text[pos];
      out = Value();
      if (c == '{') {
        out.kind_ = Kind::kObject;
        ++pos;
        SkipSpace();
        if (pos < text.size() && text[pos] == '}') return ++pos, true;
        for (;;) {
          SkipSpace();
          std::string key;
          if (!ParseString(key)) return false;
          SkipSpace();
          if (!Consume(":")) return false;
          Value member;
          if (!ParseValue(member)) return false;
          out.keys_.push_back(std::move(key));
          out.array_.push_back(std::move(member));
          SkipSpace();
          if (Consume("}")) return true;
          if (!Consume(",")) return false;
        }
      }
      if (c == '[') {
        out.kind_ = Kind::kArray;
        ++pos;
        SkipSpace();
        if (pos < text.size() && text[pos] == ']') return ++pos, true;
        for (;;) {
          Value element;
          if (!ParseValue(element)) return false;
          out.array_.push_back(std::move(element));
          SkipSpace();
          if (Consume("]")) return true;
          if (!Consume(",")) return false;
        }
      }
      if (c == '"') {
        out.kind_ = Kind::kString;
        return ParseString(out.string_);
      }
      if (Consume("null")) return true;
      if (Consume("true")) {
        out.kind_ = Kind::kBool;
        out.boolean_ = true;
        return true;
      }
      if (Consume("false")) {
        out.kind_ = Kind::kBool;
        return true;
      }
      out.kind_ = Kind::kNumber;
      const auto r = std::from_chars(text.data() + pos, text.data() + text.size(), out.number_);
      if (r.ec != std::errc()) return false;
      pos = static_cast<std::size_t>(r.ptr - text.data());
      return true;
    }
  };

  Kind kind_ = Kind::kNull;
  bool boolean_ = false;
  double number_ = 0.0;
  std::string string_;
  std::vector<Value> array_;       // array elements, or object members
  std::vector<std::string> keys_;  // object member names, parallel to array_
};

}  // namespace kxtestjson

#endif  // KXCOMMONR_EXAMPLES_REGRESS_TESTJSON_H
