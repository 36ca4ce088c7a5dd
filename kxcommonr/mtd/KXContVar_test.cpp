#include "kxcommonr/mtd/KXContVar.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/mtd/KXCatVar.h"
#include "kxcommonr/mtd/KXWeightVar.h"
#include "kxcommonr/testing/DisplayCapture.h"
#include "kxcommonr/testing/ObjectStreamTestUtil.h"
#include "kxcommonr/xml/XMLDocType.h"
#include "kxcommonr/xml/XMLReader.h"
#include "kxcommonr/xml/XMLWriter.h"

namespace {

using KXCommon::KXMV;
using KXMTD_NAMESPACE::IKXEncoder;
using KXMTD_NAMESPACE::IKXVariable;
using KXMTD_NAMESPACE::KXCatVar;
using KXMTD_NAMESPACE::KXContVar;
using KXMTD_NAMESPACE::KXWeightVar;

TEST(KXContVarTest, DefaultsBinsAndStatus) {
  KXContVar variable("age", "Age", IKXVariable::RoleInput);
  EXPECT_EQ(variable.GetMin(), -1.7976931348623157e308);
  EXPECT_EQ(variable.GetMax(), 1.7976931348623157e308);
  EXPECT_EQ(variable.GetNBins(), -1);
  EXPECT_TRUE(KXMV::IsMissing(variable.GetMean()) && KXMV::IsMissing(variable.GetStdDev()));
  EXPECT_EQ(variable.GetMissingValueReplacement(), nullptr);
  EXPECT_EQ(variable.GetVarStatus(), IKXVariable::VarStatusValid);
  EXPECT_EQ(variable.GetNumberOfCategories(), 0);
  EXPECT_EQ(variable.UpdateNumberOfCategories(), 0);
  const struct {
    double min, max;
    IKXVariable::VarStatus status;
  } ranges[] = {{3, 3, IKXVariable::VarStatusSingleCategory},
                {4, 3, IKXVariable::VarStatusNoCategory},
                {-1, 3, IKXVariable::VarStatusValid}};
  for (const auto& r : ranges) {
    variable.SetMinMax(r.min, r.max);
    EXPECT_EQ(variable.GetVarStatus(), r.status);
  }
  // Equal-width bins from the range; cut points given; invalid ones refused.
  KXContVar ranged("x", "", 0, 10, IKXVariable::RoleInput, true, 4);
  EXPECT_EQ(ranged.GetCutPoints(), (std::vector<double>{2.5, 5, 7.5}));
  EXPECT_EQ(ranged.GetNumberOfCategories(), 4);
  EXPECT_EQ(ranged.GetEncoder()->Encode(5.0), 1);
  EXPECT_EQ(KXContVar("x", "", 0, 10, IKXVariable::RoleInput, false, 4).GetNumberOfCategories(), 0);
  KXContVar cut("x", "", 1, 9, {3, 6}, true, IKXVariable::RoleInput);
  EXPECT_EQ(cut.GetNBins(), 3);
  KXContVar kept("x", "", {3, 6}, false, IKXVariable::RoleInput);
  EXPECT_EQ(kept.GetCutPoints(), (std::vector<double>{3, 6}));
  EXPECT_EQ(kept.GetEncoder()->Encode(4.5), 4.5);
  KXContVar refused("x", "", {6, 3}, true, IKXVariable::RoleInput);
  EXPECT_TRUE(refused.GetCutPoints().empty());
  EXPECT_FALSE(refused.SetCutPoints({1, 1}));
  const std::unique_ptr<IKXVariable> clone(cut.Clone());
  EXPECT_NE(clone->GetEncoder(), cut.GetEncoder());
  EXPECT_EQ(clone->GetEncoder()->Encode(7.0), 2);
  KXContVar assigned = refused;
  assigned = cut;
  EXPECT_EQ(kxtesting::WrittenText(assigned), kxtesting::WrittenText(cut));
  EXPECT_NE(assigned.GetEncoder(), cut.GetEncoder());

  cut.SetVariableLabel("Cut");
  cut.SetNBins(3);
  cut.SetStdDev(2);
  kxtesting::DisplayCapture capture;
  cut.Display();
  EXPECT_EQ(capture.Text(),
            "\nContinuous variable: name = x\nLabel = Cut\nVariable role = Input"
            "\nVariable storage = Undefined variable storage\nNumber of bins = 3\nMinimum = 1"
            "\nMaximum = 9\nMean = miss\nStandard deviation = 2\nCut points (size = 2)\n  3 6"
            "\nContinuous encoder\nBinned = true\nNumber of categories = 3"
            "\nCut points (size = 2)\n  = 3\n  = 6\nUser-missing values (size = 0)");
}

TEST(KXContVarTest, RoundTripsWithoutRoleAndAcceptsNoEncoder) {
  KXContVar variable("income", "Yearly income", 0.5, 1.7976931348623155e308, {1e4, 5e4}, true,
                     IKXVariable::RoleTarget);
  variable.SetMean(0.1);
  variable.SetStdDev(1.0 / 3);
  variable.SetMissingValueReplacement("0");
  KXContVar read("r", "", IKXVariable::RolePossibleInput);
  kxtesting::ExpectRoundTrip(variable, read);
  EXPECT_EQ(read.GetVariableRole(), IKXVariable::RolePossibleInput);  // not saved
  EXPECT_EQ(read.GetMax(), 1.7976931348623155e308);  // 17 digits next to the largest double
  EXPECT_EQ(read.GetCutPoints(), variable.GetCutPoints());
  EXPECT_EQ(read.GetStdDev(), 0.333333333333333);  // 15 digits
  KXContVar fresh("f", "", IKXVariable::RoleInput);
  kxtesting::ExpectRoundTrip(KXContVar("d", "", IKXVariable::RoleInput), fresh);
  EXPECT_EQ(fresh.GetMax(), 1.7976931348623157e308);
  EXPECT_TRUE(KXMV::IsMissing(fresh.GetMin()));

  // Type 0: no encoder, nothing more read; the count drops the encoder's lines.
  std::string text = kxtesting::WrittenText(variable);
  text.replace(text.find("<Int value=\"1\"/>\n\t<Obj"), std::string::npos, "<Int value=\"0\"/>\n</Obj>\n");
  const kxtesting::ReadOutcome outcome = kxtesting::ReadFromText(read, text);
  EXPECT_FALSE(outcome.threw);
  EXPECT_EQ(outcome.result, 1 + 9 + 1 + 1 + 1);
  EXPECT_EQ(read.GetEncoder(), nullptr);
  EXPECT_EQ(read.GetNumberOfCategories(), 0);
  EXPECT_EQ(read.UpdateNumberOfCategories(), 3);  // no encoder: the bins stay
}

TEST(KXContVarTest, FailedReadsReportAndThrow) {
  const std::string good = kxtesting::WrittenText(KXContVar("v", "", IKXVariable::RoleInput));
  const auto replaced = [&good](const std::string& from, const std::string& to) {
    std::string text = good;
    return text.replace(text.find(from), from.size(), to);
  };
  const struct {
    const char* what;
    std::string text;
    const char* errText;
    const char* outText;
  } cases[] = {
      {"wrong name", replaced("KXContVar", "KXCatVar"), "Failure reading KXContVar!\n", ""},
      {"mean no number", replaced("\"Missing\"/>\n\t<Double value=\"Missing\"",
                                  "\"Missing\"/>\n\t<Double value=\"mean\""),
       "Failure reading KXContVar!\n", ""},
      {"type 2", replaced("<Int value=\"1\"/>\n\t<Obj", "<Int value=\"2\"/>\n\t<Obj"), "",
       "Wrong encoder type in KXContVar!\n"},
      {"corrupt encoder", replaced("<Int value=\"0\"/>\n\t\t<Int value=\"0\"/>", "<Int value=\"0\"/>\n\t\t<Int value=\"-4\"/>"),
       "Failure reading KXContEncoder!\nFailure reading KXContVar!\n", ""},
      {"no end", good.substr(0, good.rfind("</Obj>")), "Failure reading KXContVar!\n", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    KXContVar variable("old", "", IKXVariable::RoleInput);
    const kxtesting::ReadOutcome outcome = kxtesting::ReadFromText(variable, c.text);
    EXPECT_TRUE(outcome.threw);
    EXPECT_EQ(outcome.errText, c.errText);
    EXPECT_EQ(outcome.outText, c.outText);
  }
}

TEST(KXWeightVarTest, HasNoCategoriesAndRoundTrips) {
  KXWeightVar weight("w", "Case weight", IKXVariable::WRoundTruncate);
  weight.SetVariableRole(IKXVariable::RoleInput);
  weight.SetMissingValueReplacement("1");
  EXPECT_EQ(weight.GetVariableRole(), IKXVariable::RoleFrequencyWeight);
  EXPECT_EQ(weight.GetMeasureLevel(), IKXVariable::MeasureFrequencyWeight);
  EXPECT_EQ(weight.GetMissingValueReplacement(), nullptr);
  EXPECT_EQ(weight.GetEncoder()->Encode(2.9), 2);
  EXPECT_EQ(weight.GetNumberOfCategories(), 0);
  EXPECT_EQ(weight.UpdateNumberOfCategories(), 0);

  KXWeightVar read("r", "", IKXVariable::WRoundAsIs);
  read = weight;  // copies are deep: each holds its own encoder
  const std::unique_ptr<IKXVariable> clone(read.Clone());
  EXPECT_EQ(kxtesting::WrittenText(*clone), kxtesting::WrittenText(weight));
  EXPECT_NE(clone->GetEncoder(), weight.GetEncoder());
  EXPECT_EQ(clone->GetVarStatus(), IKXVariable::VarStatusValid);
  read = KXWeightVar("r", "", IKXVariable::WRoundAsIs);
  kxtesting::ExpectRoundTrip(weight, read);
  EXPECT_EQ(read.GetRoundEncoder().GetRoundingOption(), IKXVariable::WRoundTruncate);
  EXPECT_EQ(kxtesting::ReadFromText(read, kxtesting::WrittenText(weight)).result, 1 + 3 + 3 + 1);

  std::string text = kxtesting::WrittenText(weight);
  text.replace(text.find("<Int value=\"0\"/>\n\t</Obj>"), 16, "<Int value=\"9\"/>");
  const kxtesting::ReadOutcome outcome = kxtesting::ReadFromText(read, text);
  EXPECT_TRUE(outcome.threw);
  EXPECT_EQ(outcome.errText, "Failure reading KXRoundEncoder!\nFailure reading KXWeightVar!\n");

  kxtesting::DisplayCapture capture;
  weight.Display();
  EXPECT_EQ(capture.Text(),
            "\nFrequency weight variable: name = w\nLabel = Case weight"
            "\nVariable storage = Undefined variable storage\n\nRounding encoder"
            "\nRounding option = Truncate to smaller int");
}

// A whole description - dozens of variables of every kind - in one document
// reads back, object after object, into variables that write the same text.
TEST(KXVariablesTest, ADescriptionOfManyVariablesRoundTripsInOneDocument) {
  std::vector<std::unique_ptr<IKXVariable>> written, read;
  for (int i = 0; i < 40; ++i) {
    const std::string name = "var" + std::to_string(i);
    if (i % 3 == 0) {
      auto* v = new KXCatVar(name, "label " + name, 0, IKXVariable::MeasureStringCategorical,
                             IKXVariable::RoleInput, i % 2 == 0);
      for (int k = 0; k <= i; ++k) v->GetEncoder()->Encode("level " + std::to_string(k));
      v->UpdateNumberOfCategories();
      written.emplace_back(v);
      read.emplace_back(new KXCatVar("", "", 0, IKXVariable::MeasureUnknown, IKXVariable::RoleInput, false));
    } else if (i % 3 == 1) {
      auto* v = new KXContVar(name, "", -i, i * 1.5, IKXVariable::RoleInput, true, 1 + i % 5);
      v->SetMean(i / 7.0);
      written.emplace_back(v);
      read.emplace_back(new KXContVar("", "", IKXVariable::RoleInput));
    } else {
      written.emplace_back(new KXWeightVar(name, "", IKXVariable::WRoundClosest));
      read.emplace_back(new KXWeightVar("", "", IKXVariable::WRoundAsIs));
    }
  }
  std::ostringstream document;
  const std::unique_ptr<KXXML_NAMESPACE::XMLDocType> docType(
      KXXML_NAMESPACE::XMLDocType::Create(KXXML_NAMESPACE::kXMLRootName, KXXML_NAMESPACE::kXMLSystemId, 0));
  KXXML_NAMESPACE::ExportFormat format;
  docType->ToStream(document, format, false);
  KXXML_NAMESPACE::WriteHeader(document, "test");
  KXXML_NAMESPACE::EndHeader(document);
  for (const auto& v : written) v->WriteObjectXML(document, 1);
  KXXML_NAMESPACE::EndRoot(document);

  std::ifstream in(kxtesting::WriteTempFile("description", document.str()), std::ios::binary);
  ASSERT_TRUE(KXXML_NAMESPACE::ParseStartXML(in));
  for (std::size_t i = 0; i < read.size(); ++i) {
    ASSERT_GT(read[i]->ReadObjectXML(in), 0) << i;
    EXPECT_EQ(kxtesting::WrittenText(*read[i], 1), kxtesting::WrittenText(*written[i], 1)) << i;
  }
}

}  // namespace
