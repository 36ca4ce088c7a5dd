// kxcommonr/kxcommonr.h
//
// The umbrella header: includes every public header of kxcommonr, so that
//   #include "kxcommonr/kxcommonr.h"
// is all a caller needs.
#ifndef KXCOMMONR_KXCOMMONR_H
#define KXCOMMONR_KXCOMMONR_H

#include "kxcommonr/config.h"

// Foundations
#include "kxcommonr/common/KXMV.h"
#include "kxcommonr/common/KXStatus.h"
#include "kxcommonr/common/KXPower.h"
#include "kxcommonr/common/KXExtremeNum.h"
#include "kxcommonr/common/KXBitSet.h"
#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/common/Blas1.h"
#include "kxcommonr/common/KXMathFun.h"
#include "kxcommonr/common/KXHashKey.h"
#include "kxcommonr/common/KXPackedInt.h"

// Matrices
#include "kxcommonr/common/KXSymMatrixData.h"
#include "kxcommonr/common/KXSymMatrix.h"
#include "kxcommonr/common/KXSymBlockMatrix.h"
#include "kxcommonr/common/KXRectMatrixData.h"
#include "kxcommonr/common/KXRectMatrix.h"

// Distributions
#include "kxcommonr/common/KXDistFun.h"

// XML
#include "kxcommonr/xml/ExportFormat.h"
#include "kxcommonr/xml/XMLInterface.h"
#include "kxcommonr/xml/XMLAttribute.h"
#include "kxcommonr/xml/XMLDocType.h"
#include "kxcommonr/xml/XMLElement.h"
#include "kxcommonr/xml/XMLString.h"
#include "kxcommonr/xml/XMLObj.h"
#include "kxcommonr/xml/XMLWriter.h"
#include "kxcommonr/xml/XMLReader.h"
#include "kxcommonr/xml/XMLUReader.h"

#endif  // KXCOMMONR_KXCOMMONR_H
