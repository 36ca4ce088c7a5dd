// kxcommonr/mtd/IOException.h
//
// IOException: what the metadata readers throw when an object of the object
// stream cannot be read. It carries no data: the reader has already written
// its one-line message ("Failure reading KXCatVar!" and the like) before it
// throws. It is thrown as a newly allocated pointer; the catcher owns it:
//
//   try {
//     variable.ReadObjectXML(in);
//   } catch (KXMTD::IOException* e) {
//     delete e;
//     // the variable is only partly read: discard it
//   }
#ifndef KXCOMMONR_MTD_IOEXCEPTION_H
#define KXCOMMONR_MTD_IOEXCEPTION_H

#include "kxcommonr/config.h"

namespace KXMTD_NAMESPACE {

class KXCOMMONR_API IOException {
 public:
  IOException() = default;
};

}  // namespace KXMTD_NAMESPACE

#endif  // KXCOMMONR_MTD_IOEXCEPTION_H
