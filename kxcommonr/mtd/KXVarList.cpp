#include "kxcommonr/mtd/KXVarList.h"

#include <iostream>
#include <utility>

#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/mtd/KXCatVar.h"
#include "kxcommonr/mtd/KXContStats.h"
#include "kxcommonr/mtd/KXContVar.h"
#include "kxcommonr/mtd/KXWeightVar.h"
#include "kxcommonr/mtd/internal/KXObjectIO.h"

namespace KXMTD_NAMESPACE {

namespace {

const char kObjectName[] = "KXVarList";
const char kReadFailure[] = "Failure reading KXVarList!\n";

const char* ClassName(const IKXVariable& variable) {
  if (dynamic_cast<const KXCatVar*>(&variable) != nullptr) return "KXCatVar";
  if (dynamic_cast<const KXWeightVar*>(&variable) != nullptr) return "KXWeightVar";
  return "KXContVar";
}

// A new, empty variable of the class named `name`, or null.
IKXVariable* NewVariable(const std::string& name) {
  if (name == "KXCatVar") {
    return new KXCatVar("", "", 0, IKXVariable::MeasureStringCategorical, IKXVariable::RoleInput, false);
  }
  if (name == "KXContVar") return new KXContVar("", "", IKXVariable::RoleInput);
  if (name == "KXWeightVar") return new KXWeightVar("", "", IKXVariable::WRoundClosest);
  return nullptr;
}

IKXVariable::VariableStorage StorageOf(RawData::Type type) {
  switch (type) {
    case RawData::Integer: return IKXVariable::StorageInteger;
    case RawData::Real: return IKXVariable::StorageReal;
    case RawData::String: return IKXVariable::StorageString;
    case RawData::Date: return IKXVariable::StorageDate;
    case RawData::Time: return IKXVariable::StorageTime;
    default: return IKXVariable::StorageTimestamp;
  }
}

// What one pass learns of a column.
struct ColumnSurvey {
  bool hasString = false, hasNumber = false, typed = false;
  RawData::Type type = RawData::Real;
  KXContStats stats{2};
  std::unique_ptr<KXCatVar> categorical;
};

void Fill(KXCatVar& variable, const RawData& value, std::string& text) {
  if (value.AsString(text)) variable.GetEncoder()->Encode(text);
}

}  // namespace

KXVarList::KXVarList() = default;
KXVarList::KXVarList(KXVarList&&) noexcept = default;
KXVarList& KXVarList::operator=(KXVarList&&) noexcept = default;
KXVarList::~KXVarList() = default;

KXVarList::KXVarList(const KXVarList& other) : fIndex(other.fIndex) {
  fvVariables.reserve(other.fvVariables.size());
  for (const auto& v : other.fvVariables) fvVariables.emplace_back(v->Clone());
}

KXVarList& KXVarList::operator=(const KXVarList& other) {
  if (this != &other) {
    KXVarList copy(other);
    *this = std::move(copy);
  }
  return *this;
}

void KXVarList::Reindex() {
  fIndex.clear();
  for (std::size_t i = 0; i < fvVariables.size(); ++i) {
    fIndex.emplace(fvVariables[i]->GetVariableName(), static_cast<int>(i));
  }
}

bool KXVarList::Add(IKXVariable* variable) {
  if (variable == nullptr || fIndex.count(variable->GetVariableName()) != 0) return false;
  fIndex.emplace(variable->GetVariableName(), Size());
  fvVariables.emplace_back(variable);
  return true;
}

bool KXVarList::Remove(int index) {
  if (index < 0 || index >= Size()) return false;
  fvVariables.erase(fvVariables.begin() + index);
  Reindex();
  return true;
}

void KXVarList::Clear() {
  fvVariables.clear();
  fIndex.clear();
}

IKXVariable* KXVarList::Get(int index) {
  return index >= 0 && index < Size() ? fvVariables[static_cast<std::size_t>(index)].get() : nullptr;
}

const IKXVariable* KXVarList::Get(int index) const {
  return index >= 0 && index < Size() ? fvVariables[static_cast<std::size_t>(index)].get() : nullptr;
}

int KXVarList::IndexOf(const std::string& name) const {
  const auto found = fIndex.find(name);
  return found == fIndex.end() ? -1 : found->second;
}

std::vector<int> KXVarList::SelectByRole(IKXVariable::VariableRole role) const {
  std::vector<int> selected;
  for (int i = 0; i < Size(); ++i) {
    if (fvVariables[static_cast<std::size_t>(i)]->GetVariableRole() == role) selected.push_back(i);
  }
  return selected;
}

bool KXVarList::BuildFromPass(IKXRecordIterator& records, std::string& reason) {
  const std::vector<std::string>& names = records.GetColumnNames();
  std::vector<ColumnSurvey> columns(names.size());
  for (std::size_t c = 0; c < names.size(); ++c) {
    columns[c].categorical.reset(new KXCatVar(names[c], "", 0, IKXVariable::MeasureStringCategorical,
                                              IKXVariable::RoleInput, false));
  }
  RawRecord record;
  std::string text;
  bool mixed = false;
  while (records.Next(record)) {
    for (std::size_t c = 0; c < columns.size(); ++c) {
      const RawData& value = record[static_cast<int>(c)];
      ColumnSurvey& column = columns[c];
      if (!column.typed) {
        column.type = value.GetType();
        column.typed = !value.IsNull();
      }
      if (value.IsNull()) continue;
      double number = 0.0;
      if (value.GetType() == RawData::String) {
        if (!column.hasString && column.hasNumber) mixed = true;
        column.hasString = true;
        Fill(*column.categorical, value, text);
      } else if (value.AsReal(number)) {
        if (column.hasString && !column.hasNumber) mixed = true;
        column.hasNumber = true;
        column.stats.Add(number);
      }
    }
  }
  // A column that mixed numbers and strings is read again for its categories.
  bool ok = records.GetFailReason().empty() && records.NewPass();
  if (ok && mixed) {
    for (ColumnSurvey& column : columns) {
      if (column.hasString && column.hasNumber) {
        column.categorical.reset(new KXCatVar(column.categorical->GetVariableName(), "", 0,
                                              IKXVariable::MeasureStringCategorical,
                                              IKXVariable::RoleInput, false));
      }
    }
    while (records.Next(record)) {
      for (std::size_t c = 0; c < columns.size(); ++c) {
        if (columns[c].hasString && columns[c].hasNumber) {
          Fill(*columns[c].categorical, record[static_cast<int>(c)], text);
        }
      }
    }
    ok = records.GetFailReason().empty() && records.NewPass();
  }
  if (!ok) {
    reason = records.GetFailReason();
    return false;
  }
  KXVarList built;
  for (std::size_t c = 0; c < columns.size(); ++c) {
    ColumnSurvey& column = columns[c];
    if (column.hasString) {
      column.categorical->SetVariableStorage(IKXVariable::StorageString);
      column.categorical->UpdateNumberOfCategories();
      built.fvVariables.emplace_back(column.categorical.release());
    } else {
      auto* variable = new KXContVar(names[c], "", IKXVariable::RoleInput);
      built.fvVariables.emplace_back(variable);
      variable->SetVariableStorage(StorageOf(column.type));
      if (column.stats.GetCounts().valid > 0) {
        variable->SetMinMax(column.stats.GetMin(), column.stats.GetMax());
        variable->SetMean(column.stats.GetMean());
        variable->SetStdDev(column.stats.GetStdDev());
      }
    }
  }
  built.Reindex();
  *this = std::move(built);
  return true;
}

bool KXVarList::Encode(const RawRecord& raw, Record& encoded) {
  if (raw.Size() != Size()) return false;
  encoded.Resize(Size());
  for (int i = 0; i < Size(); ++i) {
    const RawData& value = raw[i];
    IKXEncoder* encoder = fvVariables[static_cast<std::size_t>(i)]->GetEncoder();
    double code = KXCommon::KXMV::Missing();
    double number = 0.0;
    if (encoder != nullptr && !value.IsNull()) {
      if (value.GetType() == RawData::String) {
        code = encoder->Encode(value.StringValue());
      } else if (value.AsReal(number)) {
        code = encoder->Encode(number);
      }
    }
    encoded.Set(i, code);
  }
  return true;
}

int KXVarList::WriteObjectXML(std::ostream& os, int indent) const {
  detail::ObjectWriter out(os, kObjectName, indent);
  out.Value(Size());
  for (const auto& v : fvVariables) {
    out.Value(std::string(ClassName(*v)));
    out.Nested(v->WriteObjectXML(os, indent + 1));
  }
  return out.End();
}

int KXVarList::ReadObjectXML(std::ifstream& is) {
  detail::ObjectReader in(is);
  KXVarList read;
  int count = 0;
  bool ok = in.Start(kObjectName) && in.Count(count);
  std::string className;
  for (int i = 0; ok && i < count; ++i) {
    std::unique_ptr<IKXVariable> variable;
    ok = in.Value(className) && (variable.reset(NewVariable(className)), variable != nullptr);
    if (!ok) break;
    try {
      ok = in.Nested(variable->ReadObjectXML(is));
    } catch (IOException* e) {
      delete e;
      ok = false;
    }
    ok = ok && read.Add(variable.get());
    if (ok) variable.release();
  }
  if (!ok || !in.End()) detail::FailRead(std::cerr, kReadFailure);
  *this = std::move(read);
  return in.Items();
}

void KXVarList::Display() const {
  KXComponentDisplay::DisplayI("Number of variables", Size());
  for (const auto& v : fvVariables) v->Display();
}

}  // namespace KXMTD_NAMESPACE
