#include "kxcommonr/mtd/KXVarList.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/mtd/KXCatVar.h"
#include "kxcommonr/mtd/KXContVar.h"
#include "kxcommonr/mtd/KXWeightVar.h"
#include "kxcommonr/records/KXTextRecordIterator.h"
#include "kxcommonr/testing/DisplayCapture.h"
#include "kxcommonr/testing/ObjectStreamTestUtil.h"

namespace {

using KXCommon::KXMV;
using KXMTD_NAMESPACE::IKXVariable;
using KXMTD_NAMESPACE::KXCatVar;
using KXMTD_NAMESPACE::KXContVar;
using KXMTD_NAMESPACE::KXTextRecordIterator;
using KXMTD_NAMESPACE::KXVarList;
using KXMTD_NAMESPACE::KXWeightVar;
using KXMTD_NAMESPACE::MemoryRecordIterator;
using KXMTD_NAMESPACE::RawData;
using KXMTD_NAMESPACE::RawRecord;
using KXMTD_NAMESPACE::Record;

const char kData[] =
    "age,colour,when,code\n"
    "30,red,2024-01-02,7\n"
    "40,blue,2024-01-03,x\n"
    ",red,,\n"
    "50,\"green, light\",2024-01-05,9\n";

TEST(KXVarListTest, BuildsVariablesFromAPassAndEncodesRecords) {
  std::istringstream in(kData);
  KXTextRecordIterator it(in);
  KXVarList list;
  std::string reason;
  ASSERT_TRUE(list.BuildFromPass(it, reason)) << reason;
  ASSERT_EQ(list.Size(), 4);
  const auto* age = dynamic_cast<const KXContVar*>(list.Get(0));
  ASSERT_NE(age, nullptr);
  EXPECT_EQ(age->GetMin(), 30);
  EXPECT_EQ(age->GetMax(), 50);
  EXPECT_EQ(age->GetMean(), 40);
  EXPECT_EQ(age->GetStdDev(), 10);
  EXPECT_EQ(age->GetVariableStorage(), IKXVariable::StorageInteger);
  EXPECT_EQ(list.Get(1)->GetNumberOfCategories(), 3);
  EXPECT_EQ(list.Get(1)->GetVariableStorage(), IKXVariable::StorageString);
  EXPECT_EQ(list.Get(2)->GetVariableStorage(), IKXVariable::StorageDate);
  EXPECT_NE(dynamic_cast<const KXCatVar*>(list.Get(3)), nullptr);  // "7", "x", "9": strings
  EXPECT_EQ(list.IndexOf("when"), 2);
  EXPECT_EQ(list.IndexOf("nope"), -1);
  EXPECT_EQ(list.SelectByRole(IKXVariable::RoleInput), (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(list.Get(4), nullptr);

  // The iterator is ready for the next pass.
  std::vector<std::vector<double>> encoded;
  RawRecord raw;
  Record record;
  while (it.Next(raw)) {
    ASSERT_TRUE(list.Encode(raw, record));
    encoded.push_back(record.Values());
  }
  const double m = KXMV::Missing();
  EXPECT_EQ(encoded, (std::vector<std::vector<double>>{
                         {30, 0, 19724, 0}, {40, 1, 19725, 1}, {m, 0, m, m}, {50, 2, 19727, 2}}));
  EXPECT_FALSE(list.Encode(RawRecord({RawData::FromInteger(1)}), record));

  // A column mixing numbers and strings is read twice for its categories.
  MemoryRecordIterator mixed({"v"}, {RawRecord({RawData::FromInteger(5)}),
                                     RawRecord({RawData::FromString("five")}),
                                     RawRecord({RawData::FromReal(5.5)})});
  ASSERT_TRUE(list.BuildFromPass(mixed, reason));
  ASSERT_EQ(list.Size(), 1);
  EXPECT_EQ(list.Get(0)->GetNumberOfCategories(), 3);
  EXPECT_EQ(list.Get(0)->GetEncoder()->Encode(std::string("5.5")), 2);

  // A failing pass leaves the list as it was.
  std::istringstream bad("a,b\n1,2\n3\n");
  KXTextRecordIterator badIt(bad);
  EXPECT_FALSE(list.BuildFromPass(badIt, reason));
  EXPECT_EQ(reason, "line 3: 1 fields, expected 2");
  EXPECT_EQ(list.Size(), 1);
}

TEST(KXVarListTest, OwnsUniqueNamesAndCopiesDeeply) {
  KXVarList list;
  auto* weight = new KXWeightVar("w", "", IKXVariable::WRoundClosest);
  EXPECT_TRUE(list.Add(new KXContVar("x", "", IKXVariable::RoleTarget)));
  EXPECT_TRUE(list.Add(weight));
  KXContVar duplicate("x", "", IKXVariable::RoleInput);
  EXPECT_FALSE(list.Add(&duplicate));  // refused: the caller keeps it
  EXPECT_FALSE(list.Add(nullptr));
  EXPECT_EQ(list.SelectByRole(IKXVariable::RoleFrequencyWeight), std::vector<int>{1});
  KXVarList copy = list;
  EXPECT_NE(copy.Get(0), list.Get(0));
  EXPECT_TRUE(list.Remove(0));
  EXPECT_FALSE(list.Remove(5));
  EXPECT_EQ(list.IndexOf("w"), 0);
  EXPECT_EQ(copy.IndexOf("w"), 1);
  copy = list;
  EXPECT_EQ(copy.Size(), 1);
  list.Clear();
  EXPECT_EQ(list.IndexOf("w"), -1);
}

TEST(KXVarListTest, SavesAndRestoresTheWholeList) {
  std::istringstream in(kData);
  KXTextRecordIterator it(in);
  KXVarList list, read;
  std::string reason;
  ASSERT_TRUE(list.BuildFromPass(it, reason));
  list.Add(new KXWeightVar("freq", "", IKXVariable::WRoundTruncate));
  kxtesting::ExpectRoundTrip(list, read);
  EXPECT_EQ(read.IndexOf("freq"), 4);
  EXPECT_EQ(read.Get(1)->GetEncoder()->Encode(std::string("green, light")), 2);

  const std::string good = kxtesting::WrittenText(list);
  const auto replaced = [&good](const std::string& from, const std::string& to) {
    std::string text = good;
    return text.replace(text.find(from), from.size(), to);
  };
  const struct {
    const char* what;
    std::string text;
    const char* errText;
  } cases[] = {
      {"unknown class", replaced("\"KXContVar\"", "\"KXOtherVar\""), "Failure reading KXVarList!\n"},
      {"bad variable", replaced("<Obj name=\"KXCatVar\">", "<Obj name=\"KXCat\">"),
       "Failure reading KXCatVar!\nFailure reading KXVarList!\n"},
      {"duplicate name", replaced("\"freq\"", "\"age\""), "Failure reading KXVarList!\n"},
      {"no end", good.substr(0, good.rfind("</Obj>")), "Failure reading KXVarList!\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    KXVarList target = list;
    const kxtesting::ReadOutcome outcome = kxtesting::ReadFromText(target, c.text);
    EXPECT_TRUE(outcome.threw);
    EXPECT_EQ(outcome.errText, c.errText);
    EXPECT_EQ(kxtesting::WrittenText(target), good);
  }
  kxtesting::DisplayCapture capture;
  KXVarList one;
  one.Add(new KXWeightVar("w", "", IKXVariable::WRoundAsIs));
  one.Display();
  EXPECT_EQ(capture.Text(),
            "\nNumber of variables = 1\nFrequency weight variable: name = w\nLabel = "
            "\nVariable storage = Undefined variable storage\n\nRounding encoder"
            "\nRounding option = As is - no change");
}

}  // namespace
