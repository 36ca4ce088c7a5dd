#include "kxcommonr/common/random/KXURandom.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/common/random/internal/KXByteOrder.h"
#include "kxcommonr/common/random/internal/KXRandomAccess.h"
#include "kxcommonr/xml/XMLObj.h"
#include "kxcommonr/xml/XMLReader.h"

namespace KXCommon {

namespace {

const char kTag[4] = {'K', 'X', 'U', 'R'};
const char kObjectName[] = "KXURandom";

}  // namespace

KXURandom::KXURandom() : KXURandom(34567u, true, true, nullptr) {}

KXURandom::KXURandom(unsigned long seed, bool usePortable, bool useTwister, KXRandom* user)
    : fuSeed(static_cast<std::uint32_t>(seed)),
      fbUsePortable(usePortable),
      fbUseTwister(usePortable && useTwister && user == nullptr),
      fpTwister(nullptr),
      fpUser(user),
      fpDrawTwister(nullptr) {
  if (fbUseTwister) CreateTwister();
  UpdateDrawPath();
}

KXURandom::KXURandom(const KXURandom& other)
    : fuSeed(other.fuSeed),
      fbUsePortable(other.fbUsePortable),
      fbUseTwister(other.fbUseTwister),
      fpTwister(nullptr),
      fpUser(other.fpUser),
      fpDrawTwister(nullptr) {
  if (fbUseTwister) CreateTwister();
  UpdateDrawPath();
}

KXURandom& KXURandom::operator=(const KXURandom& other) {
  if (this == &other) return *this;
  KXRandomTwister* twister = nullptr;
  if (other.fbUseTwister) {
    twister = new KXRandomTwister();  // before anything changes: may throw
    twister->Initialize(other.fuSeed);
  }
  delete fpTwister;
  fpTwister = twister;
  fuSeed = other.fuSeed;
  fbUsePortable = other.fbUsePortable;
  fbUseTwister = other.fbUseTwister;
  fpUser = other.fpUser;
  UpdateDrawPath();
  return *this;
}

KXURandom::~KXURandom() { delete fpTwister; }

void KXURandom::CreateTwister() {
  fpTwister = new KXRandomTwister();
  fpTwister->Initialize(fuSeed);
  UpdateDrawPath();
}

void KXURandom::UpdateDrawPath() {
  fpDrawTwister = fpUser == nullptr && fbUsePortable && fbUseTwister ? fpTwister : nullptr;
}

void KXURandom::SetSeed(unsigned long seed) {
  fuSeed = static_cast<std::uint32_t>(seed);
  if (!fbUsePortable) {
    std::srand(fuSeed);
  } else if (fbUseTwister) {
    if (fpTwister == nullptr) {
      CreateTwister();
    } else {
      fpTwister->Initialize(fuSeed);
    }
  }
}

void KXURandom::SetUsePortable(bool usePortable) {
  fbUsePortable = usePortable;
  if (!usePortable && fbUseTwister) {
    fbUseTwister = false;
    delete fpTwister;
    fpTwister = nullptr;
  }
  UpdateDrawPath();
}

double KXURandom::GetRandom() { return internal::URandomAccess::Draw(*this); }

double internal::URandomAccess::DrawOther(KXURandom& g) {
  if (g.fpUser != nullptr) return g.fpUser->GetRandom();
  if (!g.fbUsePortable) return std::rand() / static_cast<double>(RAND_MAX);
  if (!g.fbUseTwister) {
    g.fuSeed = static_cast<std::uint32_t>(static_cast<std::uint64_t>(g.fuSeed) * 397204094u %
                                          2147483647u);
    return g.fuSeed * 4.656612873077393e-10;
  }
  if (g.fpTwister == nullptr) g.CreateTwister();
  return TwisterRealOpen(TwisterAccess::Next(*g.fpTwister));
}

bool KXURandom::AssignRead(double seed, bool usePortable, bool useTwister) {
  if (!(seed >= 0.0 && seed < 4294967296.0)) return false;  // NaN fails too
  fuSeed = static_cast<std::uint32_t>(seed);
  fbUsePortable = usePortable;
  fbUseTwister = useTwister;
  UpdateDrawPath();
  return true;
}

int KXURandom::WriteObject(std::fstream& fs) const {
  if (!fs.good()) return 0;
  unsigned char record[kRecordBytes];
  std::memcpy(record, kTag, 4);
  internal::PutLEDouble(record + 4, static_cast<double>(fuSeed));
  internal::PutLE32(record + 12, fbUsePortable ? 1u : 0u);
  internal::PutLE32(record + 16, fbUseTwister ? 1u : 0u);
  fs.write(reinterpret_cast<const char*>(record), kRecordBytes);
  return fs.good() ? kRecordBytes : 0;
}

int KXURandom::ReadObject(std::fstream& fs) {
  unsigned char record[kRecordBytes];
  if (!fs.good() || !fs.read(reinterpret_cast<char*>(record), 4) ||
      std::memcmp(record, kTag, 4) != 0 ||
      !fs.read(reinterpret_cast<char*>(record + 4), kRecordBytes - 4)) {
    return 0;
  }
  return AssignRead(internal::GetLEDouble(record + 4), internal::GetLE32(record + 12) == 1u,
                    internal::GetLE32(record + 16) == 1u)
             ? kRecordBytes
             : 0;
}

int KXURandom::WriteObjectXML(std::ostream& os, int indent) const {
  const KXXML::XMLObj obj(kObjectName, indent);
  obj.StartObj(os);
  obj.WriteSubElement(os, static_cast<double>(fuSeed));
  obj.WriteSubElement(os, fbUsePortable);
  obj.WriteSubElement(os, fbUseTwister);
  obj.EndObj(os);
  return os.good() ? 1 : 0;
}

int KXURandom::ReadObjectXML(std::ifstream& is) {
  double seed = std::nan("");  // a value line that is no number leaves it NaN
  int usePortable = 0, useTwister = 0;
  if (KXXML::ParseStartObj(is, kObjectName) && KXXML::ParseValue(is, seed) &&
      KXXML::ParseValue(is, usePortable) && KXXML::ParseValue(is, useTwister) &&
      KXXML::ParseEndObj(is) && AssignRead(seed, usePortable == 1, useTwister == 1)) {
    return 1;
  }
  std::cerr << "Failure reading KXURandom!\n";
  return 0;
}

void KXURandom::Display() const {
  KXComponentDisplay::DisplayText(1, "KXURandom display start");
  KXComponentDisplay::DisplayDF("The seed", fuSeed);
  KXComponentDisplay::DisplayB("Portable RNG indicator", fbUsePortable);
  KXComponentDisplay::DisplayB("Mersenne Twister RNG indicator", fbUseTwister);
  KXComponentDisplay::DisplayText(1, "KXURandom display end");
}

}  // namespace KXCommon
