#include "kxcommonr/mtd/KXCatVar.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "kxcommonr/mtd/KXCatNumEncoder.h"
#include "kxcommonr/mtd/KXStringEncoder.h"
#include "kxcommonr/testing/DisplayCapture.h"
#include "kxcommonr/testing/ObjectStreamTestUtil.h"

namespace {

using KXMTD_NAMESPACE::IKXEncoder;
using KXMTD_NAMESPACE::IKXVariable;
using KXMTD_NAMESPACE::KXCatNumEncoder;
using KXMTD_NAMESPACE::KXCatVar;
using KXMTD_NAMESPACE::KXStringEncoder;

TEST(IKXVariableTest, EnumerationTexts) {
  const struct {
    const char* (*text)(int);
    std::vector<std::string> texts;
  } cases[] = {
      {IKXVariable::MeasureLevelText,
       {" = Unknown measure level", " = Continuous", " = Numeric Categorical",
        " = String Categorical", " = Frequency weight"}},
      {IKXVariable::VariableRoleText,
       {" = Undefined variable role", " = Target", " = Target Response", " = Frequency weight",
        " = Input", " = Possible Input", " = Unused variable"}},
      {IKXVariable::VariableStorageText,
       {" = Undefined variable storage", " = Integer", " = Real", " = String", " = Date",
        " = Time", " = Timestamp"}},
      {IKXVariable::WRoundingOptionText,
       {" = Truncate to smaller int", " = Round to closest int", " = As is - no change"}},
  };
  for (const auto& c : cases) {
    for (std::size_t i = 0; i < c.texts.size(); ++i) EXPECT_EQ(c.text(static_cast<int>(i)), c.texts[i]);
    EXPECT_STREQ(c.text(-1), " = unrecognized");
    EXPECT_STREQ(c.text(static_cast<int>(c.texts.size())), " = unrecognized");
  }
}

TEST(KXCatVarTest, EncoderCategoriesAndStatus) {
  KXCatVar numeric("n", "", 5, IKXVariable::MeasureNumericCategorical, IKXVariable::RoleInput, true);
  KXCatVar text("s", "", 5, IKXVariable::MeasureStringCategorical, IKXVariable::RoleTarget, false);
  KXCatVar unknown("u", "", 0, IKXVariable::MeasureUnknown, IKXVariable::RoleInput, false);
  EXPECT_EQ(numeric.GetEncoder()->GetEncoderType(), IKXEncoder::EncoderTypeCatNum);
  EXPECT_EQ(text.GetEncoder()->GetEncoderType(), IKXEncoder::EncoderTypeString);
  EXPECT_EQ(unknown.GetEncoder()->GetEncoderType(), IKXEncoder::EncoderTypeString);
  EXPECT_EQ(numeric.GetVariableStorage(), IKXVariable::StorageUndefined);
  EXPECT_TRUE(numeric.GetOrdinalFlag());
  numeric.SetOrdinalFlag(false);
  numeric.SetVariableLabel("Numbers");
  EXPECT_EQ(numeric.GetVariableLabel() + (numeric.GetOrdinalFlag() ? "+" : "-"), "Numbers-");

  EXPECT_EQ(numeric.GetMissingValueReplacement(), nullptr);
  numeric.SetMissingValueReplacement("");
  ASSERT_NE(numeric.GetMissingValueReplacement(), nullptr);
  EXPECT_EQ(*numeric.GetMissingValueReplacement(), "");

  // The stored count only rises with the encoder; ChangeEncoder may lower it.
  numeric.GetEncoder()->Encode(1.0);
  EXPECT_EQ(numeric.UpdateNumberOfCategories(), 5);
  const struct {
    int count;
    IKXVariable::VarStatus status;
  } statuses[] = {{0, IKXVariable::VarStatusNoCategory}, {-3, IKXVariable::VarStatusNoCategory},
                  {1, IKXVariable::VarStatusSingleCategory}, {5, IKXVariable::VarStatusValid}};
  for (const auto& s : statuses) {
    unknown.SetNumberOfCategories(s.count);
    EXPECT_EQ(unknown.GetVarStatus(), s.status) << s.count;
  }
  for (const double v : {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0}) numeric.GetEncoder()->Encode(v);
  EXPECT_EQ(numeric.GetVarStatus(), IKXVariable::VarStatusValid);
  EXPECT_EQ(numeric.GetNumberOfCategories(), 7);
  numeric.ChangeEncoder(new KXCatNumEncoder());
  EXPECT_EQ(numeric.GetNumberOfCategories(), 0);

  // Copies are deep: the clone's encoder is its own.
  text.GetEncoder()->Encode(std::string("a"));
  const std::unique_ptr<IKXVariable> clone(text.Clone());
  clone->GetEncoder()->Encode(std::string("b"));
  EXPECT_EQ(text.GetEncoder()->GetNumberOfCategories(), 1);
  KXCatVar assigned = numeric;
  assigned = text;
  EXPECT_EQ(assigned.GetVariableName(), "s");
  EXPECT_NE(assigned.GetEncoder(), text.GetEncoder());
}

TEST(KXCatVarTest, WritesItemsInOrderAndReadsThemBack) {
  KXCatVar variable("colour", "Colour of the car", 3, IKXVariable::MeasureStringCategorical,
                    IKXVariable::RoleInput, true);
  variable.SetVariableStorage(IKXVariable::StorageString);
  variable.GetEncoder()->Encode(std::string("red"));
  int written = 0;
  EXPECT_EQ(kxtesting::WrittenText(variable, 1, &written),
            "\n\t<Obj name=\"KXCatVar\">\n\t\t<String value=\"colour\"/>"
            "\n\t\t<String value=\"Colour of the car\"/>\n\t\t<Int value=\"4\"/>"
            "\n\t\t<Int value=\"3\"/>\n\t\t<Int value=\"3\"/>\n\t\t<Int value=\"3\"/>"
            "\n\t\t<Int value=\"1\"/>\n\t\t<Int value=\"0\"/>\n\t\t<Int value=\"3\"/>"
            "\n\t\t<Obj name=\"KXStringEncoder\">\n\t\t\t<Int value=\"1\"/>\n\t\t\t<Int value=\"0\"/>"
            "\n\t\t\t<Int value=\"1\"/>\n\t\t\t<String value=\"red\"/>\n\t\t\t<String value=\"\"/>"
            "\n\t\t</Obj>\n\t</Obj>");
  EXPECT_EQ(written, 1 + 9 + 1 + 7 + 1);

  KXCatVar read("x", "", 0, IKXVariable::MeasureNumericCategorical, IKXVariable::RoleUnused, false);
  kxtesting::ExpectRoundTrip(variable, read);
  EXPECT_EQ(read.GetEncoder()->GetEncoderType(), IKXEncoder::EncoderTypeString);
  EXPECT_EQ(read.GetVariableRole(), IKXVariable::RoleInput);

  // A replacement is one item more.
  variable.SetMissingValueReplacement("grey");
  kxtesting::ExpectRoundTrip(variable, read);
  EXPECT_EQ(kxtesting::ReadFromText(read, kxtesting::WrittenText(variable)).result, written + 1);
  EXPECT_EQ(*read.GetMissingValueReplacement(), "grey");
}

TEST(KXCatVarTest, FailedReadsReportAndThrow) {
  KXCatVar source("v", "", 2, IKXVariable::MeasureNumericCategorical, IKXVariable::RoleInput, false);
  source.GetEncoder()->Encode(1.0);
  const std::string good = kxtesting::WrittenText(source);
  const auto replaced = [&good](const std::string& from, const std::string& to) {
    std::string text = good;
    return text.replace(text.find(from), from.size(), to);
  };
  std::string withoutEncoder = good;
  withoutEncoder.erase(withoutEncoder.find("\n\t<Obj name=\"KXCatNumEncoder\">"));
  const struct {
    const char* what;
    std::string text;
    const char* encoderMessage;
  } cases[] = {
      {"wrong name", replaced("KXCatVar", "KXContVar"), ""},
      {"role not an Int line", replaced("<Int value=\"4\"/>", "<String value=\"4\"/>"), ""},
      {"flag not 0 or 1", replaced("<Int value=\"0\"/>\n\t<Int value=\"0\"/>\n\t<Int value=\"2\"/>",
                                  "<Int value=\"5\"/>\n\t<Int value=\"0\"/>\n\t<Int value=\"2\"/>"), ""},
      {"type 0", replaced("<Int value=\"2\"/>\n\t<Obj", "<Int value=\"0\"/>\n\t<Obj"), ""},
      {"type 1", replaced("<Int value=\"2\"/>\n\t<Obj", "<Int value=\"1\"/>\n\t<Obj"), ""},
      {"type 3 with a numeric encoder", replaced("<Int value=\"2\"/>\n\t<Obj", "<Int value=\"3\"/>\n\t<Obj"),
       "Failure reading KXStringEncoder!\n"},
      {"no end", good.substr(0, good.rfind("</Obj>")), ""},
      {"truncated", withoutEncoder, "Failure reading KXCatNumEncoder!\n"},
      {"over-long line", replaced("\"v\"", "\"" + std::string(300, 'v') + "\""), ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    KXCatVar variable("old", "", 0, IKXVariable::MeasureNumericCategorical, IKXVariable::RoleInput, false);
    const kxtesting::ReadOutcome outcome = kxtesting::ReadFromText(variable, c.text);
    EXPECT_TRUE(outcome.threw);
    EXPECT_EQ(outcome.errText, std::string(c.encoderMessage) + "Failure reading KXCatVar!\n");
    EXPECT_EQ(outcome.outText, "");
  }
  // Fields read before the failure keep their new values.
  KXCatVar variable("old", "", 0, IKXVariable::MeasureNumericCategorical, IKXVariable::RoleUnused, false);
  EXPECT_TRUE(kxtesting::ReadFromText(variable, replaced("<Int value=\"2\"/>\n\t<Obj", "<Int value=\"0\"/>\n\t<Obj")).threw);
  EXPECT_EQ(variable.GetVariableName(), "v");
  EXPECT_EQ(variable.GetVariableRole(), IKXVariable::RoleInput);
  EXPECT_EQ(variable.GetEncoder(), nullptr);
}

TEST(KXCatVarTest, Displays) {
  KXCatVar variable("grade", "School grade", 4, IKXVariable::MeasureNumericCategorical,
                    IKXVariable::RoleTarget, true);
  kxtesting::DisplayCapture capture;
  variable.Display();
  variable.SetMissingValueReplacement("9");
  variable.SetVariableStorage(static_cast<IKXVariable::VariableStorage>(42));
  capture.Reset();
  variable.Display();
  EXPECT_EQ(capture.Text(),
            "\nCategorical variable: name = grade\nLabel = School grade\nVariable role = Target"
            "\nVariable storage = unrecognized\nMeasurement Level = Numeric Categorical"
            "\nNumber of categories = 4\nOrdinal variable indicator = true"
            "\nMissing value replacement = 9");
}

}  // namespace
