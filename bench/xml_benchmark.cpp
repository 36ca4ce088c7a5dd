// The XML writer and the object-stream reader beside libxml2, on the same
// documents in the same program.
//
// Names: <task>/<implementation>/<n>. Compare one task and n across
// implementations (ours / libxml2):
// - WriteTree: a formatted document of n elements, each with a string and a
//   number attribute and a text child, serialised into a byte sink that only
//   counts (ours: WriteTree to a std::ostream over a counting buffer;
//   libxml2: xmlSaveDoc with XML_SAVE_FORMAT to a counting write callback).
// - ReadStream: an object-stream file of one object with n value lines
//   (Int, Double, String in turn), every value converted (ours: the
//   ParseValue calls in order; libxml2: an xmlTextReader pass that converts
//   every value attribute the same way).
#include <benchmark/benchmark.h>

#include <libxml/parser.h>
#include <libxml/xmlsave.h>
#include <libxml/tree.h>
#include <libxml/xmlreader.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "kxcommonr/xml/XMLDocType.h"
#include "kxcommonr/xml/XMLElement.h"
#include "kxcommonr/xml/XMLObj.h"
#include "kxcommonr/xml/XMLReader.h"
#include "kxcommonr/xml/XMLString.h"
#include "kxcommonr/xml/XMLWriter.h"

namespace {

using namespace KXXML_NAMESPACE;

// A stream buffer that keeps nothing and counts the bytes it is given.
class CountingBuffer : public std::streambuf {
 public:
  std::size_t count() const { return count_; }

 protected:
  std::streamsize xsputn(const char*, std::streamsize n) override {
    count_ += static_cast<std::size_t>(n);
    return n;
  }
  int_type overflow(int_type c) override {
    if (!traits_type::eq_int_type(c, traits_type::eof())) ++count_;
    return traits_type::not_eof(c);
  }

 private:
  std::size_t count_ = 0;
};

int CountingWrite(void* context, const char*, int length) {
  *static_cast<std::size_t*>(context) += static_cast<std::size_t>(length);
  return length;
}

std::string Label(int i) { return "field " + std::to_string(i); }
double Number(int i) { return 0.1 * i + 1e-7; }

void WriteTreeOurs(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::unique_ptr<XMLElement> root(XMLElement::Create("Table"));
  for (int i = 0; i < n; ++i) {
    XMLElement* row = XMLElement::Create("Row");
    row->AddAttribute("name", Label(i));
    row->AddAttribute("value", Number(i));
    row->AddText(XMLString::Create("a<b & c"));
    root->AddElement(row);
  }
  std::size_t bytes = 0;
  for (auto _ : state) {
    CountingBuffer sink;
    std::ostream out(&sink);
    WriteTree(out, nullptr, root.get(), true);
    bytes = sink.count();
    benchmark::DoNotOptimize(bytes);
  }
  state.counters["bytes"] = static_cast<double>(bytes);
}

void WriteTreeLibxml2(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  xmlDocPtr doc = xmlNewDoc(BAD_CAST "1.0");
  xmlNodePtr root = xmlNewNode(nullptr, BAD_CAST "Table");
  xmlDocSetRootElement(doc, root);
  for (int i = 0; i < n; ++i) {
    xmlNodePtr row = xmlNewChild(root, nullptr, BAD_CAST "Row", nullptr);
    xmlNewProp(row, BAD_CAST "name", BAD_CAST Label(i).c_str());
    xmlNewProp(row, BAD_CAST "value", BAD_CAST Format(Number(i)).c_str());
    xmlAddChild(row, xmlNewText(BAD_CAST "a<b & c"));
  }
  std::size_t bytes = 0;
  for (auto _ : state) {
    bytes = 0;
    xmlSaveCtxtPtr save =
        xmlSaveToIO(CountingWrite, nullptr, &bytes, "UTF-8", XML_SAVE_FORMAT);
    xmlSaveDoc(save, doc);
    xmlSaveClose(save);
    benchmark::DoNotOptimize(bytes);
  }
  state.counters["bytes"] = static_cast<double>(bytes);
  xmlFreeDoc(doc);
}

// The object-stream file of n value lines, written once per n.
std::string StreamFile(int n) {
  const std::string path = "/tmp/kx_xml_benchmark_" + std::to_string(n) + ".xml";
  std::ofstream out(path, std::ios::binary);
  std::unique_ptr<XMLDocType> docType(XMLDocType::Create(kXMLRootName, kXMLSystemId, 0));
  ExportFormat format;
  docType->ToStream(out, format, false);
  StartRoot(out, "benchmark");
  XMLObj object("Values", 0);
  object.StartObj(out);
  for (int i = 0; i < n; ++i) {
    switch (i % 3) {
      case 0: object.WriteSubElement(out, i); break;
      case 1: object.WriteSubElement(out, Number(i)); break;
      default: object.WriteSubElement(out, Label(i)); break;
    }
  }
  object.EndObj(out);
  EndRoot(out);
  return path;
}

void ReadStreamOurs(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::string path = StreamFile(n);
  for (auto _ : state) {
    std::ifstream in(path, std::ios::binary);
    int integer = 0;
    double real = 0.0;
    std::string text;
    double sum = 0.0;
    bool ok = ParseStartXML(in) && ParseStartObj(in, "Values");
    for (int i = 0; ok && i < n; ++i) {
      switch (i % 3) {
        case 0: ok = ParseValue(in, integer); sum += integer; break;
        case 1: ok = ParseValue(in, real); sum += real; break;
        default: ok = ParseValue(in, text); sum += static_cast<double>(text.size()); break;
      }
    }
    ok = ok && ParseEndObj(in);
    if (!ok) state.SkipWithError("our reader refused the file");
    benchmark::DoNotOptimize(sum);
  }
  std::remove(path.c_str());
}

void ReadStreamLibxml2(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::string path = StreamFile(n);
  for (auto _ : state) {
    xmlTextReaderPtr reader = xmlReaderForFile(path.c_str(), nullptr, XML_PARSE_NONET);
    if (reader == nullptr) {
      state.SkipWithError("libxml2 could not open the file");
      break;
    }
    double sum = 0.0;
    int seen = 0;
    while (xmlTextReaderRead(reader) == 1) {
      if (xmlTextReaderNodeType(reader) != XML_READER_TYPE_ELEMENT) continue;
      xmlChar* value = xmlTextReaderGetAttribute(reader, BAD_CAST "value");
      if (value == nullptr) continue;
      const char* name = reinterpret_cast<const char*>(xmlTextReaderConstName(reader));
      const char* text = reinterpret_cast<const char*>(value);
      if (std::strcmp(name, "Int") == 0) {
        sum += std::atoi(text);
      } else if (std::strcmp(name, "Double") == 0) {
        sum += std::strtod(text, nullptr);
      } else {
        sum += static_cast<double>(std::string(text).size());
      }
      ++seen;
      xmlFree(value);
    }
    xmlFreeTextReader(reader);
    if (seen != n) state.SkipWithError("libxml2 saw a different number of values");
    benchmark::DoNotOptimize(sum);
  }
  std::remove(path.c_str());
}

}  // namespace

BENCHMARK(WriteTreeOurs)->Name("WriteTree/ours")->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(WriteTreeLibxml2)->Name("WriteTree/libxml2")->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(ReadStreamOurs)->Name("ReadStream/ours")->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(ReadStreamLibxml2)->Name("ReadStream/libxml2")->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
